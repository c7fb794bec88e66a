#include "renderhost/QZLConversion.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(QZLConversion, TruncatesTowardZero) {
    EXPECT_EQ(QZLTruncated<std::int32_t>(2.9), 2);
    EXPECT_EQ(QZLTruncated<std::int32_t>(-2.9), -2);
    EXPECT_EQ(QZLTruncated<std::uint64_t>(0.999), 0U);
}

TEST(QZLConversion, OutOfRangeBecomesTheNearestEnd) {
    EXPECT_EQ(QZLTruncated<std::int32_t>(1e300), INT32_MAX);
    EXPECT_EQ(QZLTruncated<std::int32_t>(-infinity), INT32_MIN);
    EXPECT_EQ(QZLTruncated<std::int32_t>(2147483647.5), INT32_MAX);
    EXPECT_EQ(QZLTruncated<std::uint64_t>(18446744073709551616.0), UINT64_MAX);
    EXPECT_EQ(QZLTruncated<std::uint64_t>(-1.0), 0U);
}

TEST(QZLConversion, NotANumberBecomesZero) {
    EXPECT_EQ(QZLTruncated<std::int32_t>(notANumber), 0);
    EXPECT_EQ(QZLTruncated<std::uint64_t>(notANumber), 0U);
}
