#include "app/options.h"

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "tests/support/recording_sink.h"

namespace {

using namespace app;
using testing::ElementsAre;

// The method name that the words stand for, or the failure.
std::string MethodFor(std::vector<const char*> words) {
    words.insert(words.begin(), "Ormacon.exe");
    CommandContext context;
    BuildOptions(context);
    try {
        return ParseCommandLine(context, static_cast<int>(words.size()), words.data()).method_name;
    } catch (const exc::runtime_exc_t& failure) {
        return failure.what();
    }
}

TEST(Options, AreTenLowerCaseLongNames) {
    CommandContext context;
    BuildOptions(context);
    std::set<std::string> names;
    for (const auto& option : context.options.options()) {
        names.insert(option->long_name());
        EXPECT_EQ(option->long_name().find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string::npos);
        EXPECT_EQ(option->canonical_display_name(boost::program_options::command_line_style::allow_dash_for_short),
                  option->long_name());
    }
    EXPECT_EQ(names.size(), 10U);
}

TEST(Dispatch, ChoosesTheLastCheckThatApplies) {
    const struct {
        std::vector<const char*> words;
        const char* method;
    } cases[] = {
        {{}, "ShowHelp"},
        {{"--help"}, "ShowHelp"},
        {{"--show-config"}, "ShowConfig"},
        {{"--set-credentials", "a"}, "SetCredentials"},
        {{"--set-credentials", "a", "b", "c"}, "SetCredentials"},
        {{"--set-host=h"}, "SetBackupServer"},
        {{"--set-port", "1"}, "SetBackupServerPort"},
        {{"--set-repositories"}, "SetRepository"},
        {{"--wizard"}, "StartWizard"},
        {{"--set-parallelism", "4"}, "SetParallelism"},
        {{"--map-backup"}, "MapBackup"},
        {{"--uninstall"}, "Uninstall"},
        {{"--wiz"}, "StartWizard"},
        {{"--uninstall", "--help"}, "Uninstall"},
        {{"--help", "--show-config"}, "ShowConfig"},
        {{"--wizard", "--set-repositories"}, "StartWizard"},
        {{"--set-parallelism", "4", "--wizard"}, "SetParallelism"},
        {{"--set-host", "x", "--set-port", "1"}, "SetBackupServerPort"},
    };
    for (const auto& c : cases) EXPECT_EQ(MethodFor(c.words), c.method);
}

TEST(Dispatch, ComplaintsOfTheParserGetTheirContext) {
    const struct {
        std::vector<const char*> words;
        const char* complaint;
    } cases[] = {
        {{"--set-port", "abc"}, "the argument ('abc') for option '--set-port' is invalid"},
        {{"--set-port"}, "the required argument for option '--set-port' is missing"},
        {{"--frobnicate"}, "unrecognised option '--frobnicate'"},
        {{"-verbose"}, "unrecognised option '-verbose'"},
        {{"stray"}, "too many positional options have been specified on the command line"},
        {{"--set-host", "a", "--set-host", "b"}, "option '--set-host' cannot be specified more than once"},
        {{"--set-p", "1"}, "option '--set-p' is ambiguous and matches '--set-parallelism', and '--set-port'"},
        {{"--show-config", "stray"}, "too many positional options have been specified on the command line"},
    };
    for (const auto& c : cases) {
        test_support::CRecordedLog log;
        EXPECT_EQ(MethodFor(c.words), c.complaint + std::string("\nFailed to parse incoming parameters"));
        EXPECT_THAT(log.lines(), ElementsAre("Parsing incoming values", "ERR |Parsing incoming values Failed."));
    }
}

TEST(ExecuteMethod, RunsInsideItsScopeAndAddsContext) {
    test_support::CRecordedLog log;
    int runs = 0;
    ExecuteMethod([&] { ++runs; }, "ShowConfig");
    EXPECT_EQ(runs, 1);
    try {
        ExecuteMethod([] { throw std::out_of_range("gone"); }, "MapBackup");
        ADD_FAILURE() << "nothing was raised";
    } catch (const exc::runtime_exc_t& failure) {
        EXPECT_STREQ(failure.what(), "gone\nFailed to execute method MapBackup");
    }
    EXPECT_THAT(log.lines(), ElementsAre("Executing method ShowConfig", "Executing method ShowConfig ok.",
                                         "Executing method MapBackup", "ERR |Executing method MapBackup Failed."));
}

}  // namespace
