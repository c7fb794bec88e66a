#include "foundation/QZLStatistics.hpp"

#include "foundation/QZLPrecisionTime.hpp"
#include "tests/support/FakeClock.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

/// How long the stages of a frame take, in seconds.
struct FrameTimes {
    double preparation;
    double waiting;
    double rendering;
};

class QZLStatisticsTest : public testing::Test {
protected:
    QZLStatisticsTest() {
        QZLPrecisionTimeNanoseconds();  // the process's zero point, at which no period can open
        clock.advance(1.0);
    }

    void runFrame(std::int32_t slot, const FrameTimes& times) {
        statistics.recordFramePresented();
        statistics.notifyFrameStarted(slot);
        clock.advance(times.preparation);
        statistics.notifyFrameQueued(slot);
        clock.advance(times.waiting);
        statistics.notifyFrameScheduled(slot);
        clock.advance(times.rendering);
        statistics.notifyFrameCompleted(slot);
    }

    void expectAllZero() {
        EXPECT_EQ(statistics.frameRate(), 0.0);
        EXPECT_EQ(statistics.framePreparationTime(), 0.0);
        EXPECT_EQ(statistics.frameRenderingTime(), 0.0);
        EXPECT_EQ(statistics.frameElapsedTime(), 0.0);
    }

    fake::Clock clock;
    QZLStatistics statistics;
};

TEST_F(QZLStatisticsTest, AreAllZeroAtFirst) {
    expectAllZero();
}

TEST_F(QZLStatisticsTest, AreAllZeroWithinTheFirstSecond) {
    for (int i = 0; i < 3; ++i) {
        runFrame(i, {0.002, 0.001, 0.005});
    }
    expectAllZero();
}

TEST_F(QZLStatisticsTest, MeasureTheStagesOfAFrame) {
    for (int i = 0; i < 150; ++i) {
        runFrame(i % 3, {0.002, 0.003, 0.005});
        clock.advance(0.010);
    }
    EXPECT_NEAR(statistics.frameRate(), 50.0, 0.01);
    EXPECT_NEAR(statistics.framePreparationTime(), 0.002, 1e-12);
    EXPECT_NEAR(statistics.frameRenderingTime(), 0.005, 1e-12);
    EXPECT_NEAR(statistics.frameElapsedTime(), 0.010, 1e-12);
}

TEST_F(QZLStatisticsTest, AverageUnlikeFrames) {
    for (int i = 0; i < 40; ++i) {
        runFrame(i % 3, i % 2 == 0 ? FrameTimes{0.010, 0.001, 0.030} : FrameTimes{0.030, 0.010, 0.020});
    }
    // Twenty frames, of 0.041 s and 0.06 s by turns, fill the first period and run a little past its end.
    EXPECT_NEAR(statistics.frameRate(), 20.0 / 1.01, 1e-6);
    EXPECT_NEAR(statistics.framePreparationTime(), 0.020, 1e-9);
    EXPECT_NEAR(statistics.frameRenderingTime(), 0.025, 1e-9);
    EXPECT_NEAR(statistics.frameElapsedTime(), 0.0505, 1e-9);
}

TEST_F(QZLStatisticsTest, KeepTheStampsOfFramesInFlightApart) {
    for (int round = 0; round < 2; ++round) {
        statistics.notifyFrameStarted(0);
        clock.advance(0.1);
        statistics.notifyFrameStarted(1);
        clock.advance(0.1);
        statistics.notifyFrameStarted(2);
        clock.advance(0.1);
        statistics.notifyFrameQueued(0);  // 0.3
        statistics.notifyFrameQueued(1);  // 0.2
        statistics.notifyFrameQueued(2);  // 0.1
        statistics.notifyFrameScheduled(0);
        clock.advance(0.2);
        statistics.notifyFrameScheduled(1);
        clock.advance(0.4);
        statistics.notifyFrameCompleted(0);  // rendering 0.6, elapsed 0.9
        statistics.notifyFrameScheduled(2);
        clock.advance(0.1);
        statistics.notifyFrameCompleted(1);  // rendering 0.5, elapsed 0.9
        clock.advance(0.1);
        statistics.notifyFrameCompleted(2);  // rendering 0.2, elapsed 0.9
        clock.advance(0.5);
    }
    EXPECT_NEAR(statistics.framePreparationTime(), 0.2, 1e-9);
    EXPECT_NEAR(statistics.frameRenderingTime(), 1.3 / 3.0, 1e-9);
    EXPECT_NEAR(statistics.frameElapsedTime(), 0.9, 1e-9);
}

TEST_F(QZLStatisticsTest, CountPresentedFramesThatNeverDraw) {
    for (int i = 0; i < 5; ++i) {
        statistics.recordFramePresented();
        clock.advance(0.5);
    }
    EXPECT_NEAR(statistics.frameRate(), 2.0, 1e-6);
    EXPECT_EQ(statistics.framePreparationTime(), 0.0);
    EXPECT_EQ(statistics.frameElapsedTime(), 0.0);
}

TEST_F(QZLStatisticsTest, ResetForgetsTheAverages) {
    for (int i = 0; i < 150; ++i) {
        runFrame(i % 3, {0.002, 0.003, 0.005});
    }
    ASSERT_GT(statistics.frameRate(), 0.0);
    statistics.reset();
    expectAllZero();
}

TEST_F(QZLStatisticsTest, AFrameInFlightOverAResetStillCompletesWithItsTrueTimes) {
    statistics.notifyFrameStarted(1);
    clock.advance(0.25);
    statistics.notifyFrameQueued(1);
    statistics.notifyFrameScheduled(1);
    statistics.reset();
    clock.advance(0.5);
    statistics.notifyFrameCompleted(1);
    clock.advance(1.5);
    statistics.notifyFrameStarted(2);
    statistics.notifyFrameScheduled(2);
    statistics.notifyFrameCompleted(2);  // closes the period that the frame opened
    EXPECT_NEAR(statistics.frameRenderingTime(), 0.5, 1e-9);
    EXPECT_NEAR(statistics.frameElapsedTime(), 0.75, 1e-9);
    EXPECT_EQ(statistics.framePreparationTime(), 0.0);
}

TEST_F(QZLStatisticsTest, DrawingCompletionAndReadingMayMeet) {
    constexpr int frames = 3000;
    std::atomic<int> queued{0};
    std::atomic<int> completed{0};
    {
        std::jthread drawing([&] {
            for (int i = 0; i < frames; ++i) {
                while (i - completed.load(std::memory_order_relaxed) >= 3) {
                    std::this_thread::yield();
                }
                statistics.recordFramePresented();
                statistics.notifyFrameStarted(i % 3);
                clock.advance(0.001);
                statistics.notifyFrameQueued(i % 3);
                queued.store(i + 1, std::memory_order_relaxed);
            }
        });
        std::jthread completion([&] {
            for (int i = 0; i < frames; ++i) {
                while (queued.load(std::memory_order_relaxed) <= i) {
                    std::this_thread::yield();
                }
                statistics.notifyFrameScheduled(i % 3);
                statistics.notifyFrameCompleted(i % 3);
                completed.store(i + 1, std::memory_order_relaxed);
            }
        });
        std::jthread reading([&] {
            while (completed.load(std::memory_order_relaxed) < frames) {
                EXPECT_GE(statistics.frameRate() + statistics.framePreparationTime(), 0.0);
                EXPECT_GE(statistics.frameRenderingTime() + statistics.frameElapsedTime(), 0.0);
                std::this_thread::yield();
            }
        });
    }
    EXPECT_GT(statistics.frameRate(), 0.0);
    EXPECT_NEAR(statistics.framePreparationTime(), 0.001, 1e-9);
}

}  // namespace
