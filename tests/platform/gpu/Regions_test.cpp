#include "platform/gpu/Regions.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr gpu::Extent size{8, 6};
constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();

}  // namespace

TEST(Regions, ARegionUpToTheEdgesIsInside) {
    EXPECT_TRUE(gpu::isInside({{0, 0}, {8, 6}}, size));
    EXPECT_TRUE(gpu::isInside({{7, 5}, {1, 1}}, size));
}

TEST(Regions, ARegionOverAnEdgeIsNotInside) {
    EXPECT_FALSE(gpu::isInside({{0, 0}, {9, 6}}, size));
    EXPECT_FALSE(gpu::isInside({{0, 0}, {8, 7}}, size));
    EXPECT_FALSE(gpu::isInside({{1, 0}, {8, 6}}, size));
    EXPECT_FALSE(gpu::isInside({{0, 1}, {8, 6}}, size));
    EXPECT_FALSE(gpu::isInside({{8, 0}, {1, 1}}, size));
    EXPECT_FALSE(gpu::isInside({{0, 6}, {1, 1}}, size));
}

TEST(Regions, AnEmptyRegionIsNotInside) {
    EXPECT_FALSE(gpu::isInside({{0, 0}, {0, 6}}, size));
    EXPECT_FALSE(gpu::isInside({{0, 0}, {8, 0}}, size));
    EXPECT_FALSE(gpu::isInside({{0, 0}, {0, 0}}, {0, 0}));
}

TEST(Regions, SumsThatWrapAroundAreNotInside) {
    EXPECT_FALSE(gpu::isInside({{huge, 0}, {2, 1}}, size));
    EXPECT_FALSE(gpu::isInside({{0, huge}, {1, 2}}, size));
    EXPECT_FALSE(gpu::isInside({{2, 0}, {huge, 1}}, size));
}

TEST(Regions, TheLastRowNeedsNoPadding) {
    EXPECT_TRUE(gpu::holdsRows(23, 3, 10, 3));
    EXPECT_FALSE(gpu::holdsRows(22, 3, 10, 3));
    EXPECT_TRUE(gpu::holdsRows(3, 1, 10, 3));
    EXPECT_TRUE(gpu::holdsRows(9, 3, 3, 3));
    EXPECT_FALSE(gpu::holdsRows(8, 3, 3, 3));
}

TEST(Regions, NoMemoryHoldsRowsThatAreNoneEmptyOverlappingOrEndless) {
    EXPECT_FALSE(gpu::holdsRows(100, 0, 10, 3));
    EXPECT_FALSE(gpu::holdsRows(100, 3, 10, 0));
    EXPECT_FALSE(gpu::holdsRows(100, 3, 0, 0));
    EXPECT_FALSE(gpu::holdsRows(100, 3, 2, 3));
    EXPECT_FALSE(gpu::holdsRows(100, 1, gpu::maximumBytesPerRow + 1, 3));
    EXPECT_FALSE(gpu::holdsRows(huge, huge, huge, huge));
    EXPECT_FALSE(gpu::holdsRows(100, 3, huge / 2 + 1, 3));
}

TEST(Regions, EveryFormatHasTheBytesOfItsName) {
    using gpu::PixelFormat;
    EXPECT_EQ(gpu::bytesPerPixel(PixelFormat::Invalid), 0u);
    EXPECT_EQ(gpu::bytesPerPixel(PixelFormat::R8Unorm), 1u);
    EXPECT_EQ(gpu::bytesPerPixel(PixelFormat::R8Snorm), 1u);
    EXPECT_EQ(gpu::bytesPerPixel(PixelFormat::R16Unorm), 2u);
    EXPECT_EQ(gpu::bytesPerPixel(PixelFormat::BGRA8Unorm), 4u);
    EXPECT_EQ(gpu::bytesPerPixel(PixelFormat::RGB10A2Unorm), 4u);
    EXPECT_EQ(gpu::bytesPerPixel(PixelFormat::RGBA16Float), 8u);
    EXPECT_EQ(gpu::bytesPerPixel(static_cast<PixelFormat>(12345)), 0u);
}
