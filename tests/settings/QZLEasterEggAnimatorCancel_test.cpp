#include "settings/QZLEasterEggAnimator.hpp"

#include "tests/settings/EasterEggStage.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace {

using QZLEasterEggAnimatorCancel = EasterEggStage;

/// Calls when it is hidden.
class TellingView final : public QWidget {
public:
    using QWidget::QWidget;
    std::function<void()> hidden;

protected:
    void hideEvent(QHideEvent*) override {
        if (hidden) {
            hidden();
        }
    }
};

TEST_F(QZLEasterEggAnimatorCancel, OfAnIdleOneDoesNothing) {
    const auto animator = makeSwap();
    animator->cancelAnimation();
    EXPECT_FALSE(isHidden(1));
    EXPECT_TRUE(isHidden(3));
}

TEST_F(QZLEasterEggAnimatorCancel, InTheMiddleOfAFadeOutHidesAtOnceAndLeavesTheOpacity) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(4);
    const double before = alpha(1);
    EXPECT_GT(before, 0.5);
    animator->cancelAnimation();
    EXPECT_FALSE(animator->isAnimating());
    EXPECT_EQ(timers.runningTimers(), 0U);
    for (const std::int32_t tag : {1, 2}) {
        EXPECT_TRUE(isHidden(tag));
        EXPECT_EQ(alpha(tag), before);
    }
}

TEST_F(QZLEasterEggAnimatorCancel, MakesTheGroupOfALaterFadeInOpaqueAndVisible) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(4);
    animator->cancelAnimation();
    for (const std::int32_t tag : {3, 4, 5}) {
        EXPECT_FALSE(isHidden(tag));
        EXPECT_EQ(alpha(tag), 1.0);
    }
}

TEST_F(QZLEasterEggAnimatorCancel, AtEveryTickLeavesTheSameViewsVisible) {
    for (int ticks = 0; ticks < 28; ++ticks) {
        stage = std::make_unique<QWidget>();
        const auto animator = makeSwap();
        animator->startAnimation();
        timers.tick(ticks);
        animator->cancelAnimation();
        EXPECT_FALSE(animator->isAnimating()) << ticks;
        for (const std::int32_t tag : {1, 2}) {
            EXPECT_TRUE(isHidden(tag)) << ticks;
        }
        for (const std::int32_t tag : {3, 4, 5}) {
            EXPECT_FALSE(isHidden(tag)) << ticks;
            EXPECT_EQ(alpha(tag), 1.0) << ticks;
        }
    }
}

TEST_F(QZLEasterEggAnimatorCancel, LeavesTheGroupsOfCompletedStepsAlone) {
    makeViews({1, 2});
    const auto animator = makeAnimator({{0.0, 0.3, out, 1, 1}, {0.6, 0.3, out, 2, 1}});
    animator->startAnimation();
    timers.tick(10);
    platform::setHidden(view(1), false);
    animator->cancelAnimation();
    EXPECT_FALSE(isHidden(1)) << "whoever unhid it since";
    EXPECT_TRUE(isHidden(2));
}

TEST_F(QZLEasterEggAnimatorCancel, GoesThroughAllStepsThatAreLeftInOrder) {
    makeViews({1});
    const auto animator = makeAnimator({{0.0, 0.3, out, 1, 1}, {0.6, 0.3, in, 1, 1}, {1.2, 0.3, out, 1, 1}});
    animator->startAnimation();
    timers.tick(3);
    animator->cancelAnimation();
    EXPECT_TRUE(isHidden(1));
    EXPECT_EQ(alpha(1), 1.0) << "the step in the middle has made it opaque";
}

TEST_F(QZLEasterEggAnimatorCancel, OtherActionsAndEmptyGroupsChangeNothing) {
    makeViews({1, 2});
    platform::setAlphaValue(view(1), 0.5);
    const auto animator = makeAnimator({{0.0, 0.3, 2, 1, 1}, {0.0, 0.3, out, 2, 0}, {0.0, 0.3, in, 1, -1}});
    animator->startAnimation();
    animator->cancelAnimation();
    EXPECT_EQ(alpha(1), 0.5);
    EXPECT_FALSE(isHidden(1));
    EXPECT_FALSE(isHidden(2));
}

TEST_F(QZLEasterEggAnimatorCancel, WithoutItsViewOrSomeOfTheTagsDoesNoHarm) {
    makeViews({1});
    const auto some = makeAnimator({{0.0, 0.3, out, 1, 5}});
    some->startAnimation();
    some->cancelAnimation();
    EXPECT_TRUE(isHidden(1));
    some->startAnimation();
    stage.reset();
    some->cancelAnimation();
    EXPECT_FALSE(some->isAnimating());
}

TEST_F(QZLEasterEggAnimatorCancel, TicksThatComeLaterChangeNothing) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(4);
    animator->cancelAnimation();
    platform::setHidden(view(1), false);
    const double before = alpha(1);
    timers.tick(30);
    EXPECT_EQ(alpha(1), before);
    EXPECT_FALSE(isHidden(1));
}

TEST_F(QZLEasterEggAnimatorCancel, AfterwardsItCanBeStartedFromTheBeginning) {
    const auto animator = makeSwap();
    animator->startAnimation();
    timers.tick(20);
    animator->cancelAnimation();
    animator->startAnimation();
    timers.tick();
    EXPECT_FALSE(isHidden(1));
    EXPECT_NEAR(alpha(1), 1.0 - 1.0 / 9.0, 1e-9);
    timers.tick(27);
    EXPECT_FALSE(animator->isAnimating());
}

TEST_F(QZLEasterEggAnimatorCancel, LetsGoOfAnAnimatorThatNobodyElseHolds) {
    auto animator = makeSwap();
    const std::weak_ptr<QZLEasterEggAnimator> watched = animator;
    QZLEasterEggAnimator& running = *animator;
    running.startAnimation();
    animator.reset();
    running.cancelAnimation();
    EXPECT_TRUE(watched.expired());
}

TEST_F(QZLEasterEggAnimatorCancel, FromWithinATickEndsTheAnimation) {
    auto* telling = new TellingView(stage.get());
    telling->setProperty("tag", 1);
    makeViews({2});
    hide(2);
    const auto animator = makeAnimator({{0.0, 0.3, out, 1, 1}, {0.0, 0.6, in, 2, 1}});
    stage->show();
    telling->hidden = [&] { animator->cancelAnimation(); };
    animator->startAnimation();
    timers.tick(9);
    EXPECT_FALSE(animator->isAnimating());
    EXPECT_TRUE(isHidden(1));
    EXPECT_FALSE(isHidden(2));
    EXPECT_EQ(alpha(2), 1.0);
}

}  // namespace
