#include "tests/saver/SaverTest.hpp"

#include <cmath>
#include <numbers>

namespace {

class QZLCirraneRendererStyle : public SaverTest {
protected:
    QZLCirraneStyle styleAtZoom(float zoom) {
        defaults().setZoom(zoom);
        return makeRenderer()->style();
    }
    QZLCirraneStyle styleAtSpeed(float speed) {
        defaults().setSpeed(speed);
        return makeRenderer()->style();
    }
};

TEST_F(QZLCirraneRendererStyle, ColorsAndBrightnessAreTakenAsTheyAre) {
    const auto renderer = makeRenderer();
    EXPECT_EQ(renderer->style().colors, 0.4F);
    EXPECT_EQ(renderer->style().brightness, 0.5F);
    defaults().setColors(7.0F);
    defaults().setBrightness(-2.0F);
    renderer->updateStyle();
    EXPECT_EQ(renderer->style().colors, 7.0F);
    EXPECT_EQ(renderer->style().brightness, -2.0F);
}

TEST_F(QZLCirraneRendererStyle, ZoomSetsTheVisibleHeight) {
    EXPECT_EQ(styleAtZoom(0.0F).imageHeight, 0.04);
    EXPECT_EQ(styleAtZoom(1.0F).imageHeight, 0.36000000000000004 + 0.04);
    EXPECT_DOUBLE_EQ(styleAtZoom(1.0F).imageHeight, 0.4);
    EXPECT_NEAR(styleAtZoom(0.38F).imageHeight, 0.1243, 0.00005);
    EXPECT_DOUBLE_EQ(styleAtZoom(0.25F).imageHeight, 0.125 * 0.36000000000000004 + 0.04);
}

TEST_F(QZLCirraneRendererStyle, SpeedSetsTheMultiplier) {
    EXPECT_EQ(styleAtSpeed(0.0F).speedMultipler, 0.5);
    EXPECT_EQ(styleAtSpeed(0.5F).speedMultipler, 1.0);
    EXPECT_EQ(styleAtSpeed(1.0F).speedMultipler, 2.0);
    EXPECT_NEAR(styleAtSpeed(0.7F).speedMultipler, 1.3195, 0.00005);
}

TEST_F(QZLCirraneRendererStyle, DefaultSpeedSetsTheRates) {
    const auto renderer = makeRenderer();
    const double turn = 2.0 * std::numbers::pi * std::exp2(2.0 * static_cast<double>(0.7F) - 1.0);
    EXPECT_DOUBLE_EQ(renderer->motionRadiansPerSecond(), turn / 1875.0);
    EXPECT_DOUBLE_EQ(renderer->wobbleRadiansPerSecond(), turn / 190.0);
    EXPECT_DOUBLE_EQ(renderer->fBmRadiansPerSecond(), turn / 20000.0);
}

TEST_F(QZLCirraneRendererStyle, FollowsChangedSettingsWhenTold) {
    const auto renderer = makeRenderer();
    defaults().setSpeed(0.0F);
    defaults().setZoom(0.0F);
    EXPECT_NE(renderer->style().speedMultipler, 0.5);
    renderer->configurationChanged();
    EXPECT_EQ(renderer->style().speedMultipler, 0.5);
    EXPECT_EQ(renderer->style().imageHeight, 0.04);
    EXPECT_DOUBLE_EQ(renderer->motionRadiansPerSecond(), std::numbers::pi / 1875.0);
}

TEST_F(QZLCirraneRendererStyle, NonsenseSettingsDoNotCrash) {
    defaults().setZoom(-1.0F);
    defaults().setSpeed(1e30F);
    const auto renderer = makeRenderer();
    EXPECT_TRUE(std::isnan(renderer->style().imageHeight));
    EXPECT_TRUE(std::isinf(renderer->style().speedMultipler));
}

class QZLCirraneRendererScreenshotTiming : public SaverTest {
protected:
    std::shared_ptr<QZLCirraneRenderer> makeRendererAtInterval(std::int64_t interval) {
        defaults().setScreenshotInterval(interval);
        clock.setSecondsSinceReferenceDate(start);
        return makeRenderer();
    }
    bool shouldSaveAt(QZLCirraneRenderer& renderer, double seconds) {
        clock.setSecondsSinceReferenceDate(start + seconds);
        return renderer.shouldSaveScreenshot();
    }

    static constexpr double start = 1048576.0;  // a power of two, so that sums are exact
};

TEST_F(QZLCirraneRendererScreenshotTiming, EachIntervalHasItsSeconds) {
    const std::pair<std::int64_t, double> intervals[] = {{1, 2.0}, {2, 5.0}, {3, 10.0}};
    for (const auto& [interval, seconds] : intervals) {
        const auto renderer = makeRendererAtInterval(interval);
        EXPECT_FALSE(shouldSaveAt(*renderer, 0.0)) << interval;
        EXPECT_FALSE(shouldSaveAt(*renderer, seconds - 0.0001)) << interval;
        EXPECT_TRUE(shouldSaveAt(*renderer, seconds)) << interval << ": the very moment counts";
        EXPECT_FALSE(shouldSaveAt(*renderer, seconds)) << interval;
    }
}

TEST_F(QZLCirraneRendererScreenshotTiming, SavesTheFirstFrameAfterEveryFiveSeconds) {
    const auto renderer = makeRendererAtInterval(2);
    std::vector<int> saved;
    for (int frame = 1; frame <= 660; ++frame) {
        if (shouldSaveAt(*renderer, frame / 60.0)) {
            saved.push_back(frame);
        }
    }
    EXPECT_EQ(saved, (std::vector<int>{300, 600}));
}

TEST_F(QZLCirraneRendererScreenshotTiming, OffAndUnknownIntervalsNeverSave) {
    for (const std::int64_t interval : {0L, 4L, -1L}) {
        const auto renderer = makeRendererAtInterval(interval);
        EXPECT_FALSE(shouldSaveAt(*renderer, 1e6)) << interval;
    }
}

TEST_F(QZLCirraneRendererScreenshotTiming, RefusalLeavesTheLastTimeAlone) {
    const auto renderer = makeRendererAtInterval(0);
    EXPECT_FALSE(shouldSaveAt(*renderer, 100.0));
    defaults().setScreenshotInterval(3);
    renderer->configurationChanged();
    EXPECT_TRUE(shouldSaveAt(*renderer, 100.0));
}

}  // namespace
