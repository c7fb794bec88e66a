#include "foundation/QZLPrecisionTime.hpp"

#include "tests/support/FakeClock.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <latch>
#include <thread>
#include <vector>

namespace {

TEST(QZLTickConversion, TicksOfOneNanosecondStayUnrounded) {
    const QZLTickConversion conversion({1, 1}, 10);
    EXPECT_EQ(conversion.nanoseconds(10), 0U);
    EXPECT_EQ(conversion.nanoseconds((std::uint64_t{1} << 60) + 11), (std::uint64_t{1} << 60) + 1)
        << "a double could not hold it";
}

TEST(QZLTickConversion, AFactorOfOneNeedsNoOnes) {
    const QZLTickConversion conversion({1000, 1000}, 0);
    EXPECT_EQ(conversion.nanoseconds((std::uint64_t{1} << 60) + 1), (std::uint64_t{1} << 60) + 1);
}

TEST(QZLTickConversion, OtherTicksAreScaledAndRoundedDown) {
    const QZLTickConversion longer({125, 3}, 1000);  // 41.67 ns, the ticks of a 24 MHz counter
    EXPECT_EQ(longer.nanoseconds(1000), 0U);
    EXPECT_EQ(longer.nanoseconds(1001), 41U);
    EXPECT_EQ(longer.nanoseconds(1002), 83U);
    EXPECT_EQ(longer.nanoseconds(1000 + 24'000'000), 1'000'000'000U);
    const QZLTickConversion shorter({1, 2}, 0);
    EXPECT_EQ(shorter.nanoseconds(7), 3U);
}

TEST(QZLTickConversion, OtherTicksPassThroughADouble) {
    const QZLTickConversion conversion({2, 1}, 0);
    const std::uint64_t large = std::uint64_t{1} << 60;
    EXPECT_EQ(conversion.nanoseconds(large + 1), 2 * large);
}

TEST(QZLTickConversion, TicksMayRunOver) {
    const QZLTickConversion conversion({1, 1}, ~std::uint64_t{0} - 4);
    EXPECT_EQ(conversion.nanoseconds(5), 10U);
}

TEST(QZLPrecisionTime, FollowsTheClockToTheNanosecond) {
    fake::Clock clock;
    const std::uint64_t start = QZLPrecisionTimeNanoseconds();
    EXPECT_EQ(QZLPrecisionTimeNanoseconds(), start);
    clock.advance(0.25);
    EXPECT_EQ(QZLPrecisionTimeNanoseconds(), start + 250'000'000);
    clock.advance(1e-9);
    EXPECT_EQ(QZLPrecisionTimeNanoseconds(), start + 250'000'001);
}

TEST(QZLPrecisionTime, SecondsAreTheNanosecondsScaled) {
    fake::Clock clock;
    clock.advance(1.5);
    EXPECT_EQ(QZLPrecisionTimeSeconds(), static_cast<double>(QZLPrecisionTimeNanoseconds()) * 1e-9);
}

int exitCodeOfAFirstUseAtZero() {
    fake::Clock clock;
    if (QZLPrecisionTimeNanoseconds() != 0) {
        return 1;
    }
    clock.advance(2.0);
    return QZLPrecisionTimeNanoseconds() == 2'000'000'000 ? 0 : 2;
}

int exitCodeOfAFirstUseByMany() {
    const fake::Clock clock;
    constexpr std::ptrdiff_t count = 8;
    std::latch start(count);
    std::vector<std::uint64_t> times(count, 1);
    {
        std::vector<std::jthread> threads;
        for (std::uint64_t& time : times) {
            threads.emplace_back([&start, &time] {
                start.arrive_and_wait();
                time = QZLPrecisionTimeNanoseconds();
            });
        }
    }
    return times == std::vector<std::uint64_t>(count, 0) ? 0 : 1;
}

// The zero point is set once per process, so these two need a process of their own.
TEST(QZLPrecisionTimeDeathTest, StartsAtZeroWithItsFirstUse) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(exitCodeOfAFirstUseAtZero()), testing::ExitedWithCode(0), "");
}

TEST(QZLPrecisionTimeDeathTest, HasOneZeroPointWhenManyComeFirst) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(exitCodeOfAFirstUseByMany()), testing::ExitedWithCode(0), "");
}

}  // namespace
