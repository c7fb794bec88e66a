#include "platform/ui/RepeatingTimer.hpp"

#include "tests/support/EventLoop.hpp"
#include "tests/support/FakeTimers.hpp"

#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <memory>

namespace {

using platform::RepeatingTimer;
using platform::scheduleTimer;

TEST(RepeatingTimer, CallsBackAgainAndAgainWithItself) {
    int calls = 0;
    const RepeatingTimer* caller = nullptr;
    const auto timer = scheduleTimer(0.001, [&](RepeatingTimer& self) {
        ++calls;
        caller = &self;
    });
    EXPECT_EQ(calls, 0) << "not before the main loop runs";
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return calls >= 3; }));
    EXPECT_EQ(caller, timer.get());
    timer->invalidate();
}

TEST(RepeatingTimer, TellsTheIntervalItWasAskedFor) {
    const auto timer = scheduleTimer(1.0 / 30.0, [](RepeatingTimer&) {});
    EXPECT_EQ(timer->timeInterval(), 1.0 / 30.0);
    timer->invalidate();
}

TEST(RepeatingTimer, NeverRunsAheadOfAnIntervalThatIsNoWholeNumberOfMilliseconds) {
    constexpr double interval = 1.0 / 30.0;
    constexpr int count = 6;
    QElapsedTimer elapsed;
    elapsed.start();
    int calls = 0;
    qint64 nanoseconds = 0;
    const auto timer = scheduleTimer(interval, [&](RepeatingTimer&) {
        if (++calls == count) {
            nanoseconds = elapsed.nsecsElapsed();
        }
    });
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return calls >= count; }));
    timer->invalidate();
    constexpr double anEarlyShot = 1e6;  // nanoseconds
    EXPECT_GE(static_cast<double>(nanoseconds), count * interval * 1e9 - anEarlyShot);
}

TEST(RepeatingTimer, RunsOnWithoutAnybodyElseHoldingIt) {
    int calls = 0;
    static_cast<void>(scheduleTimer(0.001, [&](RepeatingTimer& self) {
        if (++calls == 2) {
            self.invalidate();
        }
    }));
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return calls == 2; }));
}

TEST(RepeatingTimer, CallsNoMoreOnceInvalidated) {
    int calls = 0;
    const auto timer = scheduleTimer(0.001, [&](RepeatingTimer&) { ++calls; });
    timer->invalidate();
    timer->invalidate();
    int others = 0;
    const auto other = scheduleTimer(0.001, [&](RepeatingTimer&) { ++others; });
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return others >= 3; }));
    other->invalidate();
    EXPECT_EQ(calls, 0);
}

TEST(RepeatingTimer, LetsGoOfItsCallbackWhenInvalidated) {
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> watched = held;
    const auto timer = scheduleTimer(1000.0, [held = std::move(held)](RepeatingTimer&) {});
    EXPECT_FALSE(watched.expired());
    timer->invalidate();
    EXPECT_TRUE(watched.expired());
}

TEST(RepeatingTimer, InvalidatedWithinItsCallbackLetsGoWhenThatReturns) {
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    static_cast<void>(scheduleTimer(0.001, [held = std::move(held)](RepeatingTimer& self) {
        self.invalidate();
        ++*held;
    }));
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return watched.expired(); }));
}

TEST(RepeatingTimer, DoesNotCallBackWithinItsCallback) {
    int depth = 0;
    int deepest = 0;
    int calls = 0;
    const auto timer = scheduleTimer(0.001, [&](RepeatingTimer&) {
        deepest = std::max(deepest, ++depth);
        if (++calls == 1) {
            bool rang = false;
            QTimer::singleShot(10, [&] { rang = true; });
            EXPECT_TRUE(fake::eventuallyInLoop([&] { return rang; }));
        }
        --depth;
    });
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return calls >= 2; }));
    timer->invalidate();
    EXPECT_EQ(deepest, 1);
}

TEST(RepeatingTimer, AnIntervalThatIsNotPositiveIsShort) {
    int calls = 0;
    const auto zero = scheduleTimer(0.0, [&](RepeatingTimer&) { ++calls; });
    const auto negative = scheduleTimer(-1.0, [&](RepeatingTimer&) { ++calls; });
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return calls >= 4; }));
    zero->invalidate();
    negative->invalidate();
}

TEST(RepeatingTimer, AnotherSchedulerIsInForceUntilTheMainLoopsIsRestored) {
    int calls = 0;
    {
        fake::Timers timers;
        static_cast<void>(scheduleTimer(60.0, [&](RepeatingTimer&) { ++calls; }));
        EXPECT_EQ(timers.runningTimers(), 1U);
        timers.tick(3);
        EXPECT_EQ(calls, 3);
    }
    const auto real = scheduleTimer(0.001, [&](RepeatingTimer&) { ++calls; });
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return calls >= 4; }));
    real->invalidate();
}

}  // namespace
