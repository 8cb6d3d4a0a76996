#include "common/crash/handler_registry.h"

#include <gmock/gmock.h>

#include "common/exc/raise.h"
#include "tests/support/recording_sink.h"

namespace {

TEST(HandlerRegistry, AllRunInOrderWhateverOneThrows) {
    const crash::handler_t handlers[] = {[] { test_support::test_log.info("first"); },
                                         [] { exc::raise("the second one fails"); },
                                         [] { test_support::test_log.info("third"); }};
    for (const crash::handler_t handler : handlers) EXPECT_TRUE(crash::register_handler(handler));
    for (int i = 3; i < 16; ++i) EXPECT_TRUE(crash::register_handler([] {}));
    EXPECT_FALSE(crash::register_handler(handlers[0]));
    test_support::CRecordedLog log;
    EXPECT_FALSE(crash::run_handlers(test_support::test_log));
    EXPECT_THAT(log.lines(), testing::ElementsAre("first", "WARN|the second one fails", "third"));
}

}  // namespace
