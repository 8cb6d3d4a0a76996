#include "wizard/repository_selection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "tests/support/recording_sink.h"

namespace {

using conf_tool::RepositoryEntry;
using wizard::SelectionText;

std::vector<RepositoryEntry> Offered(std::size_t count) {
    std::vector<RepositoryEntry> offered;
    for (std::size_t i = 1; i <= count; ++i) offered.push_back({L"id" + std::to_wstring(i), L"name", 0, 0, false});
    return offered;
}

// Returns the identifiers of the selection joined with commas, or the failure.
std::string Select(const std::wstring& answer, std::size_t count = 5, int edition = 2) {
    try {
        std::string ids;
        for (const RepositoryEntry& entry : wizard::SelectRepositories(answer, Offered(count), edition)) {
            ids += (ids.empty() ? "" : ",") + std::string(entry.id.begin(), entry.id.end());
        }
        return ids;
    } catch (const exc::runtime_exc_t& failure) {
        return failure.what();
    }
}

TEST(SelectRepositories, TakesNumbersInTheOrderTyped) {
    for (const auto& [answer, ids] :
         {std::pair(L"3 1", "id3,id1"), std::pair(L"1  3", "id1,id3"), std::pair(L" 2 ", "id2"),
          std::pair(L"+2 01", "id2,id1"), std::pair(L"5 4 3 2 1", "id5,id4,id3,id2,id1"), std::pair(L"  ", "")}) {
        EXPECT_EQ(Select(answer), ids);
    }
    EXPECT_EQ(Select(L" 5", 5, 1), "id5");
}

TEST(SelectRepositories, SaysWhatIsWrong) {
    const char* standard_edition =
        "Unable to use more than one repository due to a limitation of Oracle Standard Edition (SE)";
    EXPECT_EQ(Select(L"2 2"), "Same Tovak repository was specified more than once (2)");
    EXPECT_EQ(Select(L"3 99 +3"), "Same Tovak repository was specified more than once (3)");
    EXPECT_EQ(Select(L"0"), "Incorrect repository value: 0");
    EXPECT_EQ(Select(L"1  +06"), "Incorrect repository value: +06");
    EXPECT_EQ(Select(L"-1"), "Incorrect repository value: -1");
    EXPECT_EQ(Select(L"1", 0), "Incorrect repository value: 1");
    EXPECT_EQ(Select(L"1 x"), "Cannot convert value [x] from string");
    EXPECT_EQ(Select(L"1\t2"), "Cannot convert value [1\t2] from string");
    EXPECT_EQ(Select(L"1 99", 5, 1), standard_edition);
    EXPECT_EQ(Select(L"1 1", 5, 1), "Same Tovak repository was specified more than once (1)");
}

TEST(SelectRepositories, LogsTheValidation) {
    test_support::CRecordedLog log;
    Select(L"1");
    Select(L"x");
    EXPECT_THAT(log.lines(), testing::ElementsAre("Validating value", "Validating value ok.", "Validating value",
                                                  "ERR |Validating value Failed."));
}

TEST(SelectionText, NumbersWhatIsStillOffered) {
    const auto offered = Offered(1000);
    const RepositoryEntry gone{L"gone", L"name", 0, 0, false};
    const RepositoryEntry other_case{L"ID3", L"name", 0, 0, false};
    EXPECT_EQ(SelectionText({offered[999], offered[0]}, offered), L"1000 1");
    EXPECT_EQ(SelectionText({gone, offered[2], other_case}, offered), L"3");
    EXPECT_EQ(SelectionText({gone}, offered), L"");
}

}  // namespace
