#include "common/crash/handler_registry.h"

#include <gmock/gmock.h>

#include "common/exc/raise.h"
#include "tests/support/recording_sink.h"

namespace {

int calls = 0;

TEST(HandlerRegistry, AllRunInOrderWhateverOneRaises) {
    ASSERT_TRUE(crash::register_handler([] { EXPECT_EQ(calls++, 0); }));
    EXPECT_TRUE(crash::run_handlers());
    calls = 0;
    ASSERT_TRUE(crash::register_handler([] { exc::raise("the second one fails"); }));
    ASSERT_TRUE(crash::register_handler([] { EXPECT_EQ(calls++, 1); }));
    test_support::CRecordedLog log;
    EXPECT_FALSE(crash::run_handlers());
    EXPECT_EQ(calls, 2);
    EXPECT_THAT(log.lines(), testing::ElementsAre("WARN|the second one fails"));

    for (int i = 3; i < 16; ++i) EXPECT_TRUE(crash::register_handler([] { ++calls; }));
    EXPECT_FALSE(crash::register_handler([] { ++calls; }));
}

}  // namespace
