#include "platform/ui/ViewGeometry.hpp"

#include <gtest/gtest.h>

namespace {

using platform::Rect;

TEST(ViewGeometry, AViewsBottomIsAWidgetsLargestY) {
    EXPECT_EQ(platform::toWidget({0, 0, 10, 20}, 100), QRectF(0, 80, 10, 20));
    EXPECT_EQ(platform::toWidget({5, 70, 10, 30}, 100), QRectF(5, 0, 10, 30));
}

TEST(ViewGeometry, ThereAndBackIsTheSame) {
    const Rect rect{1.5, 2.25, 30, 40};
    EXPECT_EQ(platform::toView(platform::toWidget(rect, 99), 99), rect);
}

TEST(ViewGeometry, PlacesOfWidgetsAreWholePoints) {
    EXPECT_EQ(platform::toWholeWidget({0, 0, 100, 28.4}, 768), QRect(0, 740, 100, 28));
    EXPECT_EQ(platform::toWholeWidget({0, 0, 100, 28.6}, 768), QRect(0, 739, 100, 29));
}

}  // namespace
