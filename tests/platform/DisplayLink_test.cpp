#include "platform/DisplayLink.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using platform::DisplayLink;
using platform::DisplayTime;

/// Only a test that would fail anyway waits this long.
constexpr auto deadline = 30s;

bool eventually(const std::function<bool()>& condition) {
    const auto giveUp = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > giveUp) {
            return false;
        }
        std::this_thread::sleep_for(100us);
    }
    return true;
}

/// A gate that threads wait at.
class Gate {
public:
    void open() { _open = true; }
    bool wait() const {
        return eventually([this] { return _open.load(); });
    }

private:
    std::atomic<bool> _open = false;
};

/// What a link's callback does, and what became of it. The callback's last touch is its count of completed calls, so
/// that a test may go once it has seen that.
class Ticks {
public:
    std::function<void(DisplayLink*)> action;

    static int callback(DisplayLink* link, const DisplayTime* now, const DisplayTime* outputTime, std::uint64_t,
                        std::uint64_t*, void* context) {
        auto* ticks = static_cast<Ticks*>(context);
        if (ticks->_running.exchange(true)) {
            ticks->_overlapped = true;
        }
        ticks->note(*now, *outputTime);
        if (ticks->action) {
            ticks->action(link);
        }
        ticks->_running = false;
        ++ticks->_completed;
        return platform::displayLinkSuccess;
    }

    bool waitForCompleted(std::size_t count) const {
        return eventually([&] { return _completed >= count; });
    }
    std::size_t begun() const { return times().size(); }
    std::vector<DisplayTime> times() const {
        const std::lock_guard lock(_mutex);
        return _times;
    }
    std::vector<DisplayTime> outputTimes() const {
        const std::lock_guard lock(_mutex);
        return _outputTimes;
    }
    std::thread::id thread() const {
        const std::lock_guard lock(_mutex);
        return _thread;
    }
    bool overlapped() const { return _overlapped; }

private:
    void note(const DisplayTime& now, const DisplayTime& outputTime) {
        const std::lock_guard lock(_mutex);
        _times.push_back(now);
        _outputTimes.push_back(outputTime);
        _thread = std::this_thread::get_id();
    }

    mutable std::mutex _mutex;
    std::vector<DisplayTime> _times;
    std::vector<DisplayTime> _outputTimes;
    std::thread::id _thread;
    std::atomic<bool> _running = false;
    std::atomic<bool> _overlapped = false;
    std::atomic<std::size_t> _completed = 0;
};

constexpr platform::RefreshPeriod fast{1, 1000};
constexpr platform::RefreshPeriod anHour{3600, 1};

std::unique_ptr<DisplayLink> makeLink(Ticks& ticks, platform::RefreshPeriod period = fast,
                                      std::chrono::milliseconds stopTimeout = deadline) {
    auto link = platform::makeTimerDisplayLink(period, stopTimeout);
    EXPECT_EQ(link->setOutputCallback(&Ticks::callback, &ticks), platform::displayLinkSuccess);
    return link;
}

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

TEST(DisplayLink, DoesNotTickAfterStopHasReturned) {
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

TEST(DisplayLink, StopDoesNotWaitForTheNextRefresh) {
    Ticks ticks;
    const auto link = makeLink(ticks, anHour);
    const auto before = std::chrono::steady_clock::now();
    link->start();
    EXPECT_EQ(link->stop(), platform::displayLinkSuccess);
    EXPECT_LT(std::chrono::steady_clock::now() - before, deadline);
    EXPECT_EQ(ticks.begun(), 0U);
}

TEST(DisplayLink, StopWaitsForARunningCallback) {
    Ticks ticks;
    Gate entered;
    std::atomic<bool> returned = false;
    ticks.action = [&](DisplayLink*) {
        entered.open();
        std::this_thread::sleep_for(50ms);
        returned = true;
    };
    const auto link = makeLink(ticks);
    link->start();
    entered.wait();
    EXPECT_EQ(link->stop(), platform::displayLinkSuccess);
    EXPECT_TRUE(returned);
}

TEST(DisplayLink, StopWithinTheCallbackOnlyAsks) {
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

TEST(DisplayLink, StopFromOutsideWaitsForACallbackThatAskedForTheStop) {
    Ticks ticks;
    Gate asked;
    std::atomic<bool> returned = false;
    ticks.action = [&](DisplayLink* link) {
        link->stop();
        asked.open();
        std::this_thread::sleep_for(50ms);
        returned = true;
    };
    const auto link = makeLink(ticks);
    link->start();
    asked.wait();
    EXPECT_EQ(link->stop(), platform::displayLinkNotRunning);
    EXPECT_TRUE(returned);
}

TEST(DisplayLink, StartsAgainAfterTheCallbackStoppedIt) {
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

TEST(DisplayLink, CannotBeStartedAgainWithinTheCallbackThatStoppedIt) {
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

TEST(DisplayLink, StopGivesUpOnACallbackThatDoesNotReturn) {
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

TEST(DisplayLink, ACallbackLeftBehindIsNeverCalledAgain) {
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

TEST(DisplayLink, StartsAgainOnceTheCallbackLeftBehindHasReturned) {
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

TEST(DisplayLink, DestructionStopsIt) {
    Ticks ticks;
    auto link = makeLink(ticks);
    link->start();
    ASSERT_TRUE(ticks.waitForCompleted(1));
    link.reset();
    const std::size_t atEnd = ticks.begun();
    std::this_thread::yield();
    EXPECT_EQ(ticks.begun(), atEnd);
}

TEST(DisplayLink, MayBeDestroyedWithinItsOwnCallback) {
    for (int round = 0; round < 20; ++round) {
        Ticks ticks;
        ticks.action = [](DisplayLink* link) { delete link; };
        makeLink(ticks, {1, 100000}).release()->start();
        ASSERT_TRUE(ticks.waitForCompleted(1));
        EXPECT_EQ(ticks.begun(), 1U);
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

TEST(DisplayLink, CallbackAndOwnerMayStopItAtOnce) {
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

TEST(DisplayLink, AnUnknownPeriodStillTicks) {
    Ticks ticks;
    const auto link = makeLink(ticks, {0, 0});
    link->start();
    EXPECT_TRUE(ticks.waitForCompleted(2));
}

/// A free-running link and the end of its ticks.
class FreeRunningDisplayLink : public testing::Test {
protected:
    void make(std::uint64_t count) {
        link = platform::makeFreeRunningDisplayLink({1, 60}, count, [this] {
            ++finished;
            ticksAtFinish = ticks.begun();
            finishedOn = std::this_thread::get_id();
            end.open();
        });
        link->setOutputCallback(&Ticks::callback, &ticks);
    }
    ~FreeRunningDisplayLink() override { link.reset(); }

    Ticks ticks;
    Gate end;
    std::atomic<int> finished = 0;
    std::atomic<std::size_t> ticksAtFinish = 0;
    std::thread::id finishedOn;
    std::unique_ptr<DisplayLink> link;
};

TEST_F(FreeRunningDisplayLink, TicksAsOftenAsItWasToldAndThenFinishesOnItsThread) {
    make(100);
    EXPECT_EQ(link->start(), platform::displayLinkSuccess);
    EXPECT_TRUE(end.wait());
    EXPECT_EQ(link->stop(), platform::displayLinkSuccess);
    EXPECT_EQ(ticks.begun(), 100U);
    EXPECT_EQ(ticksAtFinish, 100U);
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(finishedOn, ticks.thread());
    EXPECT_FALSE(ticks.overlapped());
}

TEST_F(FreeRunningDisplayLink, ClaimsItsNominalPeriod) {
    make(1);
    EXPECT_EQ(link->nominalOutputVideoRefreshPeriod().timeValue, 1);
    EXPECT_EQ(link->nominalOutputVideoRefreshPeriod().timeScale, 60);
}

TEST_F(FreeRunningDisplayLink, DoesNotWaitForTheNominalPeriod) {
    link = platform::makeFreeRunningDisplayLink(anHour, 10, [this] { end.open(); });
    link->setOutputCallback(&Ticks::callback, &ticks);
    link->start();
    EXPECT_TRUE(ticks.waitForCompleted(10));
}

TEST_F(FreeRunningDisplayLink, CountsItsTicksAcrossStops) {
    make(6);
    ticks.action = [this](DisplayLink* running) {
        if (ticks.begun() % 2 == 0) {
            running->stop();
        }
    };
    for (const std::size_t total : {2U, 4U, 6U}) {
        ASSERT_EQ(link->start(), platform::displayLinkSuccess);
        ASSERT_TRUE(ticks.waitForCompleted(total));
        link->stop();
        EXPECT_EQ(ticks.begun(), total);
        EXPECT_EQ(finished, 0);
    }
    link->start();  // no tick is left, only the end
    end.wait();
    link->stop();
    EXPECT_EQ(ticks.begun(), 6U);
    EXPECT_EQ(finished, 1);
}

TEST_F(FreeRunningDisplayLink, FinishesOnceHoweverOftenItIsStarted) {
    make(3);
    link->start();
    end.wait();
    link->stop();
    EXPECT_EQ(link->start(), platform::displayLinkSuccess);
    EXPECT_EQ(link->stop(), platform::displayLinkSuccess);
    EXPECT_EQ(ticks.begun(), 3U);
    EXPECT_EQ(finished, 1);
}

TEST_F(FreeRunningDisplayLink, WithoutTicksItFinishesAtOnce) {
    make(0);
    link->start();
    end.wait();
    link->stop();
    EXPECT_EQ(ticks.begun(), 0U);
    EXPECT_EQ(finished, 1);
}

TEST_F(FreeRunningDisplayLink, ItsEndMayBeNobodysBusiness) {
    link = platform::makeFreeRunningDisplayLink({1, 60}, 2, {});
    link->setOutputCallback(&Ticks::callback, &ticks);
    link->start();
    EXPECT_TRUE(ticks.waitForCompleted(2));
    EXPECT_EQ(link->stop(), platform::displayLinkSuccess);
}

TEST_F(FreeRunningDisplayLink, MayBeDestroyedAsItFinishes) {
    DisplayLink* doomed = nullptr;
    auto made = platform::makeFreeRunningDisplayLink({1, 60}, 2, [this, &doomed] {
        delete doomed;
        end.open();
    });
    made->setOutputCallback(&Ticks::callback, &ticks);
    doomed = made.release();
    doomed->start();
    end.wait();
    EXPECT_EQ(ticks.begun(), 2U);
}

TEST_F(FreeRunningDisplayLink, StopsBetweenTwoTicks) {
    make(1'000'000'000);
    for (std::size_t round = 1; round <= 20; ++round) {
        const std::size_t before = ticks.begun();
        ASSERT_EQ(link->start(), platform::displayLinkSuccess);
        ASSERT_TRUE(ticks.waitForCompleted(before + 1));
        ASSERT_EQ(link->stop(), platform::displayLinkSuccess);
    }
    EXPECT_EQ(finished, 0);
    EXPECT_FALSE(ticks.overlapped());
}

}  // namespace
