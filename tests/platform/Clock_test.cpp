#include "platform/Clock.hpp"

#include "tests/support/FakeClock.hpp"

#include <gtest/gtest.h>

#include <ctime>

namespace {

TEST(Clock, TicksOfTheRealClockAreNanosecondsOfTheMonotonicClock) {
    const platform::Clock& clock = platform::systemClock();
    EXPECT_EQ(clock.timebase().numerator, 1U);
    EXPECT_EQ(clock.timebase().denominator, 1U);

    const std::uint64_t before = clock.absoluteTicks();
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    const std::uint64_t after = clock.absoluteTicks();

    const std::uint64_t between = static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
    EXPECT_LE(before, between);
    EXPECT_LE(between, after);
}

TEST(Clock, TicksNeverGoBack) {
    std::uint64_t last = 0;
    for (int i = 0; i < 10000; ++i) {
        const std::uint64_t ticks = platform::systemClock().absoluteTicks();
        ASSERT_GE(ticks, last);
        last = ticks;
    }
}

TEST(Clock, CalendarSecondsCountFrom1970AndTheReferenceDateIsIn2001) {
    const std::int64_t before = std::time(nullptr);
    const double sinceReferenceDate = platform::systemClock().secondsSinceReferenceDate();
    const std::int64_t seconds = platform::systemClock().calendarSeconds();

    EXPECT_GE(seconds, before);
    EXPECT_NEAR(static_cast<double>(seconds) - sinceReferenceDate, 978307200.0, 60.0);
}

TEST(Clock, AnotherClockIsInForceUntilTheRealOneIsRestored) {
    EXPECT_EQ(&platform::clock(), &platform::systemClock());
    {
        const fake::Clock fakeClock;
        EXPECT_EQ(&platform::clock(), &fakeClock);
    }
    EXPECT_EQ(&platform::clock(), &platform::systemClock());
}

}  // namespace
