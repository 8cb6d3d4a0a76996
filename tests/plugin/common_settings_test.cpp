#include "common/plugin/common_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/encoding/convert.h"
#include "common/exc/raise.h"
#include "common/platform/path.h"
#include "tests/support/demo_host.h"
#include "tests/support/hook.h"
#include "tests/support/recording_sink.h"

HOOK(kernel32, CreateFileW)
HOOK(kernel32, GetFileAttributesW)

namespace {

using plugin::common_settings_t;
using testing::ElementsAre;

DWORD refusal = ERROR_SUCCESS;  // with which the system refuses the settings file

// Windows refuses a long path in its ordinary form, unless the machine allows it. Wine never does.
template <class Hook, class Result>
void RefuseWith(Result result) {
    Hook::replacement = [=](const std::wstring& path, auto... rest) {
        const bool is_long = path.size() >= MAX_PATH && !path.starts_with(L"\\\\?\\");
        const DWORD code = is_long ? ERROR_PATH_NOT_FOUND : path.ends_with(L"tovak_common_config.xml") ? refusal : 0;
        if (code == ERROR_SUCCESS) return Hook::System(path.c_str(), rest...);
        SetLastError(code);
        return result;
    };
}

class CommonSettings : public testing::Test {
protected:
    CommonSettings() {
        RefuseWith<CreateFileW_hook>(INVALID_HANDLE_VALUE);
        RefuseWith<GetFileAttributesW_hook>(INVALID_FILE_ATTRIBUTES);
    }

    common_settings_t Load(const std::string& content) {
        test_support::WriteFileText(folder_ / "tovak_common_config.xml", content);
        return LoadFrom(folder_.path);
    }

    common_settings_t LoadFrom(const std::filesystem::path& folder) {
        log_.Clear();
        return plugin::load_common_settings(folder.wstring());
    }

    // The defaults are in force, after these lines about the file.
    void ExpectDefaults(const std::vector<std::string>& about_the_file) {
        std::vector<std::string> expected = about_the_file;
        for (const char* value :
             {"Plugin manager port is [6791]", "Plugin to manager connection attempts count is [30]",
              "Manager lock directory is []", "Logs directory is []"})
            expected.push_back(value);
        EXPECT_EQ(log_.lines(), expected);
    }

    std::string Path() const { return encoding::wide_to_utf8((folder_ / "tovak_common_config.xml").wstring()); }

    const test_support::CTestFolder folder_;
    test_support::CRecordedLog log_;
};

TEST_F(CommonSettings, ElementsComeBeforeAttributes) {
    for (const char* parameters :
         {"<PluginParameters><minPluginManagerPort>7001</minPluginManagerPort><managerConnectionAttempsCount> 5"
          "</managerConnectionAttempsCount><managerLockDir>\r\n <!-- x -->C:\\&#xE4;<!-- x -->  l\t</managerLockDir>"
          "<logsDir>C:\\g</logsDir></PluginParameters>",
          "<PluginParameters minPluginManagerPort='1' managerConnectionAttempsCount='5' "
          "managerLockDir='C:\\\u00e4  l' logsDir='C:\\g'><minPluginManagerPort>7001</minPluginManagerPort>"
          "</PluginParameters>"}) {
        Load(std::string("<!DOCTYPE Config SYSTEM 'c'><Config>") + parameters + "</Config>");
        EXPECT_THAT(log_.lines(),
                    ElementsAre("Loading xml file [" + Path() + "]", "Xml file was successfully loaded",
                                "Plugin manager port is [7001]", "Plugin to manager connection attempts count is [5]",
                                "Manager lock directory is [C:\\\u00e4  l]", "Logs directory is [C:\\g]"));
    }
}

TEST_F(CommonSettings, NumbersFallBackToTheirDefaults) {
    const std::pair<const char*, int> cases[] = {{"abc", 6791},   {"7000x", 7000}, {"", 6791},
                                                 {"x7000", 6791}, {"-1", -1},      {" 12 ", 12}};
    for (const auto& [text, port] : cases) {
        const auto settings = Load(std::string("<Config><PluginParameters minPluginManagerPort='") + text +
                                   "'><managerConnectionAttemptsCount>7</managerConnectionAttemptsCount>"
                                   "</PluginParameters></Config>");
        EXPECT_EQ(settings.minPluginManagerPort, port) << text;
        EXPECT_EQ(settings.managerConnectionAttempsCount, 30);
        EXPECT_EQ(settings.managerLockDir + settings.logsDir, "");
    }
}

TEST_F(CommonSettings, AreReadBelowALongPath) {
    const std::wstring longer = (folder_ / std::wstring(250, L'x')).wstring();
    const std::wstring file = platform::system_path(longer) + L"\\tovak_common_config.xml";
    ASSERT_TRUE(CreateDirectoryW(platform::system_path(longer).c_str(), nullptr));
    test_support::WriteFileText(file, "<Config><PluginParameters minPluginManagerPort='7001'/></Config>");
    EXPECT_EQ(LoadFrom(longer).minPluginManagerPort, 7001);
    EXPECT_TRUE(DeleteFileW(file.c_str()));
    EXPECT_TRUE(RemoveDirectoryW(platform::system_path(longer).c_str()));
}

TEST_F(CommonSettings, AnUnusableFileLeavesTheDefaults) {
    const std::string loading = "Loading xml file [" + Path() + "]";
    const std::string unable = "WARN|Unable to load params from file [" + Path() + "]. ";
    for (const DWORD missing : {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND}) {
        refusal = missing;
        LoadFrom(folder_.path);
        ExpectDefaults(
            {"WARN|Unable to init plugin manager settings. Using default values. Cannot find plug-in manager "
             "configuration file",
             "WARN|Failed to read plug-in manager configuration file"});
    }
    refusal = ERROR_ACCESS_DENIED;
    LoadFrom(folder_.path);
    ExpectDefaults({loading, unable + exc::get_error_text(refusal),
                    "WARN|Failed to open configuration file from path: " + Path(), "WARN|--tr:Error code: 0x00000005"});
    refusal = ERROR_SUCCESS;

    const std::string content = "<Config><PluginParameters/></Config>", loaded = "Xml file was successfully loaded";
    std::string deep;
    while (deep.size() < 60000) deep += "<a>";
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"<Config><PluginParameters minPluginManagerPort='7'>",
         {"WARN|Error due parsing xml file, code: [5], description: [Error reading Element value.]",
          "WARN|Xml file wasn't loaded. Ignore it."}},
        {"",
         {"WARN|Error due parsing xml file, code: [12], description: [Error document empty.]",
          "WARN|Xml file wasn't loaded. Ignore it."}},
        {"<config/>", {loaded, unable + "There is no node with the specified name: [Config]."}},
        {"<Config><pluginParameters/></Config>",
         {loaded, unable + "There is no node with the specified name: [PluginParameters]."}},
        {deep, {unable + "Elements are nested more than 1000 deep (line 1)."}},
        {content + std::string(64 * 1024 - content.size(), ' '), {loaded}},
        {std::string(64 * 1024 + 1, ' '), {unable + "The file is larger than 64 KiB."}},
    };
    for (const auto& [text, lines] : cases) {
        Load(text);
        std::vector<std::string> expected{loading};
        expected.insert(expected.end(), lines.begin(), lines.end());
        ExpectDefaults(expected);
    }
}

}  // namespace
