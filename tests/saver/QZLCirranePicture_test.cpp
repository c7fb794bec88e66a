#include "tests/saver/PictureTest.hpp"
#include "tests/saver/StartedRenderer.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

/// Of the coded values, 0 to 255, sorted.
std::vector<double> sortedLuminances(const Pixels& pixels) {
    std::vector<double> luminances;
    for (std::size_t index = 0; index < pixels.size(); index += 4) {
        luminances.push_back(0.0722 * level(pixels, index) + 0.7152 * level(pixels, index + 1) +
                             0.2126 * level(pixels, index + 2));
    }
    std::sort(luminances.begin(), luminances.end());
    return luminances;
}

double shareOfClippedPixels(const Pixels& pixels) {
    std::size_t clipped = 0;
    for (std::size_t index = 0; index < pixels.size(); index += 4) {
        clipped += level(pixels, index) == 255 && level(pixels, index + 1) == 255 && level(pixels, index + 2) == 255;
    }
    return static_cast<double>(clipped) / (static_cast<double>(pixels.size()) / 4.0);
}

int brightest(const Pixels& pixels) {
    int found = 0;
    for (std::size_t index = 0; index < pixels.size(); index += 4) {
        found = std::max({found, level(pixels, index), level(pixels, index + 1), level(pixels, index + 2)});
    }
    return found;
}

class QZLCirranePicture : public PictureTest {};

TEST_F(QZLCirranePicture, IsNeitherFlatNorClipped) {
    for (const std::int64_t seed : {1, 2, 3, 4}) {
        clock.setCalendarSeconds(seed);
        const Pixels pixels = draw(*attachedRenderer(640, 360));
        ASSERT_EQ(pixels.size(), 640U * 360U * 4U);
        const auto luminances = sortedLuminances(pixels);
        const auto at = [&](double share) {
            return luminances[static_cast<std::size_t>(share * static_cast<double>(luminances.size()))];
        };
        EXPECT_GT(at(0.01), 8.0) << seed;
        EXPECT_GT(at(0.5), 45.0) << seed;
        EXPECT_LT(at(0.5), 190.0) << seed;
        EXPECT_GT(at(0.99) - at(0.01), 60.0) << seed;
        EXPECT_LT(shareOfClippedPixels(pixels), 0.02) << seed;
    }
}

TEST_F(QZLCirranePicture, IsOpaque) {
    const Pixels pixels = draw(*attachedRenderer(64, 64));
    for (std::size_t index = 3; index < pixels.size(); index += 4) {
        ASSERT_EQ(level(pixels, index), 255);
    }
}

TEST_F(QZLCirranePicture, MovesSmoothly) {
    const auto renderer = attachedRenderer(640, 360);
    const Pixels first = draw(*renderer);
    const Pixels next = draw(*renderer);
    EXPECT_LE(differenceBetween(first, next).largest, 40);
    EXPECT_LT(differenceBetween(first, next).mean, 1.5);

    auto later = renderer->animationState();
    later.motionAngle += 20.0 * renderer->motionRadiansPerSecond();
    renderer->setAnimationState(later);
    EXPECT_GT(differenceBetween(first, draw(*renderer)).mean, 4.0);
}

TEST_F(QZLCirranePicture, GrowsFromTheSeedAlone) {
    clock.setCalendarSeconds(7);
    const Pixels first = draw(*attachedRenderer(320, 180));
    const Pixels again = draw(*attachedRenderer(320, 180));
    EXPECT_EQ(first, again);
    clock.setCalendarSeconds(8);
    EXPECT_GT(differenceBetween(first, draw(*attachedRenderer(320, 180))).mean, 4.0);
}

TEST_F(QZLCirranePicture, FadesFromBlack) {
    const auto renderer = attachedRenderer(320, 180);
    EXPECT_LE(brightest(draw(*renderer, 0.0F)), 1);
    const int half = brightest(draw(*renderer, 0.5F));
    EXPECT_NEAR(half, brightest(draw(*renderer, 1.0F)) / 2.0, 6.0);
}

TEST_F(QZLCirranePicture, SettingsShowInIt) {
    auto& defaults = QZLDefaultsManager::sharedInstance();
    clock.setCalendarSeconds(7);
    const auto luminanceOfDepths = [&] {
        const auto luminances = sortedLuminances(draw(*attachedRenderer(320, 180)));
        return luminances[luminances.size() / 4];
    };
    defaults.setBrightness(0.0F);
    const double dark = luminanceOfDepths();
    defaults.setBrightness(1.0F);
    EXPECT_GT(luminanceOfDepths(), 1.3 * dark);

    const auto chromaOf = [&] {
        const Pixels pixels = draw(*attachedRenderer(320, 180));
        double sum = 0.0;
        for (std::size_t index = 0; index < pixels.size(); index += 4) {
            const auto [least, most] =
                std::minmax({level(pixels, index), level(pixels, index + 1), level(pixels, index + 2)});
            sum += most - least;
        }
        return sum;
    };
    defaults.setColors(0.0F);
    const double pale = chromaOf();
    defaults.setColors(1.0F);
    EXPECT_GT(chromaOf(), 2.0 * pale);
}

TEST_F(QZLCirranePicture, AStepOfASliderMakesNoJump) {
    auto& defaults = QZLDefaultsManager::sharedInstance();
    clock.setCalendarSeconds(7);
    constexpr float step = 0.001F;  // of the sheet's sliders
    using Setter = void (QZLDefaultsManager::*)(float);
    for (const Setter set :
         {&QZLDefaultsManager::setColors, &QZLDefaultsManager::setBrightness, &QZLDefaultsManager::setZoom}) {
        for (const float value : {0.0F, 0.33F, 0.66F, 0.999F}) {
            (defaults.*set)(value);
            const Pixels before = draw(*attachedRenderer(320, 180));
            (defaults.*set)(value + step);
            const Pixels after = draw(*attachedRenderer(320, 180));
            EXPECT_LE(differenceBetween(before, after).largest, 12) << value;
            EXPECT_LT(differenceBetween(before, after).mean, 0.6) << value;
        }
        (defaults.*set)(0.4F);
    }
}

TEST_F(QZLCirranePicture, TinyViewsWork) {
    for (const auto& [width, height] : {std::pair{1.0, 1.0}, {3.0, 2.0}, {1.0, 64.0}, {64.0, 1.0}}) {
        const auto renderer = attachedRenderer(width, height);
        const Pixels pixels = draw(*renderer);
        EXPECT_EQ(pixels.size(), static_cast<std::size_t>(width * height) * 4);
        EXPECT_GT(brightest(pixels), 10) << width << " x " << height;
    }
}

TEST_F(QZLCirranePicture, NonsenseSettingsDoNotHangTheGpu) {
    auto& defaults = QZLDefaultsManager::sharedInstance();
    defaults.setZoom(-1.0F);
    defaults.setSpeed(1e30F);
    defaults.setColors(-1e30F);
    defaults.setBrightness(1e30F);
    EXPECT_FALSE(draw(*attachedRenderer(64, 36)).empty());
}

/// Counts the frames that a layer has finished.
class FrameCounter final : public gpu::FrameObserver {
public:
    void drawableTaken(const gpu::Drawable&) override {}
    void frameCommitted(const gpu::Drawable&) override {}
    void frameScheduled(const gpu::Drawable&) override {}
    void frameCompleted(const gpu::Drawable&, bool succeeded) override { finished += succeeded ? 1 : 0; }

    std::atomic<int> finished{0};
};

TEST_F(QZLCirranePicture, FrameLoopRunsOverManyFramesAndAReattach) {
    view->viewBounds = {0, 0, 320, 180};
    StartedRenderer renderer(view);
    int expected = 0;
    const auto counter = std::make_shared<FrameCounter>();
    for (int attachment = 0; attachment < 2; ++attachment) {
        ASSERT_FALSE(renderer.start());
        view->layer->setFrameObserver(counter);
        for (int refresh = 0; refresh < 12; ++refresh) {
            EXPECT_EQ(view->displayLink->fire(), 0);
        }
        expected += 12;
        renderer.stopAndDetach();  // with frames in flight
        while (counter->finished < expected) {
            std::this_thread::yield();
        }
        view->viewBounds = {0, 0, 200, 100};
    }
    EXPECT_EQ(counter->finished, expected);
}

}  // namespace
