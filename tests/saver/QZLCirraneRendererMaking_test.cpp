#include "tests/saver/SaverTest.hpp"

#include <gmock/gmock.h>

#include <numbers>

namespace {

using testing::ElementsAre;

constexpr double twoPi = 6.283185307179586;
constexpr std::int64_t largest = 2147483647;

class QZLCirraneRendererMaking : public SaverTest {};

TEST_F(QZLCirraneRendererMaking, SeedsTheGeneratorWithTheTimeAndThenDrawsFourPhases) {
    clock.setCalendarSeconds(0x1'2345'6789);
    RecordedRandom random({largest, 0, 0, largest / 2});
    const auto renderer = makeRenderer();
    EXPECT_THAT(random.seeds, ElementsAre(0x23456789U));
    EXPECT_EQ(random.draws, 4U);
    EXPECT_EQ(renderer->seed(), 0x23456789U);

    const auto state = renderer->animationState();
    EXPECT_EQ(state.motionAngle, twoPi);
    EXPECT_EQ(state.wobblePhase, 0.0);
    EXPECT_EQ(state.fBmAngle, -0.3141592653589793);
    EXPECT_EQ(state.baseHue, static_cast<double>(largest / 2) / 2147483647.0);
}

TEST_F(QZLCirraneRendererMaking, OctaveRotationStartsWithinATenthOfAHalfTurn) {
    RecordedRandom random({0, largest, largest, 0});
    const auto state = makeRenderer()->animationState();
    EXPECT_EQ(state.motionAngle, 0.0);
    EXPECT_EQ(state.wobblePhase, twoPi);
    EXPECT_DOUBLE_EQ(state.fBmAngle, std::numbers::pi / 10.0);
    EXPECT_EQ(state.baseHue, 0.0);
}

TEST_F(QZLCirraneRendererMaking, FadesInOverOneSecondAndDoesNotClear) {
    const auto renderer = makeRenderer();
    EXPECT_EQ(renderer->fadeInTime(), 1.0);
    EXPECT_FALSE(renderer->shouldClearFrame());
}

TEST_F(QZLCirraneRendererMaking, ReadsTheSettings) {
    defaults().setColors(0.25F);
    EXPECT_EQ(makeRenderer()->style().colors, 0.25F);
}

TEST_F(QZLCirraneRendererMaking, TwoInOneSecondStartAlike) {
    const auto first = makeRenderer();
    const auto second = makeRenderer();
    EXPECT_EQ(first->seed(), second->seed());
    EXPECT_EQ(first->animationState().motionAngle, second->animationState().motionAngle);
    EXPECT_EQ(first->animationState().wobblePhase, second->animationState().wobblePhase);
    EXPECT_EQ(first->animationState().fBmAngle, second->animationState().fBmAngle);
    EXPECT_EQ(first->animationState().baseHue, second->animationState().baseHue);
}

TEST_F(QZLCirraneRendererMaking, AnotherSecondStartsElsewhere) {
    const auto first = makeRenderer();
    clock.setCalendarSeconds(clock.calendarSeconds() + 1);
    EXPECT_NE(first->animationState().motionAngle, makeRenderer()->animationState().motionAngle);
}

}  // namespace
