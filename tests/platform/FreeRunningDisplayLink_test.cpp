#include "platform/DisplayLink.hpp"

#include "tests/platform/DisplayLinkTest.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

namespace {

using platform::DisplayLink;

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
