#include "platform/RefreshSchedule.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

using platform::RefreshSchedule;
using std::chrono::nanoseconds;
using namespace std::chrono_literals;

TEST(RefreshSchedule, RefreshesAreWholeMultiplesOfThePeriod) {
    const RefreshSchedule schedule({1, 50});
    EXPECT_EQ(schedule.nextAfter(0ns), 20ms);
    EXPECT_EQ(schedule.nextAfter(1ns), 20ms);
    EXPECT_EQ(schedule.nextAfter(20ms - 1ns), 20ms);
}

TEST(RefreshSchedule, TheMomentOfARefreshYieldsTheOneAfter) {
    const RefreshSchedule schedule({1001, 60000});
    nanoseconds now = 0ns;
    for (int i = 0; i < 1000; ++i) {
        const nanoseconds next = schedule.nextAfter(now);
        ASSERT_GE(next - now, 16683333ns);
        ASSERT_LE(next - now, 16683334ns);
        now = next;
    }
}

TEST(RefreshSchedule, DoesNotDriftWhereThePeriodIsNoWholeNumberOfNanoseconds) {
    const RefreshSchedule schedule({1, 60});
    nanoseconds now = 0ns;
    for (int i = 0; i < 60 * 600; ++i) {
        now = schedule.nextAfter(now);
    }
    EXPECT_EQ(now, 600s);
}

TEST(RefreshSchedule, SkipsTheRefreshesThatWereMissed) {
    const RefreshSchedule schedule({1, 100});
    EXPECT_EQ(schedule.nextAfter(10ms + 57ms), 70ms);
}

TEST(RefreshSchedule, StaysExactAfterYearsOfRunning) {
    const RefreshSchedule schedule({1001, 60000});
    const nanoseconds years = std::chrono::hours(24 * 365 * 50);
    const nanoseconds next = schedule.nextAfter(years);
    EXPECT_GT(next, years);
    EXPECT_LE(next, years + 16683334ns);
    EXPECT_EQ(schedule.nextAfter(next - 1ns), next);
}

TEST(RefreshSchedule, APeriodThatIsZeroOrNegativeIsAHundredthOfASecond) {
    for (const platform::RefreshPeriod period : {platform::RefreshPeriod{0, 60}, platform::RefreshPeriod{1, 0},
                                                 platform::RefreshPeriod{-1, 60}, platform::RefreshPeriod{1, -60}}) {
        EXPECT_EQ(RefreshSchedule(period).nextAfter(0ns), 10ms);
    }
}

TEST(RefreshSchedule, APeriodBeyondTheClockIsTheClocksEnd) {
    const RefreshSchedule schedule({std::numeric_limits<std::int64_t>::max(), 1});
    EXPECT_EQ(schedule.nextAfter(1s), nanoseconds::max());
}

TEST(RefreshSchedule, APeriodUnderANanosecondStillMovesOn) {
    const RefreshSchedule schedule({1, std::numeric_limits<std::int32_t>::max()});
    EXPECT_EQ(schedule.nextAfter(1s), 1s + 1ns);
}

}  // namespace
