#include "host/DeviceLossLimit.hpp"

#include <gtest/gtest.h>

namespace {

using host::DeviceLossLimit;
using namespace std::chrono_literals;

TEST(DeviceLossLimit, ThreeLossesWithinAMinuteAreMadeUpForAndTheFourthIsNot) {
    DeviceLossLimit limit;
    EXPECT_TRUE(limit.mayRecover(0s));
    EXPECT_TRUE(limit.mayRecover(20s));
    EXPECT_TRUE(limit.mayRecover(40s));
    EXPECT_FALSE(limit.mayRecover(59s));
}

TEST(DeviceLossLimit, AMinuteAfterTheFirstThereIsRoomForAnother) {
    DeviceLossLimit limit;
    for (int loss = 0; loss < 3; ++loss) {
        EXPECT_TRUE(limit.mayRecover(loss * 1s));
    }
    EXPECT_TRUE(limit.mayRecover(60s));
    EXPECT_FALSE(limit.mayRecover(60'999ms)) << "the second was less than a minute ago";
}

TEST(DeviceLossLimit, LossesAMinuteApartAreMadeUpForAgainAndAgain) {
    DeviceLossLimit limit;
    for (int loss = 0; loss < 100; ++loss) {
        EXPECT_TRUE(limit.mayRecover(loss * 21s)) << loss;
    }
}

TEST(DeviceLossLimit, OnceGivenUpItStaysSo) {
    DeviceLossLimit limit;
    for (int loss = 0; loss < 4; ++loss) {
        static_cast<void>(limit.mayRecover(0s));
    }
    EXPECT_FALSE(limit.mayRecover(24h));
}

}  // namespace
