#include "host/PointerTravel.hpp"

#include <gtest/gtest.h>

namespace {

using host::PointerTravel;
using namespace std::chrono_literals;

TEST(PointerTravel, TheFirstPlaceIsNoMovement) {
    PointerTravel pointer;
    EXPECT_FALSE(pointer.movedTo(500, 500, 0ms));
}

TEST(PointerTravel, MoreThanTenPixelsWithinHalfASecondIsMovement) {
    PointerTravel pointer;
    EXPECT_FALSE(pointer.movedTo(0, 0, 0ms));
    EXPECT_FALSE(pointer.movedTo(10, 0, 100ms));
    EXPECT_TRUE(pointer.movedTo(11, 0, 200ms));
}

TEST(PointerTravel, DistanceIsMeasuredAlongTheLine) {
    PointerTravel pointer;
    EXPECT_FALSE(pointer.movedTo(0, 0, 0ms));
    EXPECT_FALSE(pointer.movedTo(7, 7, 100ms));
    EXPECT_TRUE(pointer.movedTo(8, 8, 200ms));
}

TEST(PointerTravel, SlowDriftIsNone) {
    PointerTravel pointer;
    for (int step = 0; step < 200; ++step) {
        EXPECT_FALSE(pointer.movedTo(step * 4.0, 0, step * 250ms)) << step;
    }
}

TEST(PointerTravel, TremblingInPlaceIsNone) {
    PointerTravel pointer;
    for (int step = 0; step < 200; ++step) {
        EXPECT_FALSE(pointer.movedTo(step % 2 == 0 ? 0 : 8, step % 3, step * 10ms)) << step;
    }
}

TEST(PointerTravel, AFastStrokeAfterALongRestIsMovement) {
    PointerTravel pointer;
    EXPECT_FALSE(pointer.movedTo(0, 0, 0ms));
    EXPECT_TRUE(pointer.movedTo(100, 0, 1h));
}

TEST(PointerTravel, AStrokeThereAndBackIsMovement) {
    PointerTravel pointer;
    EXPECT_FALSE(pointer.movedTo(0, 0, 0ms));
    EXPECT_TRUE(pointer.movedTo(12, 0, 20ms));
    EXPECT_TRUE(pointer.movedTo(0, 0, 40ms));
}

TEST(PointerTravel, ManySmallStepsInOneDirectionAreMovement) {
    PointerTravel pointer;
    for (int step = 0; step <= 11; ++step) {
        EXPECT_EQ(pointer.movedTo(step, 0, step * 20ms), step == 11) << step;
    }
}

TEST(PointerTravel, PlacesLeftMoreThanHalfASecondAgoDoNotCount) {
    PointerTravel pointer;
    EXPECT_FALSE(pointer.movedTo(100, 100, 0ms));
    EXPECT_FALSE(pointer.movedTo(106, 100, 1000ms));
    EXPECT_FALSE(pointer.movedTo(112, 100, 1500ms));
}

TEST(PointerTravel, WhatIsForgottenDoesNotCount) {
    PointerTravel pointer;
    EXPECT_FALSE(pointer.movedTo(100, 100, 0ms));
    pointer.forget();
    EXPECT_FALSE(pointer.movedTo(2000, 100, 1ms));
    EXPECT_TRUE(pointer.movedTo(2011, 100, 2ms));
}

}  // namespace
