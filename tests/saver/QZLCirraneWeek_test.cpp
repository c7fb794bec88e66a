#include "foundation/QZLNumeric.hpp"
#include "tests/saver/PictureTest.hpp"

#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>

namespace {

constexpr double twoPi = 2.0 * std::numbers::pi;
constexpr double step = 1.0 / 60.0;  // seconds
constexpr std::uint64_t framesOfAWeek = 36'288'000;
constexpr std::size_t width = 640;
constexpr std::size_t height = 360;

using AnimationState = QZLCirraneRenderer::AnimationState;

/// The state after so many frames at 60 Hz, added up frame by frame with all their rounding.
AnimationState advanced(const QZLCirraneRenderer& renderer, std::uint64_t frames) {
    AnimationState state = renderer.animationState();
    const double motion = renderer.motionRadiansPerSecond() * step;
    const double wobble = renderer.wobbleRadiansPerSecond() * step;
    const double octaves = renderer.fBmRadiansPerSecond() * step;
    for (std::uint64_t frame = 0; frame < frames; ++frame) {
        state.motionAngle = QZLWrap(state.motionAngle + motion, twoPi);
        state.wobblePhase = QZLWrap(state.wobblePhase + wobble, twoPi);
        state.fBmAngle = QZLWrap(state.fBmAngle + octaves, twoPi);
        const double hue = state.baseHue + step * 0.005 * 2.1;
        state.baseHue = hue - std::floor(hue);
    }
    return state;
}

std::vector<double> luminances(const Pixels& pixels) {
    std::vector<double> plane;
    for (std::size_t index = 0; index < pixels.size(); index += 4) {
        plane.push_back(0.0722 * level(pixels, index) + 0.7152 * level(pixels, index + 1) +
                        0.2126 * level(pixels, index + 2));
    }
    return plane;
}

/// The mean over a square of that many pixels to each side.
double meanAround(const std::vector<double>& plane, std::size_t row, std::size_t column, std::size_t reach) {
    double sum = 0.0;
    for (std::size_t y = row - reach; y <= row + reach; ++y) {
        for (std::size_t x = column - reach; x <= column + reach; ++x) {
            sum += plane[y * width + x];
        }
    }
    const auto side = static_cast<double>(2 * reach + 1);
    return sum / (side * side);
}

/// What a few frames measure together.
struct Look {
    double fineDetail = 0.0;  ///< mean square of what 3 pixels hold and 9 do not; the dither is mostly gone from both
    double median = 0.0;
    double contrast = 0.0;  ///< from the level of 1 % of the pixels to that of 99 %
    double chroma = 0.0;    ///< mean distance of the channels, in levels

    void add(const Pixels& pixels) {
        std::vector<double> plane = luminances(pixels);
        constexpr std::size_t margin = 4;
        double energy = 0.0;
        for (std::size_t row = margin; row < height - margin; row += 2) {
            for (std::size_t column = margin; column < width - margin; column += 2) {
                const double detail = meanAround(plane, row, column, 1) - meanAround(plane, row, column, margin);
                energy += detail * detail;
            }
        }
        fineDetail += 4.0 * energy / static_cast<double>((width - 2 * margin) * (height - 2 * margin));
        std::ranges::sort(plane);
        median += plane[plane.size() / 2];
        contrast += plane[plane.size() * 99 / 100] - plane[plane.size() / 100];
        for (std::size_t index = 0; index < pixels.size(); index += 4) {
            const auto [least, most] =
                std::minmax({level(pixels, index), level(pixels, index + 1), level(pixels, index + 2)});
            chroma += (most - least) / static_cast<double>(plane.size());
        }
    }
};

class QZLCirraneWeek : public PictureTest {
protected:
    using Moment = std::function<AnimationState(const QZLCirraneRenderer&)>;

    /// Of the clouds of several seeds, each at that moment.
    Look lookAt(const Moment& moment) {
        Look look;
        for (const std::int64_t seed : {1, 2, 3, 4, 5, 6, 7, 8}) {
            clock.setCalendarSeconds(seed);
            const auto renderer = attachedRenderer(width, height);
            renderer->setAnimationState(moment(*renderer));
            look.add(draw(*renderer));
        }
        return look;
    }

    static AnimationState start(const QZLCirraneRenderer& renderer) { return renderer.animationState(); }
};

TEST_F(QZLCirraneWeek, IsCountedAsTheRendererCounts) {
    const auto renderer = attachedRenderer(16, 9);
    const AnimationState expected = advanced(*renderer, 100);
    for (int frame = 0; frame < 100; ++frame) {
        draw(*renderer);
    }
    const AnimationState state = renderer->animationState();
    EXPECT_DOUBLE_EQ(state.motionAngle, expected.motionAngle);
    EXPECT_DOUBLE_EQ(state.wobblePhase, expected.wobblePhase);
    EXPECT_DOUBLE_EQ(state.fBmAngle, expected.fBmAngle);
    EXPECT_DOUBLE_EQ(state.baseHue, expected.baseHue);
}

TEST_F(QZLCirraneWeek, LeavesThePictureAsSharpBrightAndColoured) {
    // A week is the same way for every seed, so that it is walked once.
    const auto first = attachedRenderer(width, height);
    const AnimationState from = first->animationState();
    const AnimationState to = advanced(*first, framesOfAWeek);
    const auto aWeekLater = [&](const QZLCirraneRenderer& renderer) {
        const AnimationState at = renderer.animationState();
        const double hue = at.baseHue + to.baseHue - from.baseHue + 1.0;
        return AnimationState{QZLWrap(at.motionAngle + to.motionAngle - from.motionAngle + twoPi, twoPi),
                              QZLWrap(at.wobblePhase + to.wobblePhase - from.wobblePhase + twoPi, twoPi),
                              QZLWrap(at.fBmAngle + to.fBmAngle - from.fBmAngle + twoPi, twoPi), hue - std::floor(hue)};
    };
    const Look before = lookAt(start);
    const Look after = lookAt(aWeekLater);
    RecordProperty("fineDetail", std::to_string(after.fineDetail / before.fineDetail));
    EXPECT_NEAR(after.fineDetail / before.fineDetail, 1.0, 0.25);
    EXPECT_NEAR(after.median / before.median, 1.0, 0.25);
    EXPECT_NEAR(after.contrast / before.contrast, 1.0, 0.25);
    EXPECT_NEAR(after.chroma / before.chroma, 1.0, 0.35);
}

TEST_F(QZLCirraneWeek, LeavesTheMotionAsSmooth) {
    const auto renderer = attachedRenderer(width, height);
    renderer->setAnimationState(advanced(*renderer, framesOfAWeek));
    const Pixels first = draw(*renderer);
    const Difference change = differenceBetween(first, draw(*renderer));
    EXPECT_LE(change.largest, 40);
    EXPECT_GT(change.mean, 0.0);
    EXPECT_LT(change.mean, 1.5);
}

TEST_F(QZLCirraneWeek, LosesNoPrecision) {
    const auto renderer = attachedRenderer(16, 9);
    const AnimationState state = advanced(*renderer, framesOfAWeek);
    const double seconds = static_cast<double>(framesOfAWeek) * step;
    const auto strayed = [&](double angle, double from, double radiansPerSecond) {
        return std::abs(std::remainder(angle - (from + radiansPerSecond * seconds), twoPi));
    };
    const AnimationState from = renderer->animationState();
    EXPECT_LT(strayed(state.motionAngle, from.motionAngle, renderer->motionRadiansPerSecond()), 1e-6);
    EXPECT_LT(strayed(state.wobblePhase, from.wobblePhase, renderer->wobbleRadiansPerSecond()), 1e-6);
    EXPECT_LT(strayed(state.fBmAngle, from.fBmAngle, renderer->fBmRadiansPerSecond()), 1e-6);
}

}  // namespace
