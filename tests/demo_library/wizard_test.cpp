#include "tests/demo_library/demo_library_test.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class demo_wizard_test : public demo_library_test {
protected:
    void fill_in() {
        wizard.InitializeWizard();
        wizard.SetHost(L"backup01");
        wizard.SetPort(10006);
        wizard.SetCredentials(L"CORP", L"oracle", L"Tiger7");
        EXPECT_EQ(select(wizard, {L"REP-0003", L"REP-0001"}), L"ok");
        wizard.SetParallelism(4);
    }

    std::wstring commit() {
        return answer([&] { wizard.Commit(); });
    }

    const std::filesystem::path state = folder / "state.xml";
    const std::wstring not_initialised = L"The wizard is not initialised: InitializeWizard must be called first.";
};

TEST_F(demo_wizard_test, values_wait_for_commit) {
    fill_in();
    EXPECT_FALSE(std::filesystem::exists(state));
    EXPECT_EQ(wizard.GetResult(), L"Nothing was applied: the configuration of this host is unchanged.\r\n");
    EXPECT_EQ(commit(), L"ok");
    ConfigurationSnapshot stored;
    direct.GetConfig(stored);
    EXPECT_EQ(stored.host + stored.password, L"backup01Tiger7");
    EXPECT_THAT(ids_of(stored.repositories), ElementsAre(L"REP-0003", L"REP-0001"));
    EXPECT_EQ(commit(), not_initialised);
}

TEST_F(demo_wizard_test, cancel_and_a_new_start_drop_the_values) {
    fill_in();
    wizard.Cancel();
    EXPECT_EQ(answer([&] { wizard.SetPort(1); }), not_initialised);
    fill_in();
    wizard.InitializeWizard();
    EXPECT_EQ(wizard.GetResult(), L"Nothing was applied: the configuration of this host is unchanged.\r\n");
    EXPECT_EQ(commit(), L"The backup server is empty: a host name or an IP address is needed.");
    EXPECT_FALSE(std::filesystem::exists(state));
}

TEST_F(demo_wizard_test, commit_that_cannot_store_keeps_the_values) {
    fill_in();
    std::filesystem::create_directories(state / "in the way");
    EXPECT_THAT(commit(), HasSubstr(state.wstring()));
    std::filesystem::remove_all(state);
    EXPECT_EQ(commit(), L"ok");
}

TEST_F(demo_wizard_test, exports_the_pending_values_into_new_folders) {
    fill_in();
    const std::wstring settings = folder.wstring() + L"/export/sub/tovak_config.xml";
    const std::wstring script = folder.wstring() + L"/export/rman_config.txt";
    wizard.ExportTovakConfig(settings);
    wizard.ExportRMANConfig(script);

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

TEST_F(demo_wizard_test, export_replaces_only_its_own_file_and_names_path_and_reason) {
    fill_in();
    const std::wstring good = (folder / "export" / "a.xml").wstring(), tmp = good + L".tmp", blocked = tmp + L"\\b.xml";
    std::filesystem::create_directories(folder / "export" / "folder.xml");
    test_support::WriteFileText(tmp, "the user's own");
    wizard.ExportTovakConfig(good);
    EXPECT_THAT(answer([&] { wizard.ExportTovakConfig((folder / "export" / "folder.xml").wstring()); }),
                testing::StartsWith(L"Cannot write the file "));
    EXPECT_THAT(answer([&] { wizard.ExportTovakConfig(blocked); }),
                testing::AllOf(testing::StartsWith(L"Cannot write the file " + blocked + L": "),
                               testing::EndsWith(L" (error 3)")));
    EXPECT_EQ(answer([&] { wizard.ExportRMANConfig(L""); }), L"The path of a file is empty");
    EXPECT_EQ(FileText(tmp), "the user's own");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "export"), {}), 3);
}
