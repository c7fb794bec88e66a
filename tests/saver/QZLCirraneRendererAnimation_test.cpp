#include "foundation/QZLNumeric.hpp"
#include "tests/saver/DrawingTest.hpp"

namespace {

constexpr double twoPi = 6.283185307179586;

/// What an angle with that period gains per frame at 60 Hz, in radians.
constexpr double radiansPerFrame(double period) {
    return twoPi / period / 60.0;
}

class QZLCirraneRendererAnimation : public DrawingTest {};

TEST_F(QZLCirraneRendererAnimation, FrameAdvancesEveryAngleByItsPeriod) {
    renderer->setAnimationState({1.0, 1.0, 1.0, 0.5});
    drawFrame();
    const auto state = renderer->animationState();
    EXPECT_NEAR(state.motionAngle - 1.0, radiansPerFrame(1875.0), 1e-15);
    EXPECT_NEAR(state.wobblePhase - 1.0, radiansPerFrame(190.0), 1e-15);
    EXPECT_NEAR(state.fBmAngle - 1.0, radiansPerFrame(20000.0), 1e-15);
    EXPECT_NEAR(state.baseHue - 0.5, 0.0105 / 60.0, 1e-15);
}

TEST_F(QZLCirraneRendererAnimation, HueIgnoresTheSpeed) {
    defaults().setSpeed(1.0F);
    renderer->configurationChanged();
    renderer->setAnimationState({1.0, 1.0, 1.0, 0.5});
    drawFrame();
    EXPECT_NEAR(renderer->animationState().motionAngle - 1.0, 2.0 * radiansPerFrame(1875.0), 1e-15);
    EXPECT_NEAR(renderer->animationState().baseHue - 0.5, 0.0105 / 60.0, 1e-15);
}

TEST_F(QZLCirraneRendererAnimation, HalfTheFramesAdvanceTwiceAsFar) {
    renderer = makeRenderer();
    renderer->setRequestedFrameRate(30.0);
    EXPECT_FALSE(attach(*renderer));
    EXPECT_EQ(renderer->selectedFrameRate(), 30.0);
    renderer->setAnimationState({1.0, 1.0, 1.0, 0.5});
    drawFrame();
    EXPECT_NEAR(renderer->animationState().motionAngle - 1.0, 2.0 * radiansPerFrame(1875.0), 1e-15);
    EXPECT_NEAR(renderer->animationState().baseHue - 0.5, 0.0105 / 30.0, 1e-15);
}

TEST_F(QZLCirraneRendererAnimation, RealTimeBetweenFramesDoesNotMatter) {
    renderer->setAnimationState({1.0, 1.0, 1.0, 0.5});
    clock.advance(1000.0);
    drawFrame();
    EXPECT_NEAR(renderer->animationState().motionAngle - 1.0, radiansPerFrame(1875.0), 1e-15);
}

TEST_F(QZLCirraneRendererAnimation, AnglesWrapAtAFullTurn) {
    renderer->setAnimationState({twoPi, twoPi - 1e-9, twoPi, 0.0});
    drawFrame();
    const auto state = renderer->animationState();
    EXPECT_NEAR(state.motionAngle, radiansPerFrame(1875.0), 1e-12);
    EXPECT_NEAR(state.wobblePhase, radiansPerFrame(190.0) - 1e-9, 1e-12);
    EXPECT_NEAR(state.fBmAngle, radiansPerFrame(20000.0), 1e-12);
}

TEST_F(QZLCirraneRendererAnimation, NegativeStartOfTheOctaveRotationIsCarriedIntoTheTurn) {
    renderer->setAnimationState({0.0, 0.0, -0.3, 0.0});
    drawFrame();
    EXPECT_NEAR(renderer->animationState().fBmAngle, twoPi - 0.3 + radiansPerFrame(20000.0), 1e-12);
}

TEST_F(QZLCirraneRendererAnimation, HueWrapsToASmallPositiveValue) {
    renderer->setAnimationState({0.0, 0.0, 0.0, 0.9999});
    drawFrame();
    EXPECT_NEAR(renderer->animationState().baseHue, 0.9999 + 0.0105 / 60.0 - 1.0, 1e-12);
    EXPECT_GT(renderer->animationState().baseHue, 0.0);
}

TEST_F(QZLCirraneRendererAnimation, HueStaysBelowOneOverAWholeTurn) {
    for (int frame = 0; frame < 5800; ++frame) {
        drawFrame(frame % 3);
        ASSERT_GE(renderer->animationState().baseHue, 0.0);
        ASSERT_LT(renderer->animationState().baseHue, 1.0);
    }
}

TEST_F(QZLCirraneRendererAnimation, FrameLoopDrawsThroughTheDisplayLink) {
    gpu->setCompletesAtCommit(true);
    renderer->startAnimation();
    const auto before = renderer->animationState();
    for (int refresh = 0; refresh < 6; ++refresh) {
        EXPECT_EQ(view->displayLink->fire(), 0);
    }
    EXPECT_EQ(renderer->frameNumber(), 6U);
    EXPECT_NEAR(renderer->animationState().wobblePhase,
                QZLWrap(before.wobblePhase + 6.0 * radiansPerFrame(190.0), twoPi), 1e-12);
}

}  // namespace
