#include "tests/demo_library/demo_library_test.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class demo_wizard_test : public demo_library_test {
protected:
    void fill_in() {
        EXPECT_EQ(plain("InitializeWizard"), L"ok");
        EXPECT_EQ(call<SetHostFn>("SetHost", L"backup01"), L"ok");
        EXPECT_EQ(call<SetPortFn>("SetPort", 10006), L"ok");
        EXPECT_EQ(call<SetCredentialsFn>("SetCredentials", L"CORP", L"oracle", L"Tiger7"), L"ok");
        EXPECT_EQ(select("SetRepositories", {L"REP-0003", L"REP-0001"}), L"ok");
        EXPECT_EQ(call<SetParallelismFn>("SetParallelism", 4), L"ok");
    }

    std::wstring result() {
        LibraryText text = nullptr;
        std::int32_t code = -1;
        EXPECT_EQ(call<GetResultFn>("GetResult", &text, &code), L"ok");
        EXPECT_EQ(code, 0);
        return taken(text);
    }
};

TEST_F(demo_wizard_test, values_wait_for_commit) {
    fill_in();
    EXPECT_EQ(config().host, L"");
    EXPECT_EQ(result(), L"Nothing was applied: the configuration of this host is unchanged.\r\n");

    EXPECT_EQ(plain("Commit"), L"ok");
    const config_t stored = config();
    EXPECT_EQ(stored.host, L"backup01");
    EXPECT_EQ(stored.password, L"Tiger7");
    EXPECT_THAT(stored.ids, ElementsAre(L"REP-0003", L"REP-0001"));
    EXPECT_EQ(plain("Commit"), L"The wizard is not initialised: InitializeWizard has to be called first.");
}

TEST_F(demo_wizard_test, cancel_and_a_new_start_drop_the_values) {
    fill_in();
    EXPECT_EQ(plain("Cancel"), L"ok");
    EXPECT_EQ(result(), L"The wizard was cancelled: the configuration of this host is unchanged.\r\n");
    EXPECT_EQ(call<SetPortFn>("SetPort", 1),
              L"The wizard is not initialised: InitializeWizard has to be called first.");
    fill_in();
    EXPECT_EQ(plain("InitializeWizard"), L"ok");
    EXPECT_EQ(plain("Commit"), L"The backup server is empty: a host name or an IP address is needed.");
    EXPECT_FALSE(std::filesystem::exists(folder / "state.xml"));
}

TEST_F(demo_wizard_test, commit_that_cannot_store_keeps_the_values) {
    fill_in();
    std::filesystem::create_directories(folder / "state.xml" / "in the way");
    EXPECT_THAT(plain("Commit"), HasSubstr((folder / "state.xml").wstring()));
    std::filesystem::remove_all(folder / "state.xml");
    EXPECT_EQ(plain("Commit"), L"ok");
}

TEST_F(demo_wizard_test, exports_the_pending_values_into_new_folders) {
    fill_in();
    const std::wstring settings = folder.wstring() + L"/export/sub/tovak_config.xml";
    const std::wstring script = folder.wstring() + L"/export/rman_config.txt";
    EXPECT_EQ(call<ExportFn>("ExportTovakConfig", settings.c_str()), L"ok");
    EXPECT_EQ(call<ExportFn>("ExportRMANConfig", script.c_str()), L"ok");

    const std::string xml = FileText(settings);
    EXPECT_THAT(xml, HasSubstr("<Server host=\"backup01\" port=\"10006\""));
    EXPECT_THAT(xml, HasSubstr("<Repository id=\"REP-0003\" name=\"Encrypted Vault\""));
    EXPECT_THAT(xml, Not(HasSubstr("Tiger7")));

    std::istringstream lines(FileText(script));
    std::vector<std::string> commands;
    for (std::string line; std::getline(lines, line);)
        if (line[0] != '#') commands.push_back(line);
    EXPECT_THAT(commands, ElementsAre("CONFIGURE DEFAULT DEVICE TYPE TO 'SBT_TAPE';\r",
                                      "CONFIGURE DEVICE TYPE 'SBT_TAPE' PARALLELISM 4 BACKUP TYPE TO BACKUPSET;\r",
                                      testing::MatchesRegex("CONFIGURE CHANNEL DEVICE TYPE 'SBT_TAPE' PARMS "
                                                            "'SBT_LIBRARY=.:.+.TovakRmanPlugin.dll' FORMAT '%d_%U';\r"),
                                      "CONFIGURE DATAFILE BACKUP COPIES FOR DEVICE TYPE 'SBT_TAPE' TO 2;\r",
                                      "CONFIGURE ARCHIVELOG BACKUP COPIES FOR DEVICE TYPE 'SBT_TAPE' TO 2;\r"));
}

TEST_F(demo_wizard_test, export_that_cannot_be_written_names_path_and_reason) {
    fill_in();
    const std::wstring blocked = (folder / "file" / "a" / "b.xml").wstring();
    test_support::WriteFileText(folder / "file", "x");
    EXPECT_THAT(call<ExportFn>("ExportTovakConfig", blocked.c_str()),
                testing::AllOf(testing::StartsWith(L"Cannot write the file " + blocked + L": "),
                               testing::EndsWith(L" (error 3)")));
    EXPECT_EQ(call<ExportFn>("ExportRMANConfig", L""), L"The path of a file is empty");
}
