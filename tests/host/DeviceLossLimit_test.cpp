#include "host/DeviceLossLimit.hpp"

#include <gtest/gtest.h>

namespace {

using host::DeviceLossLimit;
using namespace std::chrono_literals;

TEST(DeviceLossLimit, ThreeLossesWithinAMinuteAreMadeUpFor) {
    DeviceLossLimit limit;
    EXPECT_TRUE(limit.mayRecover(0ms));
    EXPECT_TRUE(limit.mayRecover(0ms));
    EXPECT_TRUE(limit.mayRecover(59'999ms));
}

TEST(DeviceLossLimit, AFourthWithinAMinuteIsNot) {
    DeviceLossLimit limit;
    for (int loss = 0; loss < 3; ++loss) {
        limit.mayRecover(loss * 1s);
    }
    EXPECT_FALSE(limit.mayRecover(59'999ms));
}

TEST(DeviceLossLimit, AMinuteAfterTheFirstThereIsRoomForAnother) {
    DeviceLossLimit limit;
    for (int loss = 0; loss < 3; ++loss) {
        limit.mayRecover(loss * 1s);
    }
    EXPECT_TRUE(limit.mayRecover(60s));
    EXPECT_FALSE(limit.mayRecover(60'999ms)) << "the second was less than a minute ago";
}

TEST(DeviceLossLimit, WhatWasGivenUpOnceIsGivenUpForGood) {
    DeviceLossLimit limit;
    for (int loss = 0; loss < 4; ++loss) {
        limit.mayRecover(0ms);
    }
    EXPECT_FALSE(limit.mayRecover(24h));
}

TEST(DeviceLossLimit, ALossNowAndThenIsMadeUpForForEver) {
    DeviceLossLimit limit;
    for (int loss = 0; loss < 1000; ++loss) {
        ASSERT_TRUE(limit.mayRecover(loss * 20s)) << loss;
    }
}

}  // namespace
