#include "host/PointerTravel.hpp"

#include <gtest/gtest.h>

namespace {

using host::PointerTravel;
using namespace std::chrono_literals;

TEST(PointerTravel, TheFirstPlaceIsNoMovement) {
    PointerTravel pointer;
    EXPECT_FALSE(pointer.movedTo(1900.0, 1000.0, 0ms));
}

TEST(PointerTravel, TenPixelsAreATremor) {
    PointerTravel pointer;
    pointer.movedTo(100.0, 100.0, 0ms);
    EXPECT_FALSE(pointer.movedTo(110.0, 100.0, 100ms));
    EXPECT_FALSE(pointer.movedTo(106.0, 108.0, 200ms));
}

TEST(PointerTravel, MoreThanTenPixelsWithinHalfASecondAreAnIntention) {
    PointerTravel pointer;
    pointer.movedTo(100.0, 100.0, 0ms);
    EXPECT_TRUE(pointer.movedTo(100.0, 89.0, 499ms));
}

TEST(PointerTravel, ManySmallStepsInOneDirectionAreAnIntention) {
    PointerTravel pointer;
    pointer.movedTo(100.0, 100.0, 0ms);
    bool moved = false;
    for (int step = 1; step <= 11; ++step) {
        moved = pointer.movedTo(100.0 + step, 100.0, step * 20ms);
        EXPECT_EQ(moved, step == 11) << step;
    }
}

TEST(PointerTravel, TremblingForHoursIsNone) {
    PointerTravel pointer;
    for (int step = 0; step < 100'000; ++step) {
        ASSERT_FALSE(pointer.movedTo(100.0 + step % 2 * 7.0, 100.0 + step % 3 * 3.0, step * 10ms)) << step;
    }
}

TEST(PointerTravel, ASlowDriftIsNone) {
    PointerTravel pointer;
    for (int step = 0; step < 1000; ++step) {
        ASSERT_FALSE(pointer.movedTo(step, 0.0, step * 100ms)) << step;
    }
}

TEST(PointerTravel, AJumpAfterALongRestIsAnIntention) {
    PointerTravel pointer;
    pointer.movedTo(100.0, 100.0, 0ms);
    EXPECT_TRUE(pointer.movedTo(150.0, 100.0, 60min)) << "it lay still where it was until just before";
}

TEST(PointerTravel, PlacesLeftLongerThanHalfASecondAgoDoNotCount) {
    PointerTravel pointer;
    pointer.movedTo(100.0, 100.0, 0ms);
    pointer.movedTo(106.0, 100.0, 1000ms);
    EXPECT_FALSE(pointer.movedTo(112.0, 100.0, 1500ms));
}

TEST(PointerTravel, WhatIsForgottenDoesNotCount) {
    PointerTravel pointer;
    pointer.movedTo(100.0, 100.0, 0ms);
    pointer.forget();
    EXPECT_FALSE(pointer.movedTo(2000.0, 100.0, 1ms));
    EXPECT_TRUE(pointer.movedTo(2011.0, 100.0, 2ms));
}

}  // namespace
