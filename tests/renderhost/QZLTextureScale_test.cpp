#include "renderhost/QZLTexture.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

struct Size {
    std::uint64_t width;
    std::uint64_t height;
    bool operator==(const Size&) const = default;
};

constexpr double noLimit = 1e9;

}  // namespace

TEST(QZLTextureScaleEvenly, DividesByTheWholeNumberNearestToTheIdeal) {
    Size size{2880, 1800};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(1296000, 1, 8, size.width, size.height), 2U);
    EXPECT_EQ(size, (Size{1440, 900}));

    size = {2880, 1800};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(1000000, 1, 8, size.width, size.height), 2U);
    EXPECT_EQ(size, (Size{1440, 900}));
}

TEST(QZLTextureScaleEvenly, TruncatesTheSides) {
    Size size{1999, 1001};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(500000, 1, 8, size.width, size.height), 2U);
    EXPECT_EQ(size, (Size{999, 500}));
}

TEST(QZLTextureScaleEvenly, HalvesRoundUp) {
    Size size{30, 30};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(400, 1, 8, size.width, size.height), 2U);  // 1.5
}

TEST(QZLTextureScaleEvenly, LeavesAnImageSmallerThanTheIdeal) {
    Size size{100, 50};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(1000000, 1, 8, size.width, size.height), 1U);
    EXPECT_EQ(size, (Size{100, 50}));
}

TEST(QZLTextureScaleEvenly, StaysBetweenTheBounds) {
    Size size{8000, 8000};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(1000, 1, 4, size.width, size.height), 4U);
    EXPECT_EQ(size, (Size{2000, 2000}));
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(1000000000, 2, 4, size.width, size.height), 2U);
    EXPECT_EQ(size, (Size{1000, 1000}));
}

TEST(QZLTextureScaleEvenly, TheLowerBoundIsTestedFirst) {
    Size size{1000, 1000};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(1000000, 4, 2, size.width, size.height), 4U);
    size = {1000, 1000};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(10000, 4, 2, size.width, size.height), 2U);
}

TEST(QZLTextureScaleEvenly, AnIdealOfZeroTakesTheUpperBound) {
    Size size{1000, 1000};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(0, 1, 5, size.width, size.height), 5U);
}

TEST(QZLTextureScaleEvenly, AnEmptyImageStaysEmpty) {
    Size size{0, 0};
    EXPECT_EQ(QZLTextureScaleEvenlyToIdeal(0, 1, 5, size.width, size.height), 1U);
    EXPECT_EQ(size, (Size{0, 0}));
}

TEST(QZLTextureScaleExactly, DividesByTheFractionAndRoundsToNearest) {
    Size size{2880, 1800};
    EXPECT_EQ(QZLTextureScaleExactlyToIdeal(1296000, size.width, size.height, 1.0, noLimit), 2.0);
    EXPECT_EQ(size, (Size{1440, 900}));

    size = {2880, 1800};
    EXPECT_NEAR(QZLTextureScaleExactlyToIdeal(1000000, size.width, size.height, 1.0, noLimit), 2.2768, 1e-4);
    EXPECT_EQ(size, (Size{1265, 791}));
}

TEST(QZLTextureScaleExactly, HalvesRoundUp) {
    Size size{5, 3};
    EXPECT_EQ(QZLTextureScaleExactlyToIdeal(1, size.width, size.height, 2.0, 2.0), 2.0);
    EXPECT_EQ(size, (Size{3, 2}));
}

TEST(QZLTextureScaleExactly, StaysBetweenTheBounds) {
    Size size{3840, 2160};
    EXPECT_EQ(QZLTextureScaleExactlyToIdeal(400000, size.width, size.height, 1.0, 3.0), 3.0);
    EXPECT_EQ(size, (Size{1280, 720}));
    EXPECT_EQ(QZLTextureScaleExactlyToIdeal(4000000, size.width, size.height, 1.0, 3.0), 1.0);
    EXPECT_EQ(size, (Size{1280, 720}));
}

TEST(QZLTextureScaleExactly, TheLowerBoundIsTestedFirst) {
    Size size{100, 100};
    EXPECT_EQ(QZLTextureScaleExactlyToIdeal(10000, size.width, size.height, 4.0, 2.0), 4.0);
    EXPECT_EQ(size, (Size{25, 25}));
}

TEST(QZLTextureScaleExactly, WhatHasNoScaleHasNoSizeEither) {
    Size size{0, 0};
    EXPECT_TRUE(std::isnan(QZLTextureScaleExactlyToIdeal(0, size.width, size.height, 1.0, noLimit)));
    EXPECT_EQ(size, (Size{0, 0}));
    size = {10, 10};
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(QZLTextureScaleExactlyToIdeal(0, size.width, size.height, 1.0, infinity), infinity);
    EXPECT_EQ(size, (Size{0, 0}));
}
