#include "tests/renderhost/RendererTest.hpp"

#include <limits>

using testing::ElementsAre;

namespace {

class QZLFrameRate : public RendererTest {
protected:
    void attachAt(double requestedFrameRate) {
        gpu->setCompletesAtCommit(true);
        renderer->setRequestedFrameRate(requestedFrameRate);
        ASSERT_FALSE(attach());
        renderer->startAnimation();
    }

    /// On which of so many refreshes a frame is presented.
    std::vector<int> presentingRefreshes(int refreshes) {
        std::vector<int> result;
        for (int refresh = 0; refresh < refreshes; ++refresh) {
            const std::size_t before = renderer->frames.size();
            view->displayLink->fire();
            if (renderer->frames.size() > before) {
                result.push_back(refresh);
            }
        }
        return result;
    }
};

struct Selection {
    double requested;
    int refreshesPerFrame;
    const char* line;
};

class QZLFrameRateSelection : public QZLFrameRate, public testing::WithParamInterface<Selection> {};

/// Rates that have no quotient, or one that no integer holds.
class QZLFrameRateOddRequest : public QZLFrameRate, public testing::WithParamInterface<double> {};

}  // namespace

TEST_P(QZLFrameRateSelection, OnASixtyHertzDisplay) {
    attachAt(GetParam().requested);
    EXPECT_EQ(journalLines()[2], GetParam().line);
    EXPECT_DOUBLE_EQ(renderer->selectedFrameRate(), 60.0 / GetParam().refreshesPerFrame);
    std::vector<int> expected;
    for (int refresh = 0; refresh < 12; refresh += GetParam().refreshesPerFrame) {
        expected.push_back(refresh);
    }
    EXPECT_EQ(presentingRefreshes(12), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, QZLFrameRateSelection,
    testing::Values(Selection{0, 1, "Requested display native frame rate, selected frame rate 60.00 Hz."},
                    Selection{-0.0, 1, "Requested display native frame rate, selected frame rate 60.00 Hz."},
                    Selection{60, 1, "Requested frame rate 60.00 Hz, selected frame rate 60.00 Hz."},
                    Selection{30, 2, "Requested frame rate 30.00 Hz, selected frame rate 30.00 Hz."},
                    Selection{25, 2, "Requested frame rate 25.00 Hz, selected frame rate 30.00 Hz."},
                    Selection{40, 2, "Requested frame rate 40.00 Hz, selected frame rate 30.00 Hz."},
                    Selection{41, 1, "Requested frame rate 41.00 Hz, selected frame rate 60.00 Hz."},
                    Selection{20, 3, "Requested frame rate 20.00 Hz, selected frame rate 20.00 Hz."},
                    Selection{120, 1, "Requested frame rate 120.00 Hz, selected frame rate 60.00 Hz."},
                    Selection{200, 1, "Requested frame rate 200.00 Hz, selected frame rate 60.00 Hz."},
                    Selection{-30, 1, "Requested frame rate -30.00 Hz, selected frame rate 60.00 Hz."}));

TEST_P(QZLFrameRateOddRequest, StillPresentsTheFirstRefresh) {
    attachAt(GetParam());
    EXPECT_GT(renderer->selectedFrameRate(), 0.0);
    EXPECT_LE(renderer->selectedFrameRate(), 60.0);
    EXPECT_EQ(presentingRefreshes(1), (std::vector{0}));
}

INSTANTIATE_TEST_SUITE_P(All, QZLFrameRateOddRequest,
                         testing::Values(std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(), 1e-9, -1e-9,
                                         std::numeric_limits<double>::denorm_min(),
                                         std::numeric_limits<double>::max()));

TEST_F(QZLFrameRate, AnUnknownPeriodMeansAHundredHertz) {
    for (const platform::RefreshPeriod period : {platform::RefreshPeriod{0, 60}, {1, 0}, {0, 0}}) {
        view->displayLink->period = period;
        EXPECT_FALSE(attach());
        EXPECT_EQ(renderer->selectedFrameRate(), 100.0);
    }
    EXPECT_EQ(journalLines()[2], "Requested display native frame rate, selected frame rate 100.00 Hz.");
}

TEST_F(QZLFrameRate, ThePeriodIsAFraction) {
    view->displayLink->period = {1001, 60000};
    EXPECT_FALSE(attach());
    EXPECT_NEAR(renderer->selectedFrameRate(), 59.94, 0.001);
}

TEST_F(QZLFrameRate, TheSkipCounterKeepsItsPositionAcrossStopAndStart) {
    attachAt(20.0);
    EXPECT_EQ(presentingRefreshes(2), (std::vector{0}));
    renderer->stopAnimation();
    EXPECT_EQ(presentingRefreshes(1), (std::vector<int>{}));  // stopped
    renderer->startAnimation();
    EXPECT_EQ(presentingRefreshes(5), (std::vector{1, 4}));
}

TEST_F(QZLFrameRate, TheSkipCounterKeepsItsPositionAcrossDetachAndAttach) {
    attachAt(20.0);
    EXPECT_EQ(presentingRefreshes(1), (std::vector{0}));
    renderer->detachFromView();
    attachAt(20.0);
    EXPECT_EQ(presentingRefreshes(4), (std::vector{2}));
}

TEST_F(QZLFrameRate, EveryRefreshOfTheCycleStartIsCountedAsPresented) {
    gpu->plan().failingDrawables = {0};
    attachAt(0.0);
    view->displayLink->fire();  // gives up, and counts
    for (int refresh = 0; refresh < 10; ++refresh) {
        clock.advance(0.1);
        view->displayLink->fire();
    }
    EXPECT_EQ(renderer->frames.size(), 10U);
    EXPECT_NEAR(statistics->frameRate(), 10.0, 1e-6);
}

TEST_F(QZLFrameRate, SkippedRefreshesAreNotCounted) {
    attachAt(20.0);
    for (int refresh = 0; refresh <= 60; ++refresh) {
        view->displayLink->fire();
        clock.advance(1.0 / 60.0);
    }
    EXPECT_NEAR(statistics->frameRate(), 20.0, 0.01);
}

TEST_F(QZLFrameRate, TheCallbackReportsSuccess) {
    attachAt(0.0);
    EXPECT_EQ(view->displayLink->fire(), 0);
    EXPECT_EQ(view->displayLink->context, renderer.get());
}

TEST_F(QZLFrameRate, AFrameThatThrowsEndsAtTheCallback) {
    attachAt(0.0);
    renderer->onDraw = [](QZLDrawContext&) { throw std::bad_alloc(); };
    EXPECT_EQ(view->displayLink->fire(), 0);
    renderer->onDraw = nullptr;
    EXPECT_EQ(view->displayLink->fire(), 0);
    EXPECT_EQ(renderer->frames.size(), 2U);
}
