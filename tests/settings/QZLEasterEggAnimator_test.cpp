#include "settings/QZLEasterEggAnimator.hpp"

#include "tests/settings/EasterEggStage.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

using QZLEasterEggAnimatorTest = EasterEggStage;

TEST_F(QZLEasterEggAnimatorTest, IsIdleUntilItIsStarted) {
    const auto animator = makeSwap();
    EXPECT_FALSE(animator->isAnimating());
    EXPECT_EQ(timers.runningTimers(), 0U);
    animator->startAnimation();
    EXPECT_TRUE(animator->isAnimating());
    EXPECT_EQ(timers.runningTimers(), 1U);
    EXPECT_EQ(alpha(1), 1.0) << "nothing changes before the first tick";
}

TEST_F(QZLEasterEggAnimatorTest, SwapsTwoGroupsTickByTick) {
    const auto animator = makeSwap();
    animator->startAnimation();
    double time = 0.0;
    for (int tick = 1; tick <= 28; ++tick) {
        timers.tick();
        time += 1.0 / 30.0;
        const double fadedOut = tick < 9 ? 1.0 - time / 0.3 : 0.0;
        for (const std::int32_t tag : {1, 2}) {
            EXPECT_EQ(alpha(tag), fadedOut) << tick;
            EXPECT_EQ(isHidden(tag), tick >= 9) << tick;
        }
        for (const std::int32_t tag : {3, 4, 5}) {
            EXPECT_EQ(isHidden(tag), tick < 18) << tick;
            EXPECT_EQ(alpha(tag), tick < 18 || tick == 28 ? 1.0 : (time - 0.6) / 0.3) << tick;
        }
        EXPECT_EQ(animator->isAnimating(), tick < 28) << tick;
    }
    EXPECT_EQ(timers.runningTimers(), 0U);
}

TEST_F(QZLEasterEggAnimatorTest, TheNinthTickIsExactlyTheEndOfTheFirstFade) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(8);
    EXPECT_NEAR(alpha(1), 1.0 / 9.0, 1e-9);
    EXPECT_FALSE(isHidden(1));
    timers.tick();
    EXPECT_EQ(alpha(1), 0.0);
    EXPECT_TRUE(isHidden(1));
}

TEST_F(QZLEasterEggAnimatorTest, TheSecondGroupStartsOnThe18thTickAndIsWholeOnThe28th) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(17);
    EXPECT_TRUE(isHidden(3));
    timers.tick();
    EXPECT_FALSE(isHidden(3));
    EXPECT_LT(alpha(3), 0.01) << "the 18th";
    timers.tick(9);
    EXPECT_LT(alpha(3), 1.0) << "the 27th falls just short";
    EXPECT_GT(alpha(3), 0.999);
    EXPECT_TRUE(animator->isAnimating());
    timers.tick();
    EXPECT_EQ(alpha(3), 1.0) << "the 28th";
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, StepsOfTheSameStartRunSideBySide) {
    makeViews({1, 2});
    const auto animator = makeAnimator({{0.0, 0.3, out, 1, 1}, {0.0, 0.3, out, 2, 1}});
    animator->startAnimation();
    for (int tick = 1; tick <= 9; ++tick) {
        timers.tick();
        EXPECT_EQ(alpha(1), alpha(2)) << tick;
        EXPECT_EQ(isHidden(1), isHidden(2)) << tick;
    }
    EXPECT_TRUE(isHidden(1));
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, ALaterFadeOutRunsWhileTheCurrentStepDoes) {
    makeViews({1, 2});
    const auto animator = makeAnimator({{0.0, 1.0, out, 1, 1}, {0.2, 0.3, out, 2, 1}});
    animator->startAnimation();
    timers.tick(16);
    EXPECT_GT(alpha(1), 0.4);
    EXPECT_TRUE(isHidden(2)) << "it is over before the current one";
    EXPECT_EQ(alpha(2), 0.0);
    timers.tick(13);
    EXPECT_TRUE(animator->isAnimating());
    timers.tick(2);
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, ALaterFadeInWaitsWhileTheCurrentStepFadesOut) {
    makeViews({1, 2});
    hide(2);
    const auto animator = makeAnimator({{0.0, 0.6, out, 1, 1}, {0.2, 0.6, in, 2, 1}});
    animator->startAnimation();
    timers.tick(17);
    EXPECT_FALSE(isHidden(1));
    EXPECT_TRUE(isHidden(2)) << "though its time began long ago";
    timers.tick(2);
    EXPECT_TRUE(isHidden(1));
    EXPECT_FALSE(isHidden(2));
    EXPECT_GT(alpha(2), 0.6) << "it joins in where it would be by now";
}

TEST_F(QZLEasterEggAnimatorTest, ALaterFadeInRunsWhileTheCurrentStepFadesIn) {
    makeViews({1, 2});
    hide(1);
    hide(2);
    const auto animator = makeAnimator({{0.0, 0.6, in, 1, 1}, {0.2, 0.6, in, 2, 1}});
    animator->startAnimation();
    timers.tick(12);
    EXPECT_NEAR(alpha(1), 12.0 / 18.0, 1e-9);
    EXPECT_NEAR(alpha(2), 6.0 / 18.0, 1e-9);
    EXPECT_FALSE(isHidden(2));
}

TEST_F(QZLEasterEggAnimatorTest, ALaterFadeOutRunsWhileTheCurrentStepFadesIn) {
    makeViews({1, 2});
    const auto animator = makeAnimator({{0.0, 0.6, in, 1, 1}, {0.2, 0.6, out, 2, 1}});
    animator->startAnimation();
    timers.tick(12);
    EXPECT_NEAR(alpha(2), 1.0 - 6.0 / 18.0, 1e-9);
}

TEST_F(QZLEasterEggAnimatorTest, AStepThatFollowsAtOnceIsAppliedInTheTickThatCompletesTheOneBefore) {
    makeViews({1, 2});
    hide(2);
    const auto animator = makeAnimator({{0.0, 0.3, out, 1, 1}, {0.3, 0.3, in, 2, 1}});
    animator->startAnimation();
    timers.tick(9);
    EXPECT_TRUE(isHidden(1));
    EXPECT_FALSE(isHidden(2));
    EXPECT_LT(alpha(2), 0.01);
}

TEST_F(QZLEasterEggAnimatorTest, OtherActionsOnlyTakeTime) {
    makeViews({1});
    platform::setAlphaValue(view(1), 0.5);
    for (const std::int64_t action : {std::int64_t{2}, std::int64_t{-1}, std::int64_t{1} << 32}) {
        const auto animator = makeAnimator({{0.0, 0.3, action, 1, 1}});
        animator->startAnimation();
        for (int tick = 1; tick <= 9; ++tick) {
            EXPECT_TRUE(animator->isAnimating());
            timers.tick();
            EXPECT_EQ(alpha(1), 0.5);
            EXPECT_FALSE(isHidden(1));
        }
        EXPECT_FALSE(animator->isAnimating());
    }
}

TEST_F(QZLEasterEggAnimatorTest, AGroupOfNoneOrLessOnlyTakesTime) {
    makeViews({1});
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        const auto animator = makeAnimator({{0.0, 0.3, out, 1, count}});
        animator->startAnimation();
        timers.tick(8);
        EXPECT_TRUE(animator->isAnimating());
        timers.tick();
        EXPECT_FALSE(animator->isAnimating());
        EXPECT_EQ(alpha(1), 1.0);
        EXPECT_FALSE(isHidden(1));
    }
}

TEST_F(QZLEasterEggAnimatorTest, MissingViewsAreSkipped) {
    makeViews({1, 3});
    const auto animator = makeAnimator({{0.0, 0.3, out, 0, 6}});
    animator->startAnimation();
    timers.tick(9);
    EXPECT_TRUE(isHidden(1));
    EXPECT_TRUE(isHidden(3));
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, TagsAreCountedInThirtyTwoBits) {
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    makeViews({highest, lowest});
    const auto animator = makeAnimator({{0.0, 0.3, out, highest, 2}});
    animator->startAnimation();
    timers.tick(9);
    EXPECT_TRUE(isHidden(highest));
    EXPECT_TRUE(isHidden(lowest));
}

TEST_F(QZLEasterEggAnimatorTest, StartedWhileItRunsItDoesNotStartAnew) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(5);
    animator->startAnimation();
    EXPECT_EQ(timers.runningTimers(), 1U);
    timers.tick(4);
    EXPECT_TRUE(isHidden(1)) << "on the 9th tick of all";
    timers.tick(19);
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, StartedAgainAtTheEndItReplaysAll) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(28);
    animator->startAnimation();
    EXPECT_TRUE(animator->isAnimating());
    timers.tick();
    EXPECT_FALSE(isHidden(1)) << "against the views as they are by now";
    EXPECT_NEAR(alpha(1), 1.0 - 1.0 / 9.0, 1e-9);
    EXPECT_FALSE(isHidden(3));
    timers.tick(27);
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, AChoreographyWithoutStepsEndsOnItsFirstTick) {
    const auto animator = makeAnimator({});
    animator->startAnimation();
    EXPECT_TRUE(animator->isAnimating());
    timers.tick();
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, RunsToItsEndWithoutItsView) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(5);
    stage.reset();
    timers.tick(22);
    EXPECT_TRUE(animator->isAnimating());
    timers.tick();
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, StartsWithoutAView) {
    constexpr Step step{0.0, 0.3, out, 1, 2};
    const auto animator = QZLEasterEggAnimator::create(nullptr, &step, 1);
    animator->startAnimation();
    timers.tick(9);
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorTest, LivesWhileItRunsThoughNobodyElseHoldsIt) {
    auto animator = makeSwap();
    const std::weak_ptr<QZLEasterEggAnimator> watched = animator;
    animator->startAnimation();
    animator.reset();
    timers.tick(27);
    EXPECT_FALSE(watched.expired());
    EXPECT_GT(alpha(3), 0.999);
    timers.tick();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(alpha(3), 1.0);
}

TEST_F(QZLEasterEggAnimatorTest, IdleItLivesNoLongerThanItsOwner) {
    auto animator = makeSwap();
    const std::weak_ptr<QZLEasterEggAnimator> watched = animator;
    animator.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(QZLEasterEggAnimatorTest, TheEndOfTheApplicationLetsGoOfItWhileItRuns) {
    auto animator = makeSwap();
    const std::weak_ptr<QZLEasterEggAnimator> watched = animator;
    animator->startAnimation();
    animator.reset();
    timers.end();
    EXPECT_TRUE(watched.expired());
}

TEST_F(QZLEasterEggAnimatorTest, WithoutAMainLoopItStaysIdle) {
    const auto animator = makeSwap();
    timers.end();
    animator->startAnimation();
    EXPECT_FALSE(animator->isAnimating());
}

}  // namespace
