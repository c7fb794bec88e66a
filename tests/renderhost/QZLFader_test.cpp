#include "renderhost/QZLFader.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace {

std::vector<float> levels(QZLFader& fader, int count) {
    std::vector<float> result;
    for (int frame = 0; frame < count; ++frame) {
        result.push_back(fader.level());
    }
    return result;
}

}  // namespace

TEST(QZLFader, WithoutFramesIsBrightFromTheFirstFrame) {
    for (const std::int32_t frames : {0, -1, INT32_MIN}) {
        QZLFader fader(frames);
        EXPECT_EQ(levels(fader, 3), (std::vector{1.0F, 1.0F, 1.0F})) << frames;
    }
}

TEST(QZLFader, FirstFrameOfAFadeIsBlack) {
    QZLFader fader(120);
    EXPECT_EQ(fader.level(), 0.0F);
}

TEST(QZLFader, OneFrameIsBlackAndThenBright) {
    QZLFader fader(1);
    EXPECT_EQ(levels(fader, 3), (std::vector{0.0F, 1.0F, 1.0F}));
}

TEST(QZLFader, RisesByThePowerOfFourFifths) {
    QZLFader fader(120);
    const std::vector<float> level = levels(fader, 122);
    for (int frame = 0; frame < 120; ++frame) {
        const float base = static_cast<float>(frame) / 120.0F;
        EXPECT_EQ(level[static_cast<std::size_t>(frame)], std::pow(base, 0.8F)) << frame;
    }
    EXPECT_NEAR(level[60], 0.5743F, 1e-4F);
    EXPECT_NEAR(level[119], 0.9933F, 1e-4F);
    EXPECT_EQ(level[120], 1.0F);
    EXPECT_EQ(level[121], 1.0F);
}

TEST(QZLFader, NeverReachesOneBeforeTheFadeEnds) {
    QZLFader fader(1000);
    for (int frame = 0; frame < 1000; ++frame) {
        ASSERT_LT(fader.level(), 1.0F) << frame;
    }
    EXPECT_EQ(fader.level(), 1.0F);
}

TEST(QZLFader, ResetStartsTheFadeAgainWhetherRunningOrOver) {
    QZLFader fader(2);
    levels(fader, 1);
    fader.reset();
    EXPECT_EQ(fader.level(), 0.0F);
    levels(fader, 5);
    fader.reset();
    EXPECT_EQ(levels(fader, 3), (std::vector{0.0F, std::pow(0.5F, 0.8F), 1.0F}));
}

TEST(QZLFader, ResetWithoutFramesStaysBright) {
    QZLFader fader(0);
    fader.reset();
    EXPECT_EQ(fader.level(), 1.0F);
}
