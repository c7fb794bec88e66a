#include "platform/DisplayLink.hpp"

#include "tests/platform/DisplayLinkTest.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using platform::DisplayLink;

/// Stops a link on the thread that made this, and lets a callback see that it waits in there.
class Stopper {
public:
    int stop(DisplayLink& link) {
        _stopping.open();
        return link.stop();
    }
    bool waitUntilItWaits() const {
        return eventually([this] { return _stopping.isOpen() && fake::isAsleep(_thread); });
    }

private:
    const pid_t _thread = fake::thisThread();
    Gate _stopping;
};

TEST(DisplayLinkStop, DoesNotTickAfterStopHasReturned) {
    Ticks ticks;
    const auto link = makeLink(ticks);
    for (int round = 1; round <= 20; ++round) {
        const std::size_t before = ticks.begun();
        ASSERT_EQ(link->start(), platform::displayLinkSuccess);
        ASSERT_TRUE(ticks.waitForCompleted(before + 1));
        ASSERT_EQ(link->stop(), platform::displayLinkSuccess);
        const std::size_t atStop = ticks.begun();
        std::this_thread::yield();
        ASSERT_EQ(ticks.begun(), atStop);
    }
    EXPECT_FALSE(ticks.overlapped());
}

TEST(DisplayLinkStop, StopDoesNotWaitForTheNextRefresh) {
    Ticks ticks;
    const auto link = makeLink(ticks, anHour);
    const auto before = std::chrono::steady_clock::now();
    link->start();
    EXPECT_EQ(link->stop(), platform::displayLinkSuccess);
    EXPECT_LT(std::chrono::steady_clock::now() - before, deadline);
    EXPECT_EQ(ticks.begun(), 0U);
}

TEST(DisplayLinkStop, StopWaitsForARunningCallback) {
    Ticks ticks;
    Gate entered;
    Stopper stopper;
    std::atomic<bool> returned = false;
    ticks.action = [&](DisplayLink*) {
        entered.open();
        returned = stopper.waitUntilItWaits();
    };
    const auto link = makeLink(ticks);
    link->start();
    entered.wait();
    EXPECT_EQ(stopper.stop(*link), platform::displayLinkSuccess);
    EXPECT_TRUE(returned);
}

TEST(DisplayLinkStop, StopWithinTheCallbackOnlyAsks) {
    Ticks ticks;
    std::vector<int> results;
    ticks.action = [&results](DisplayLink* link) {
        results.push_back(link->stop());
        results.push_back(link->stop());
    };
    const auto link = makeLink(ticks);
    link->start();
    ASSERT_TRUE(ticks.waitForCompleted(1));
    EXPECT_EQ(link->stop(), platform::displayLinkNotRunning);
    EXPECT_EQ(results, (std::vector<int>{platform::displayLinkSuccess, platform::displayLinkNotRunning}));
    EXPECT_EQ(ticks.begun(), 1U);
}

TEST(DisplayLinkStop, StopFromOutsideWaitsForACallbackThatAskedForTheStop) {
    Ticks ticks;
    Gate asked;
    Stopper stopper;
    std::atomic<bool> returned = false;
    ticks.action = [&](DisplayLink* link) {
        link->stop();
        asked.open();
        returned = stopper.waitUntilItWaits();
    };
    const auto link = makeLink(ticks);
    link->start();
    asked.wait();
    EXPECT_EQ(stopper.stop(*link), platform::displayLinkNotRunning);
    EXPECT_TRUE(returned);
}

TEST(DisplayLinkStop, StartsAgainAfterTheCallbackStoppedIt) {
    Ticks ticks;
    ticks.action = [](DisplayLink* link) { link->stop(); };
    const auto link = makeLink(ticks);
    for (std::size_t round = 1; round <= 5; ++round) {
        ASSERT_EQ(link->start(), platform::displayLinkSuccess);
        ASSERT_TRUE(ticks.waitForCompleted(round));
    }
    link->stop();
    EXPECT_EQ(ticks.begun(), 5U);
    EXPECT_FALSE(ticks.overlapped());
}

TEST(DisplayLinkStop, CannotBeStartedAgainWithinTheCallbackThatStoppedIt) {
    Ticks ticks;
    std::atomic<int> result = 0;
    ticks.action = [&result](DisplayLink* link) {
        link->stop();
        result = link->start();
    };
    const auto link = makeLink(ticks);
    link->start();
    ASSERT_TRUE(ticks.waitForCompleted(1));
    EXPECT_EQ(result, platform::displayLinkError);
}

TEST(DisplayLinkStop, StopGivesUpOnACallbackThatDoesNotReturn) {
    Ticks ticks;
    Gate entered;
    Gate release;
    ticks.action = [&](DisplayLink*) {
        entered.open();
        release.wait();
    };
    const auto link = makeLink(ticks, fast, 10ms);
    link->start();
    entered.wait();
    EXPECT_EQ(link->stop(), platform::displayLinkAbandoned);
    EXPECT_EQ(link->stop(), platform::displayLinkAbandoned);
    EXPECT_EQ(link->start(), platform::displayLinkError);  // else there could be two calls at once

    release.open();
    ASSERT_TRUE(ticks.waitForCompleted(1));
    EXPECT_EQ(ticks.begun(), 1U);
}

TEST(DisplayLinkStop, ACallbackLeftBehindIsNeverCalledAgain) {
    Ticks ticks;
    Gate entered;
    Gate release;
    ticks.action = [&](DisplayLink*) {
        entered.open();
        release.wait();
    };
    auto link = makeLink(ticks, fast, 10ms);
    link->start();
    entered.wait();
    EXPECT_EQ(link->stop(), platform::displayLinkAbandoned);
    link.reset();
    release.open();
    ASSERT_TRUE(ticks.waitForCompleted(1));

    // Another link's ticks show that time has gone by in which the first could have ticked.
    Ticks others;
    const auto other = makeLink(others);
    other->start();
    ASSERT_TRUE(others.waitForCompleted(20));
    EXPECT_EQ(ticks.begun(), 1U);
}

TEST(DisplayLinkStop, StartsAgainOnceTheCallbackLeftBehindHasReturned) {
    Ticks ticks;
    Gate entered;
    Gate release;
    ticks.action = [&](DisplayLink* link) {
        if (ticks.begun() == 1) {
            entered.open();
            release.wait();
        } else {
            link->stop();
        }
    };
    const auto link = makeLink(ticks, fast, 10ms);
    link->start();
    entered.wait();
    ASSERT_EQ(link->stop(), platform::displayLinkAbandoned);
    release.open();

    EXPECT_TRUE(eventually([&] { return link->start() == platform::displayLinkSuccess; }));
    EXPECT_TRUE(ticks.waitForCompleted(2));
    EXPECT_FALSE(ticks.overlapped());
}

TEST(DisplayLinkStop, DestructionStopsIt) {
    Ticks ticks;
    auto link = makeLink(ticks);
    link->start();
    ASSERT_TRUE(ticks.waitForCompleted(1));
    link.reset();
    const std::size_t atEnd = ticks.begun();
    std::this_thread::yield();
    EXPECT_EQ(ticks.begun(), atEnd);
}

TEST(DisplayLinkStop, MayBeDestroyedWithinItsOwnCallback) {
    for (int round = 0; round < 20; ++round) {
        Ticks ticks;
        ticks.action = [](DisplayLink* link) { delete link; };
        makeLink(ticks, {1, 100000}).release()->start();
        ASSERT_TRUE(ticks.waitForCompleted(1));
        EXPECT_EQ(ticks.begun(), 1U);
    }
}

TEST(DisplayLinkStop, CallbackAndOwnerMayStopItAtOnce) {
    Ticks ticks;
    ticks.action = [](DisplayLink* link) { link->stop(); };
    const auto link = makeLink(ticks, {1, 100000});
    for (int round = 0; round < 300; ++round) {
        ASSERT_EQ(link->start(), platform::displayLinkSuccess);
        const int result = link->stop();
        ASSERT_TRUE(result == platform::displayLinkSuccess || result == platform::displayLinkNotRunning);
    }
    EXPECT_FALSE(ticks.overlapped());
}

}  // namespace
