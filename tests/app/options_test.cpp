#include "app/dispatch.h"
#include "app/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "tests/support/recording_sink.h"

namespace {

using namespace app;
using testing::ElementsAre;

// Returns the method name that the words choose, or the failure.
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

TEST(Dispatch, ChoosesTheLastCheckThatApplies) {
    const struct {
        std::vector<const char*> words;
        const char* method;
    } cases[] = {
        {{}, "ShowHelp"},
        {{"--help"}, "ShowHelp"},
        {{"--help", "--show-config"}, "ShowConfig"},
        {{"--set-cred", "a", "b", "c", "--show-config"}, "SetCredentials"},
        {{"--set-host=h", "--set-credentials", "a"}, "SetBackupServer"},
        {{"--set-host", "x", "--set-port", "1"}, "SetBackupServerPort"},
        {{"--set-repositories", "--set-port", "1"}, "SetRepository"},
        {{"--wizard", "--set-repositories"}, "StartWizard"},
        {{"--set-parallelism", "4", "--wizard"}, "SetParallelism"},
        {{"--map-backup", "--set-parallelism", "4"}, "MapBackup"},
        {{"--uninstall", "--map-backup", "--help"}, "Uninstall"},
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
        {{"--set-port", "a=b"}, "the argument ('a=b') for option '--set-port' is invalid"},
        {{"--set-host", "s", "--frobnicate"}, "unrecognised option '--frobnicate'"},
        {{"-verbose"}, "unrecognised option '-verbose'"},
        {{"--set-cred", "user", "-s3cret", "-verbose"}, "unrecognised option '***'"},
        {{"--set-credentials", "user", "--s3cret=x", "--set-port", "1"}, "unrecognised option '--s3cret=***'"},
        {{"--set-credentials", "CORP\\oracle", "pw", "--set-prot", "10006"}, "unrecognised option '--set-prot'"},
        {{"--set-credentials", "user", "-s3cret=pw"}, "unrecognised option '***'"},
        {{"--set-credentials", "user", "--1s3cret="},
         "the argument for option '***' should follow immediately after the equal sign"},
        {{"--set-credentials", "user", "--wizard", "-v"}, "unrecognised option '-v'"},
        {{"set-credentials", "user", "-s3cret"}, "unrecognised option '***'"},
        {{"--set-credentials", "user", "--set-p=s3cret"},
         "option '--set-p=***' is ambiguous and matches '--set-parallelism', and '--set-port'"},
        {{"/set-cred", "user", "-s3cret"}, "unrecognised option '***'"},
        {{"/", "s=", "-misspelt"}, "unrecognised option '-misspelt'"},
        {{"--password=s3cret=", "--set-credentials=user"}, "unrecognised option '--password=***'"},
        {{"--set=s3cret"},
         "option '--set=***' is ambiguous and matches '--set-credentials', '--set-host', '--set-parallelism', "
         "'--set-port', and '--set-repositories'"},
        {{"help"}, "too many positional options have been specified on the command line"},
        {{"--set-host", "a", "--set-host", "b"}, "option '--set-host' cannot be specified more than once"},
        {{"--set-p", "1"}, "option '--set-p' is ambiguous and matches '--set-parallelism', and '--set-port'"},
    };
    for (const auto& c : cases) {
        test_support::CRecordedLog log;
        EXPECT_EQ(MethodFor(c.words), c.complaint + std::string("\nFailed to parse incoming parameters"));
        EXPECT_THAT(log.lines(), ElementsAre("Parsing incoming values", "ERR |Parsing incoming values Failed."));
    }
}

}  // namespace
