#include "platform/DisplayLink.hpp"

#include "tests/platform/DisplayLinkTest.hpp"

#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using platform::DisplayLink;

TEST(DisplayLink, StartingNoLinkIsAnInvalidArgument) {
    EXPECT_EQ(platform::displayLinkStart(nullptr), platform::displayLinkInvalidArgument);
}

TEST(DisplayLink, ReportsThePeriodItWasMadeWith) {
    const auto link = platform::makeTimerDisplayLink({1001, 60000});
    EXPECT_EQ(link->nominalOutputVideoRefreshPeriod().timeValue, 1001);
    EXPECT_EQ(link->nominalOutputVideoRefreshPeriod().timeScale, 60000);
}

TEST(DisplayLink, DoesNotStartWithoutACallback) {
    const auto link = platform::makeTimerDisplayLink(fast);
    EXPECT_EQ(platform::displayLinkStart(link.get()), platform::displayLinkCallbacksNotSet);
    EXPECT_EQ(link->stop(), platform::displayLinkNotRunning);
}

TEST(DisplayLink, IsMadeStopped) {
    Ticks ticks;
    const auto link = makeLink(ticks);
    EXPECT_EQ(link->stop(), platform::displayLinkNotRunning);
    EXPECT_EQ(ticks.begun(), 0U);
}

TEST(DisplayLink, StartsOnceAndStopsOnce) {
    Ticks ticks;
    const auto link = makeLink(ticks, anHour);
    EXPECT_EQ(platform::displayLinkStart(link.get()), platform::displayLinkSuccess);
    EXPECT_EQ(platform::displayLinkStart(link.get()), platform::displayLinkAlreadyRunning);
    EXPECT_EQ(link->stop(), platform::displayLinkSuccess);
    EXPECT_EQ(link->stop(), platform::displayLinkNotRunning);
}

TEST(DisplayLink, TheCallbackIsNotReplacedWhileTheLinkRuns) {
    Ticks ticks;
    Ticks other;
    const auto link = makeLink(ticks);
    link->start();
    EXPECT_EQ(link->setOutputCallback(&Ticks::callback, &other), platform::displayLinkAlreadyRunning);
    link->stop();
    EXPECT_EQ(link->setOutputCallback(&Ticks::callback, &other), platform::displayLinkSuccess);
    link->start();
    EXPECT_TRUE(other.waitForCompleted(1));
}

TEST(DisplayLink, TicksAgainAndAgainOnAThreadOfItsOwn) {
    Ticks ticks;
    const auto link = makeLink(ticks);
    link->start();
    ASSERT_TRUE(ticks.waitForCompleted(20));
    link->stop();
    EXPECT_NE(ticks.thread(), std::this_thread::get_id());
    EXPECT_FALSE(ticks.overlapped());
}

TEST(DisplayLink, PassesTheLinkAndTimesOfTheSteadyClock) {
    Ticks ticks;
    DisplayLink* passed = nullptr;
    ticks.action = [&passed](DisplayLink* link) { passed = link; };
    const auto link = makeLink(ticks);
    const std::chrono::nanoseconds before = std::chrono::steady_clock::now().time_since_epoch();
    link->start();
    ASSERT_TRUE(ticks.waitForCompleted(5));
    link->stop();
    const std::chrono::nanoseconds after = std::chrono::steady_clock::now().time_since_epoch();

    EXPECT_EQ(passed, link.get());
    std::int64_t last = before.count();
    for (std::size_t i = 0; i < ticks.times().size(); ++i) {
        const std::int64_t now = ticks.times()[i].nanoseconds;
        EXPECT_GE(now, last);
        EXPECT_LE(now, after.count());
        EXPECT_GT(ticks.outputTimes()[i].nanoseconds, now);
        EXPECT_LE(ticks.outputTimes()[i].nanoseconds, now + 1'000'000);
        EXPECT_EQ(ticks.outputTimes()[i].nanoseconds % 1'000'000, 0);
        last = now;
    }
}

TEST(DisplayLink, NeverTicksTwiceInOneRefresh) {
    Ticks ticks;
    const auto link = makeLink(ticks);
    link->start();
    ASSERT_TRUE(ticks.waitForCompleted(50));
    link->stop();
    const auto times = ticks.times();
    for (std::size_t i = 1; i < times.size(); ++i) {
        EXPECT_GT(times[i].nanoseconds / 1'000'000, times[i - 1].nanoseconds / 1'000'000);
    }
}

TEST(DisplayLink, RefreshesMissedByASlowCallbackAreSkippedAndNotMadeUpFor) {
    Ticks ticks;
    ticks.action = [](DisplayLink*) {
        const auto busyUntil = std::chrono::steady_clock::now() + 7ms;
        while (std::chrono::steady_clock::now() < busyUntil) {
        }
    };
    const auto link = makeLink(ticks);
    link->start();
    ASSERT_TRUE(ticks.waitForCompleted(5));
    link->stop();
    const auto times = ticks.times();
    for (std::size_t i = 1; i < times.size(); ++i) {
        EXPECT_GE(times[i].nanoseconds - times[i - 1].nanoseconds, 7'000'000);
    }
}

TEST(DisplayLink, StartsAndStopsInQuickSuccession) {
    Ticks ticks;
    const auto link = makeLink(ticks, {1, 100000});
    for (int round = 0; round < 300; ++round) {
        ASSERT_EQ(link->start(), platform::displayLinkSuccess);
        ASSERT_EQ(link->stop(), platform::displayLinkSuccess);
    }
    EXPECT_FALSE(ticks.overlapped());
}

TEST(DisplayLink, ManyRunAtOnce) {
    std::vector<Ticks> ticks(8);
    std::vector<std::unique_ptr<DisplayLink>> links;
    for (Ticks& one : ticks) {
        links.push_back(makeLink(one));
        links.back()->start();
    }
    for (Ticks& one : ticks) {
        EXPECT_TRUE(one.waitForCompleted(3));
    }
    links.clear();
}

/// Makes the threads of this process ask for more stack than there is, for the life of this object.
class NoThreads {
public:
    NoThreads() {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_getstacksize(&attributes, &_former);
        set(std::size_t{1} << 60);
        pthread_attr_destroy(&attributes);
    }
    ~NoThreads() { set(_former); }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

private:
    static void set(std::size_t stackSize) {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, stackSize);
        EXPECT_EQ(pthread_setattr_default_np(&attributes), 0);
        pthread_attr_destroy(&attributes);
    }

    std::size_t _former = 0;
};

TEST(DisplayLink, WithoutAThreadToBeHadItDoesNotStartAndMayBeStartedLater) {
    Ticks ticks;
    const auto link = makeLink(ticks);
    {
        const NoThreads noThreads;
        EXPECT_EQ(link->start(), platform::displayLinkAllocationFailed);
        EXPECT_EQ(link->stop(), platform::displayLinkNotRunning);
    }
    EXPECT_EQ(link->start(), platform::displayLinkSuccess);
    EXPECT_TRUE(ticks.waitForCompleted(1));
}

TEST(DisplayLink, AnUnknownPeriodStillTicks) {
    Ticks ticks;
    const auto link = makeLink(ticks, {0, 0});
    link->start();
    EXPECT_TRUE(ticks.waitForCompleted(2));
}

}  // namespace
