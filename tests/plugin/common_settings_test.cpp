#include "common/plugin/common_settings.h"

#include <gtest/gtest.h>

#include "common/encoding/convert.h"
#include "common/exc/raise.h"
#include "tests/support/demo_host.h"
#include "tests/support/hook.h"
#include "tests/support/recording_sink.h"

HOOK(kernel32, CreateFileW)
HOOK(kernel32, GetFileAttributesW)

namespace {

using plugin::common_settings_t;

DWORD refusal = ERROR_SUCCESS;  // with which the system refuses the settings file

// As Windows where long paths are not enabled: it takes them in the form of system_path() only. The file itself has a
// short path, since a test that is killed must leave none that the next run cannot delete.
template <class Hook, class Result>
void Replace(const std::filesystem::path& file, Result failure) {
    Hook::replacement = [=](const std::wstring& path, auto... rest) {
        if (!path.ends_with(L"\\tovak_common_config.xml")) return Hook::System(path.c_str(), rest...);
        const DWORD code = path.starts_with(L"\\\\?\\") ? refusal : ERROR_PATH_NOT_FOUND;
        if (code == ERROR_SUCCESS) return Hook::System(file.c_str(), rest...);
        SetLastError(code);
        return failure;
    };
}

class CommonSettings : public testing::Test {
protected:
    CommonSettings() {
        Replace<CreateFileW_hook>(file_, INVALID_HANDLE_VALUE);
        Replace<GetFileAttributesW_hook>(file_, INVALID_FILE_ATTRIBUTES);
    }

    common_settings_t Load(const std::string& content) {
        test_support::WriteFileText(file_, content);
        log_.Clear();
        return plugin::load_common_settings(directory_);
    }

    const test_support::CTestFolder folder_;
    const std::filesystem::path file_ = folder_ / "settings.xml";
    const std::wstring directory_ = folder_ / std::wstring(250, L'x');
    const std::string shown_ = encoding::wide_to_utf8(directory_ + L"\\tovak_common_config.xml");
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
        EXPECT_EQ(log_.Text(), "Loading xml file [" + shown_ +
                                   "]\nXml file was successfully loaded\nPlugin manager port is [7001]\n"
                                   "Plugin to manager connection attempts count is [5]\n"
                                   "Manager lock directory is [C:\\\u00e4  l]\nLogs directory is [C:\\g]\n");
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

TEST_F(CommonSettings, AnUnusableFileLeavesTheDefaults) {
    const std::string defaults =
        "Plugin manager port is [6791]\nPlugin to manager connection attempts count is [30]\n"
        "Manager lock directory is []\nLogs directory is []\n";
    const std::string missing =
        "WARN|Unable to init plugin manager settings. Using default values. Cannot find plug-in manager configuration "
        "file\nWARN|Failed to read plug-in manager configuration file\n";
    const std::string loading = "Loading xml file [" + shown_ + "]\n", loaded = "Xml file was successfully loaded\n";
    const std::string error = loading + "WARN|Error due parsing xml file, code: ";
    const std::string ignored = "\nWARN|Xml file wasn't loaded. Ignore it.\n";
    const std::string unable = "WARN|Unable to load params from file [" + shown_ + "]. ";
    const std::string no_node = loading + loaded + unable + "There is no node with the specified name: ";
    const std::string content = "<Config><PluginParameters/></Config>";
    std::string deep;
    while (deep.size() < 60000) deep += "<a>";
    const std::tuple<DWORD, std::string, std::string> cases[] = {
        {ERROR_FILE_NOT_FOUND, content, missing},
        {ERROR_PATH_NOT_FOUND, content, missing},
        {ERROR_ACCESS_DENIED, content,
         loading + unable + exc::get_error_text(ERROR_ACCESS_DENIED) +
             "\nWARN|Failed to open configuration file from path: " + shown_ + "\nWARN|--tr:Error code: 0x00000005\n"},
        {0, "<Config><PluginParameters minPluginManagerPort='7'>",
         error + "[5], description: [Error reading Element value.]" + ignored},
        {0, "", error + "[12], description: [Error document empty.]" + ignored},
        {0, "<config/>", no_node + "[Config].\n"},
        {0, "<Config><pluginParameters/></Config>", no_node + "[PluginParameters].\n"},
        {0, deep, loading + unable + "Elements are nested more than 1000 deep (line 1).\n"},
        {0, content + std::string(64 * 1024 - content.size(), ' '), loading + loaded},
        {0, std::string(64 * 1024 + 1, ' '), loading + unable + "The file is larger than 64 KiB.\n"},
    };
    for (const auto& [refused, text, about_the_file] : cases) {
        refusal = refused;
        Load(text);
        EXPECT_EQ(log_.Text(), about_the_file + defaults);
    }
}

}  // namespace
