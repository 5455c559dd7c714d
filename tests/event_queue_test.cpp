#include "shell/event_queue.h"

#include "platform/diagnostics.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace kestrune {
namespace {

TEST(EventQueue, HandlerThatArrivesWhileOneRunsWaitsUntilItHasReturned) {
    EventQueue queue;
    std::string order;
    queue.handle([&] {
        order += "a";
        queue.handle([&] { order += "c"; });
        queue.handle([&] { order += "d"; });
        order += "b";
    });
    EXPECT_EQ(order, "abcd");
}

TEST(EventQueue, HandlerThatIsRunNowRunsInTheMiddleOfAnother) {
    EventQueue queue;
    std::string order;
    queue.handle([&] {
        queue.handle([&] { order += "c"; });
        EXPECT_FALSE(queue.handle_now([&] { order += "a"; })) << "the handler around it runs what waits";
        order += "b";
    });
    EXPECT_EQ(order, "abc");
}

TEST(EventQueue, WhatComesWhileAHandlerIsRunNowIsLeftForLater) {
    EventQueue queue;
    std::string order;
    EXPECT_TRUE(queue.handle_now([&] { queue.handle([&] { order += "b"; }); }));
    order += "a";
    queue.drain()();
    EXPECT_EQ(order, "ab");
    EXPECT_FALSE(queue.busy());
}

TEST(EventQueue, WhatIsLeftForLaterKeepsItsPlaceBeforeNewcomers) {
    EventQueue queue;
    std::string order;
    EXPECT_TRUE(queue.handle_now([&] { queue.handle([&] { order += "a"; }); }));
    queue.handle([&] { order += "b"; });
    EXPECT_EQ(order, "ab");
}

TEST(EventQueue, WhatIsLeftForLaterIsDroppedWhenTheQueueIsClosed) {
    auto queue = std::make_unique<EventQueue>();
    bool ran = false;
    EXPECT_TRUE(queue->handle_now([&] { queue->handle([&] { ran = true; }); }));
    const auto rest = queue->drain();
    queue->close();
    queue.reset();
    rest();
    EXPECT_FALSE(ran);
}

TEST(EventQueue, WhatAWaitingHandlerCausesComesAfterThoseThatWaitedBefore) {
    EventQueue queue;
    std::string order;
    queue.handle([&] {
        queue.handle([&] {
            order += "1";
            queue.handle([&] { order += "3"; });
        });
        queue.handle([&] { order += "2"; });
    });
    EXPECT_EQ(order, "123");
}

TEST(EventQueue, ExceptionEndsItsHandlerSilentlyAndTheNextOneRuns) {
    std::string reported;
    diagnostics::set_sink([&](std::string_view, std::string_view why) { reported = why; });
    EventQueue queue;
    bool ran = false;
    queue.handle([] { throw std::runtime_error("broken"); });
    queue.handle([&] { ran = true; });
    diagnostics::set_sink({});
    EXPECT_TRUE(ran);
    EXPECT_EQ(reported, "broken");
    EXPECT_FALSE(queue.busy());
}

TEST(EventQueue, ClosingDropsWhatWaitsAndWhatIsStillToCome) {
    EventQueue queue;
    bool ran = false;
    queue.handle([&] {
        queue.handle([&] { ran = true; });
        queue.close();
        queue.handle([&] { ran = true; });
    });
    queue.handle([&] { ran = true; });
    EXPECT_FALSE(ran);
}

TEST(EventQueue, HandlerMayDestroyItsOwnQueue) {
    auto queue = std::make_unique<EventQueue>();
    bool ran = false;
    queue->handle([&] {
        queue->close();
        queue.reset();
        ran = true;
    });
    EXPECT_TRUE(ran);
}

} // namespace
} // namespace kestrune
