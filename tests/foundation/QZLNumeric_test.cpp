#include "foundation/QZLNumeric.hpp"

#include "platform/Random.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <vector>

using testing::ElementsAre;

namespace {

constexpr double pi = std::numbers::pi;
constexpr double twoPi = 2.0 * pi;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(QZLClampWithDefault, NotANumberBecomesTheDefault) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(QZLClampWithDefault(nan, 0.0F, 1.0F, 0.5F), 0.5F);
    EXPECT_EQ(QZLClampWithDefault(nan, 0.0F, 1.0F, 7.0F), 7.0F) << "the default itself is not clamped";
}

TEST(QZLClampWithDefault, ValuesStayWithinTheBounds) {
    EXPECT_EQ(QZLClampWithDefault(2.0F, 0.0F, 1.0F, 0.5F), 1.0F);
    EXPECT_EQ(QZLClampWithDefault(-1.0F, 0.0F, 1.0F, 0.5F), 0.0F);
    EXPECT_EQ(QZLClampWithDefault(0.25F, 0.0F, 1.0F, 0.5F), 0.25F);
    EXPECT_EQ(QZLClampWithDefault(0.0F, 0.0F, 1.0F, 0.5F), 0.0F);
    EXPECT_EQ(QZLClampWithDefault(1.0F, 0.0F, 1.0F, 0.5F), 1.0F);
    EXPECT_EQ(QZLClampWithDefault(infinity, 0.0F, 1.0F, 0.5F), 1.0F);
    EXPECT_EQ(QZLClampWithDefault(-infinity, 0.0F, 1.0F, 0.5F), 0.0F);
}

TEST(QZLClampWithDefault, TheLowerBoundWinsWhenTheBoundsAreCrossed) {
    EXPECT_EQ(QZLClampWithDefault(0.5F, 1.0F, 0.0F, 9.0F), 1.0F);
    EXPECT_EQ(QZLClampWithDefault(5.0F, 1.0F, 0.0F, 9.0F), 0.0F);
    EXPECT_EQ(QZLClampWithDefault(1.0F, 1.0F, 0.0F, 9.0F), 0.0F);
}

TEST(QZLWrap, PhasesFromZeroUpFallBelowThePeriod) {
    EXPECT_EQ(QZLWrap(7.0, twoPi), std::fmod(7.0, twoPi));
    EXPECT_NEAR(QZLWrap(7.0, twoPi), 0.7168, 1e-4);
    EXPECT_EQ(QZLWrap(0.0, 3.0), 0.0);
    EXPECT_EQ(QZLWrap(-0.0, 3.0), 0.0);
    EXPECT_EQ(QZLWrap(twoPi, twoPi), 0.0);
    EXPECT_EQ(QZLWrap(7.5, 2.0), 1.5);
}

TEST(QZLWrap, NegativePhasesFallAboveZeroUpToThePeriod) {
    EXPECT_EQ(QZLWrap(-1.0, twoPi), twoPi - 1.0);
    EXPECT_EQ(QZLWrap(-7.5, 2.0), 0.5);
    EXPECT_EQ(QZLWrap(-twoPi, twoPi), twoPi);
    EXPECT_EQ(QZLWrap(-6.0, 2.0), 2.0);
}

TEST(QZLWrap, NotANumberStaysSo) {
    EXPECT_TRUE(std::isnan(QZLWrap(notANumber, twoPi)));
}

TEST(QZLInterpolateLinear, RunsThroughBothEndsAndBeyond) {
    EXPECT_EQ(QZLInterpolateLinear(0.0, 2.0, 6.0), 2.0);
    EXPECT_EQ(QZLInterpolateLinear(1.0, 2.0, 6.0), 6.0);
    EXPECT_EQ(QZLInterpolateLinear(0.25, 2.0, 6.0), 3.0);
    EXPECT_EQ(QZLInterpolateLinear(-0.5, 2.0, 6.0), 0.0);
    EXPECT_EQ(QZLInterpolateLinear(2.0, 2.0, 6.0), 10.0);
}

TEST(QZLInterpolateCubic, MeetsTheInnerPointsWhateverTheOuterOnes) {
    for (const double outer : {-1e6, -1.0, 0.0, 0.3, 1e6}) {
        EXPECT_EQ(QZLInterpolateCubic(0.0, outer, 0.7, 0.2, -outer), 0.7);
        EXPECT_EQ(QZLInterpolateCubic(1.0, outer, 0.7, 0.2, -outer), 0.2);
    }
}

TEST(QZLInterpolateCubic, IsTheCatmullRomSpline) {
    EXPECT_EQ(QZLInterpolateCubic(0.5, 0.0, 0.0, 1.0, 1.0), 0.5);
    // At a half the weights are -1/16, 9/16, 9/16 and -1/16.
    EXPECT_EQ(QZLInterpolateCubic(0.5, 16.0, 0.0, 0.0, 0.0), -1.0);
    EXPECT_EQ(QZLInterpolateCubic(0.5, 0.0, 16.0, 0.0, 0.0), 9.0);
    EXPECT_EQ(QZLInterpolateCubic(0.5, 0.0, 0.0, 16.0, 0.0), 9.0);
    EXPECT_EQ(QZLInterpolateCubic(0.5, 0.0, 0.0, 0.0, 16.0), -1.0);
    // At a quarter they are -9/128, 111/128, 29/128 and -3/128.
    EXPECT_EQ(QZLInterpolateCubic(0.25, 128.0, 0.0, 0.0, 0.0), -9.0);
    EXPECT_EQ(QZLInterpolateCubic(0.25, 0.0, 128.0, 0.0, 0.0), 111.0);
    EXPECT_EQ(QZLInterpolateCubic(0.25, 0.0, 0.0, 128.0, 0.0), 29.0);
    EXPECT_EQ(QZLInterpolateCubic(0.25, 0.0, 0.0, 0.0, 128.0), -3.0);
    // Beyond the two points the same cubic goes on: at 2 the weights are -1, 3, -3 and 2.
    EXPECT_EQ(QZLInterpolateCubic(2.0, 1.0, 0.0, 0.0, 0.0), -1.0);
    EXPECT_EQ(QZLInterpolateCubic(2.0, 0.0, 1.0, 0.0, 0.0), 3.0);
    EXPECT_EQ(QZLInterpolateCubic(2.0, 0.0, 0.0, 1.0, 0.0), -3.0);
    EXPECT_EQ(QZLInterpolateCubic(2.0, 0.0, 0.0, 0.0, 1.0), 2.0);
}

TEST(QZLInterpolateCubic, SumsTheInnerTermsFirstThenTheOuterOnes) {
    // Terms at a half, before halving: -p0/8, 9/8 p1, 9/8 p2, -p3/8. The big inner terms cancel before the small outer
    // ones come, which any other order would lose.
    EXPECT_EQ(QZLInterpolateCubic(0.5, 16.0, 1e30, -1e30, 0.0), -1.0);
    EXPECT_EQ(QZLInterpolateCubic(0.5, 0.0, 1e30, -1e30, 16.0), -1.0);
    // The outer ones come one by one: the first is lost in the inner sum.
    EXPECT_EQ(QZLInterpolateCubic(0.5, 16.0, std::ldexp(1.0, 100), 0.0, 9.0 * std::ldexp(1.0, 100)), 0.0);
}

TEST(QZLInterpolateRangeCubic, KeepsARangeThatAllShare) {
    const QZLRange range{1.0, 2.0, 3.0, 6.0};
    EXPECT_EQ(QZLInterpolateRangeCubic(0.5, range, range, range, range), range);
}

TEST(QZLInterpolateRangeCubic, InterpolatesCentreAndExtentPerAxis) {
    const QZLRange r0{0.0, 0.0, 2.0, 4.0};
    const QZLRange r1{1.0, -1.0, 2.0, 7.0};
    const QZLRange r2{4.0, 2.0, 8.0, 3.0};
    const QZLRange r3{-3.0, 5.0, 1.0, 9.0};
    EXPECT_EQ(QZLInterpolateRangeCubic(0.0, r0, r1, r2, r3), r1);
    EXPECT_EQ(QZLInterpolateRangeCubic(1.0, r0, r1, r2, r3), r2);
    const double t = 0.3;
    const QZLRange between = QZLInterpolateRangeCubic(t, r0, r1, r2, r3);
    EXPECT_DOUBLE_EQ((between.firstX + between.secondX) / 2.0, QZLInterpolateCubic(t, 1.0, 1.5, 6.0, -1.0));
    EXPECT_DOUBLE_EQ(between.secondX - between.firstX, QZLInterpolateCubic(t, 2.0, 1.0, 4.0, 4.0));
    EXPECT_DOUBLE_EQ((between.firstY + between.secondY) / 2.0, QZLInterpolateCubic(t, 2.0, 3.0, 2.5, 7.0));
    EXPECT_DOUBLE_EQ(between.secondY - between.firstY, QZLInterpolateCubic(t, 4.0, 8.0, 1.0, 4.0));
}

TEST(QZLInterpolateRangeCubic, NeverCollapses) {
    const QZLRange point{0.0, 0.5, 0.0, 0.5};
    const QZLRange result = QZLInterpolateRangeCubic(0.4, point, point, point, point);
    EXPECT_EQ(result.firstX, -0.5e-9);
    EXPECT_EQ(result.secondX, 0.5e-9);
    EXPECT_DOUBLE_EQ(result.firstY, 0.5 - 0.5e-9);
    EXPECT_DOUBLE_EQ(result.secondY, 0.5 + 0.5e-9);
}

TEST(QZLInterpolateRangeCubic, NeverTurnsInsideOut) {
    const QZLRange inverted{2.0, 0.0, -2.0, 1.0};
    const QZLRange result = QZLInterpolateRangeCubic(0.5, inverted, inverted, inverted, inverted);
    EXPECT_EQ(result, (QZLRange{-0.5e-9, 0.0, 0.5e-9, 1.0}));
}

TEST(QZLInterpolateRangeCubic, AnExtentThatIsNotANumberIsTheSmallest) {
    const QZLRange plain{-1.0, 0.0, 1.0, 1.0};
    const QZLRange overflowing{-1e308, 0.0, 1e308, 1.0};  // of infinite extent, which the weight 0 makes no number
    const QZLRange result = QZLInterpolateRangeCubic(0.0, plain, plain, overflowing, plain);
    EXPECT_EQ(result, (QZLRange{-0.5e-9, 0.0, 0.5e-9, 1.0}));
}

TEST(QZLSmooth, WithoutAStepIsTheFunctionItself) {
    for (const double x : {-3.0, 0.0, 0.7, 100.0}) {
        EXPECT_DOUBLE_EQ(QZLSmoothSin(x, 0.0), std::sin(x));
        EXPECT_DOUBLE_EQ(QZLSmoothCos(x, 0.0), std::cos(x));
    }
}

TEST(QZLSmooth, FiveTapsOverOneTurnCancel) {
    for (const double x : {-3.0, 0.0, 0.7}) {
        EXPECT_NEAR(QZLSmoothSin(x, twoPi / 5.0), 0.0, 1e-15);
        EXPECT_NEAR(QZLSmoothCos(x, twoPi / 5.0), 0.0, 1e-15);
    }
}

TEST(QZLSmooth, IsTheMeanOfFiveTapsFromLeftToRight) {
    const double x = 1.25;
    const double d = 0.3;
    EXPECT_EQ(QZLSmoothSin(x, d),
              (std::sin(x - (d + d)) + std::sin(x - d) + std::sin(x) + std::sin(x + d) + std::sin((d + d) + x)) / 5.0);
    EXPECT_EQ(QZLSmoothCos(x, d),
              (std::cos(x - (d + d)) + std::cos(x - d) + std::cos(x) + std::cos(x + d) + std::cos((d + d) + x)) / 5.0);
    // The same by the closed form of a box filter: sin(x) (1 + 2 cos d + 2 cos 2d) / 5.
    EXPECT_NEAR(QZLSmoothSin(x, d), std::sin(x) * (1.0 + 2.0 * std::cos(d) + 2.0 * std::cos(2.0 * d)) / 5.0, 1e-15);
}

/// Hands out a list of numbers and counts the draws.
class ListedNumbers final : public platform::RandomGenerator {
public:
    explicit ListedNumbers(std::vector<std::int64_t> numbers) : _numbers(std::move(numbers)) {
        platform::setRandomGenerator(this);
    }
    ~ListedNumbers() override { platform::setRandomGenerator(nullptr); }
    ListedNumbers(const ListedNumbers&) = delete;
    ListedNumbers& operator=(const ListedNumbers&) = delete;

    std::size_t draws() const { return _draws; }

    void seed(std::uint32_t) override {}
    std::int64_t next() override { return _numbers.at(_draws++); }

private:
    std::vector<std::int64_t> _numbers;
    std::size_t _draws = 0;
};

TEST(QZLCreateRandomizedSequence, ShufflesForward) {
    const ListedNumbers numbers({7, 2147483647, 5, 3});
    std::array<std::uint32_t, 5> sequence{};
    QZLCreateRandomizedSequence(sequence.data(), 5);
    // 7 mod 5 = 2: 2 1 0 3 4.  2147483647 mod 4 = 3: 2 4 0 3 1.  5 mod 3 = 2: 2 4 1 3 0.  3 mod 2 = 1: 2 4 1 0 3.
    EXPECT_THAT(sequence, ElementsAre(2U, 4U, 1U, 0U, 3U));
    EXPECT_EQ(numbers.draws(), 4U);
}

TEST(QZLCreateRandomizedSequence, MayLeaveElementsWhereTheyAre) {
    const ListedNumbers numbers({0, 0, 0});
    std::array<std::uint32_t, 4> sequence{};
    QZLCreateRandomizedSequence(sequence.data(), 4);
    EXPECT_THAT(sequence, ElementsAre(0U, 1U, 2U, 3U));
}

TEST(QZLCreateRandomizedSequence, OneElementNeedsNoDraw) {
    const ListedNumbers numbers({});
    std::array<std::uint32_t, 2> sequence{42, 43};
    QZLCreateRandomizedSequence(sequence.data(), 1);
    EXPECT_THAT(sequence, ElementsAre(0U, 43U));
    EXPECT_EQ(numbers.draws(), 0U);
}

TEST(QZLCreateRandomizedSequence, NoneAndFewerWriteNothing) {
    const ListedNumbers numbers({});
    std::array<std::uint32_t, 2> sequence{42, 43};
    QZLCreateRandomizedSequence(sequence.data(), 0);
    QZLCreateRandomizedSequence(sequence.data(), -5);
    QZLCreateRandomizedSequence(nullptr, std::numeric_limits<std::int32_t>::min());
    EXPECT_THAT(sequence, ElementsAre(42U, 43U));
    EXPECT_EQ(numbers.draws(), 0U);
}

TEST(QZLCreateRandomizedSequence, IsAPermutationThatFollowsTheSeed) {
    constexpr std::int32_t count = 256;
    const auto drawn = [](std::uint32_t seed) {
        std::vector<std::uint32_t> sequence(count);
        platform::seedRandom(seed);
        QZLCreateRandomizedSequence(sequence.data(), count);
        return sequence;
    };
    const auto first = drawn(1234);
    EXPECT_EQ(first, drawn(1234));
    EXPECT_NE(first, drawn(1235));
    auto sorted = first;
    std::sort(sorted.begin(), sorted.end());
    std::vector<std::uint32_t> all(count);
    std::iota(all.begin(), all.end(), 0U);
    EXPECT_EQ(sorted, all);
    EXPECT_NE(first, all);
}

}  // namespace
