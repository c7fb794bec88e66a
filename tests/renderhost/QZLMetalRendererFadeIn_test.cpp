#include "tests/renderhost/RendererTest.hpp"

#include <limits>

using testing::ElementsAre;
using testing::Not;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// The brightness of the first frames after an attach with that fade-in.
std::vector<float> brightnessOfFrames(double fadeInTime, platform::RefreshPeriod period, int count) {
    RendererWorld world;
    world.gpu->setCompletesAtCommit(true);
    world.view->displayLink->period = period;
    world.renderer->setFadeInTime(fadeInTime);
    EXPECT_FALSE(world.attach());
    std::vector<float> brightness;
    for (int frame = 0; frame < count; ++frame) {
        world.renderer->presentFrame();
        brightness.push_back(world.renderer->frames.back().brightness);
    }
    return brightness;
}

}  // namespace

TEST(QZLMetalRendererFadeIn, WithoutAFadeInTimeEveryFrameIsBright) {
    EXPECT_THAT(brightnessOfFrames(0.0, {1, 60}, 2), ElementsAre(1.0F, 1.0F));
}

TEST(QZLMetalRendererFadeIn, LastsForItsTimeAtTheSelectedRate) {
    const std::vector<float> brightness = brightnessOfFrames(2.0, {1, 60}, 122);
    EXPECT_EQ(brightness[0], 0.0F);
    EXPECT_NEAR(brightness[60], 0.5743F, 1e-4F);
    EXPECT_NEAR(brightness[119], 0.9933F, 1e-4F);
    EXPECT_EQ(brightness[120], 1.0F);
    EXPECT_EQ(brightness[121], 1.0F);
}

TEST(QZLMetalRendererFadeIn, RoundsItsFramesToTheNearestWhole) {
    EXPECT_THAT(brightnessOfFrames(0.4 / 64.0, {1, 64}, 2), ElementsAre(1.0F, 1.0F));
    EXPECT_THAT(brightnessOfFrames(0.5 / 64.0, {1, 64}, 2), ElementsAre(0.0F, 1.0F));
}

TEST(QZLMetalRendererFadeIn, SurvivesTimesThatAreNone) {
    EXPECT_THAT(brightnessOfFrames(notANumber, {1, 60}, 1), ElementsAre(1.0F));
    EXPECT_THAT(brightnessOfFrames(-3.0, {1, 60}, 1), ElementsAre(1.0F));
    EXPECT_THAT(brightnessOfFrames(infinity, {1, 60}, 2), ElementsAre(0.0F, Not(0.0F)));
}

TEST(QZLMetalRendererFadeIn, ResetFaderStartsItAgain) {
    RendererWorld world;
    world.gpu->setCompletesAtCommit(true);
    world.renderer->resetFader();  // no fader yet
    world.renderer->setFadeInTime(1.0 / 60.0);
    EXPECT_FALSE(world.attach());
    world.renderer->presentFrame();
    world.renderer->presentFrame();
    world.renderer->resetFader();
    world.renderer->presentFrame();
    EXPECT_EQ(world.renderer->frames[1].brightness, 1.0F);
    EXPECT_EQ(world.renderer->frames[2].brightness, 0.0F);
}
