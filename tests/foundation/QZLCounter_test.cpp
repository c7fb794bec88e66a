#include "foundation/QZLCounter.hpp"

#include "foundation/QZLPrecisionTime.hpp"
#include "tests/support/FakeClock.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

/// A standing clock, some time after the zero point, and a counter over one second.
class QZLCounterTest : public testing::Test {
protected:
    QZLCounterTest() {
        QZLPrecisionTimeNanoseconds();  // the process's zero point, at which no period can open
        clock.advance(1.0);
    }

    fake::Clock clock;
    QZLCounter counter{1.0};
};

TEST_F(QZLCounterTest, IsZeroAtFirst) {
    EXPECT_EQ(counter.currentAverageRate(), 0.0);
    EXPECT_EQ(counter.currentAverageCount(), 0.0);
}

TEST_F(QZLCounterTest, IsZeroUntilTheFirstPeriodHasClosed) {
    counter.recordEvent(5);
    clock.advance(0.5);
    counter.recordEvent(5);
    clock.advance(10.0);
    EXPECT_EQ(counter.currentAverageRate(), 0.0);
    EXPECT_EQ(counter.currentAverageCount(), 0.0);
}

TEST_F(QZLCounterTest, TheClosingEventBelongsToTheNextPeriod) {
    counter.recordEvent(10);
    clock.advance(0.5);
    counter.recordEvent(20);
    clock.advance(0.7);
    counter.recordEvent(900);
    EXPECT_NEAR(counter.currentAverageRate(), 2.0 / 1.2, 1e-6);
    EXPECT_EQ(counter.currentAverageCount(), 15.0);
    clock.advance(2.0);
    counter.recordEvent(1);
    EXPECT_NEAR(counter.currentAverageRate(), 1.0 / 2.0, 1e-6) << "the new period held the closing event alone";
    EXPECT_EQ(counter.currentAverageCount(), 900.0);
}

TEST_F(QZLCounterTest, SixtyEventsASecondAreARateOfSixty) {
    for (int i = 0; i < 200; ++i) {
        counter.recordEvent(1);
        clock.advance(1.0 / 60.0);
    }
    EXPECT_NEAR(counter.currentAverageRate(), 60.0, 1e-3);
    EXPECT_EQ(counter.currentAverageCount(), 1.0);
}

TEST_F(QZLCounterTest, AnEventExactlyOnePeriodLaterClosesIt) {
    QZLCounter exact(0.0);
    exact.recordEvent(4);
    exact.recordEvent(6);  // no time has passed: 0 is not less than the period of 0
    EXPECT_EQ(exact.currentAverageCount(), 4.0);
    EXPECT_EQ(exact.currentAverageRate(), 0.0) << "a period without length has no rate";
    // Times that doubles hold exactly only nearly exist; so take the true difference as the period.
    const double start = QZLPrecisionTimeSeconds();
    clock.advance(1.0);
    const double period = QZLPrecisionTimeSeconds() - start;
    clock.advance(-1.0);
    QZLCounter measured(period);
    measured.recordEvent(3);
    clock.advance(1.0);
    measured.recordEvent(5);
    EXPECT_EQ(measured.currentAverageCount(), 3.0);
    EXPECT_EQ(measured.currentAverageRate(), 1.0 / period);
}

TEST_F(QZLCounterTest, AnEventJustBeforeTheEndStaysInThePeriod) {
    counter.recordEvent(1);
    clock.advance(0.999999);
    counter.recordEvent(3);
    EXPECT_EQ(counter.currentAverageCount(), 0.0);
    clock.advance(0.000002);
    counter.recordEvent(9);
    EXPECT_EQ(counter.currentAverageCount(), 2.0);
}

TEST_F(QZLCounterTest, TheAveragesStayWhenEventsStop) {
    counter.recordEvent(7);
    clock.advance(1.5);
    counter.recordEvent(1);
    const double rate = counter.currentAverageRate();
    clock.advance(3600.0);
    EXPECT_EQ(counter.currentAverageRate(), rate);
    EXPECT_EQ(counter.currentAverageCount(), 7.0);
}

TEST_F(QZLCounterTest, APeriodLastsUntilTheNextEventHoweverLate) {
    counter.recordEvent(7);
    clock.advance(100.0);
    counter.recordEvent(1);
    EXPECT_NEAR(counter.currentAverageRate(), 0.01, 1e-6);
}

TEST_F(QZLCounterTest, ResetForgetsTheAveragesAndTheRunningPeriodButKeepsTheLength) {
    counter.recordEvent(7);
    clock.advance(1.5);
    counter.recordEvent(8);
    counter.reset();
    EXPECT_EQ(counter.currentAverageRate(), 0.0);
    EXPECT_EQ(counter.currentAverageCount(), 0.0);
    clock.advance(1.5);
    counter.recordEvent(20);  // opens, closes nothing
    EXPECT_EQ(counter.currentAverageCount(), 0.0);
    clock.advance(0.9);
    counter.recordEvent(30);  // still within the one second
    EXPECT_EQ(counter.currentAverageCount(), 0.0);
    clock.advance(0.1001);
    counter.recordEvent(40);
    EXPECT_EQ(counter.currentAverageCount(), 25.0);
}

TEST_F(QZLCounterTest, CountsUseAllOfSixtyFourBits) {
    counter.recordEvent(std::uint64_t{1} << 62);
    counter.recordEvent(std::uint64_t{1} << 62);
    clock.advance(2.0);
    counter.recordEvent(0);
    EXPECT_EQ(counter.currentAverageCount(), 0x1p62);
}

/// A clock that stands at the process's zero point.
class ClockAtZero final : public platform::Clock {
public:
    ClockAtZero() : _ticks(ticksAtZero()) { platform::setClock(this); }
    ~ClockAtZero() override { platform::setClock(nullptr); }
    ClockAtZero(const ClockAtZero&) = delete;
    ClockAtZero& operator=(const ClockAtZero&) = delete;

    void setSeconds(std::uint64_t seconds) { _ticks = _zero + seconds * 1'000'000'000; }

    platform::TimebaseInfo timebase() const override { return {1, 1}; }
    std::uint64_t absoluteTicks() const override { return _ticks; }
    std::int64_t calendarSeconds() const override { return 0; }
    double secondsSinceReferenceDate() const override { return 0.0; }

private:
    static std::uint64_t ticksAtZero() {
        const fake::Clock standing;
        const std::uint64_t sinceZero = QZLPrecisionTimeNanoseconds();
        return standing.absoluteTicks() - sinceZero;
    }

    std::uint64_t _ticks;
    const std::uint64_t _zero = _ticks;
};

TEST(QZLCounter, AnEventAtTheZeroOfTimeOpensNoPeriod) {
    ClockAtZero clock;
    ASSERT_EQ(QZLPrecisionTimeSeconds(), 0.0);
    QZLCounter counter(1.0);
    counter.recordEvent(100);
    clock.setSeconds(2);
    counter.recordEvent(5);  // closes nothing, opens the first period
    EXPECT_EQ(counter.currentAverageCount(), 0.0);
    EXPECT_EQ(counter.currentAverageRate(), 0.0);
    clock.setSeconds(4);
    counter.recordEvent(6);
    EXPECT_EQ(counter.currentAverageCount(), 5.0);
    EXPECT_EQ(counter.currentAverageRate(), 0.5);
}

TEST_F(QZLCounterTest, TwoWritersAndAReaderNeverSeeATornPeriod) {
    std::atomic<bool> isDone{false};
    {
        std::jthread reader([&] {
            while (!isDone) {
                const double count = counter.currentAverageCount();
                EXPECT_TRUE(count == 0.0 || count == 8.0) << count;
                EXPECT_GE(counter.currentAverageRate(), 0.0);
            }
        });
        std::vector<std::jthread> writers;
        for (int writer = 0; writer < 2; ++writer) {
            writers.emplace_back([this, writer] {
                for (int i = 0; i < 2000; ++i) {
                    counter.recordEvent(8);
                    if (writer == 0) {
                        clock.advance(0.01);
                    }
                    if (i % 500 == 499) {
                        counter.reset();
                    }
                }
            });
        }
        writers.clear();
        isDone = true;
    }
    clock.advance(2.0);
    counter.recordEvent(8);
    clock.advance(2.0);
    counter.recordEvent(8);
    EXPECT_EQ(counter.currentAverageCount(), 8.0);
}

}  // namespace
