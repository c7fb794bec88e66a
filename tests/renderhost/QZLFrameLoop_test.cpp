#include "tests/renderhost/RendererTest.hpp"

#include <chrono>
#include <functional>
#include <future>

using namespace std::chrono_literals;
using testing::ElementsAre;

namespace {

class QZLFrameLoop : public RendererTest {
protected:
    void present(int frames) {
        for (int frame = 0; frame < frames; ++frame) {
            renderer->presentFrame();
        }
    }

    /// True when the next frame waits for a slot until `release` has been called.
    bool nextFrameWaitsFor(const std::function<void()>& release) {
        const std::size_t callsBefore = gpu->calls().size();
        auto frame = std::async(std::launch::async, [this] { renderer->presentFrame(); });
        const bool waits = frame.wait_for(50ms) == std::future_status::timeout;
        EXPECT_EQ(gpu->calls().size(), callsBefore);
        release();
        frame.get();
        return waits;
    }
};

/// Stands still and records when it is read, which statistics do and nothing else in a frame does.
class RecordingClock final : public platform::Clock {
public:
    std::function<void()> onRead;

    explicit RecordingClock(fake::Gpu& gpu) : _gpu(gpu), _ticks(platform::clock().absoluteTicks()) {
        platform::setClock(this);
    }
    ~RecordingClock() override { platform::setClock(nullptr); }
    RecordingClock(const RecordingClock&) = delete;
    RecordingClock& operator=(const RecordingClock&) = delete;

    platform::TimebaseInfo timebase() const override { return {1, 1}; }
    std::uint64_t absoluteTicks() const override {
        const auto calls = _gpu.calls();
        if (calls.empty() || calls.back() != "statistics") {
            _gpu.record("statistics");
        }
        if (onRead) {
            onRead();
        }
        return _ticks;
    }
    std::int64_t calendarSeconds() const override { return 0; }
    double secondsSinceReferenceDate() const override { return 0.0; }

private:
    fake::Gpu& _gpu;
    std::uint64_t _ticks;
};

}  // namespace

TEST_F(QZLFrameLoop, AFrameGoesThroughItsStepsInOrder) {
    const RecordingClock recordingClock(*gpu);
    view->displayLink->record = [this](const std::string& call) { gpu->record(call); };
    renderer->setScreenshotsEnabled(true);
    renderer->setClearFrameColor({0.25, 0.5, 0.75, 1.0});
    renderer->onShouldSaveScreenshot = [this] {
        gpu->record("shouldSaveScreenshot");
        return false;
    };
    renderer->onDraw = [this](QZLDrawContext& context) {
        gpu->record("drawFrame");
        if (auto* encoder = context.renderCommandEncoderWithState(nullptr)) {
            encoder->endEncoding();
        }
        context.commandBuffer().addScheduledHandler([this](gpu::CommandBuffer&) { gpu->record("scheduled"); });
        context.commandBuffer().addCompletedHandler([this](gpu::CommandBuffer&) { gpu->record("completed"); });
    };
    EXPECT_FALSE(attach());
    gpu->clearCalls();

    renderer->startAnimation();
    view->displayLink->fire();
    gpu->record("the GPU has finished");
    gpu->completeNext();
    renderer->stopAnimation();
    view->displayLink->record = nullptr;

    EXPECT_THAT(gpu->calls(), ElementsAre("startDisplayLink",
                                          "nextDrawable 0",        //
                                          "shouldSaveScreenshot",  //
                                          "statistics",            // frame started
                                          "commandBuffer",         //
                                          "addScheduledHandler",   //
                                          "addCompletedHandler",   //
                                          "drawFrame",             //
                                          "render [drawable 0 clear(0.25 0.5 0.75 1) store]", "end",
                                          "addScheduledHandler", "addCompletedHandler",
                                          "present 0",   //
                                          "statistics",  // frame queued
                                          "commit",      //
                                          "statistics",  // frame scheduled
                                          "scheduled",   //
                                          "statistics",  // frame presented
                                          "the GPU has finished",
                                          "statistics",  // frame completed
                                          "completed", "stopDisplayLink"));
}

TEST_F(QZLFrameLoop, ACompletedFrameIsSavedBeforeItIsReported) {
    const RecordingClock recordingClock(*gpu);
    view->viewBounds = {0, 0, 2, 2};
    renderer->setScreenshotsEnabled(true);
    renderer->onShouldSaveScreenshot = [] { return true; };
    EXPECT_FALSE(attach());
    renderer->presentFrame();
    gpu->clearCalls();
    gpu->completeNext();
    EXPECT_THAT(gpu->calls(), ElementsAre("newBuffer 16", "newCommandQueue", "commandBuffer", "blit",
                                          testing::StartsWith("copy drawable 0"), "end", "commit", "statistics"));
}

TEST_F(QZLFrameLoop, TheBaseDrawsNothing) {
    const auto plain = QZLMakeRenderer<QZLMetalRenderer>();
    gpu->setCompletesAtCommit(true);
    EXPECT_FALSE(plain->attachToView(view, false, 0, statistics));
    plain->setScreenshotsEnabled(true);
    plain->configurationChanged();
    gpu->clearCalls();
    plain->presentFrame();
    EXPECT_THAT(gpu->calls(), ElementsAre("nextDrawable 0", "commandBuffer", "addScheduledHandler",
                                          "addCompletedHandler", "present 0", "commit"));
}

TEST_F(QZLFrameLoop, WithoutStatisticsNobodyWantsToKnowTheSchedule) {
    EXPECT_FALSE(renderer->attachToView(view, false, 0, nullptr));
    gpu->clearCalls();
    renderer->presentFrame();
    EXPECT_THAT(gpu->calls(),
                ElementsAre("nextDrawable 0", "commandBuffer", "addCompletedHandler", "present 0", "commit"));
}

TEST_F(QZLFrameLoop, PresentingWithoutALayerDoesNothing) {
    renderer->presentFrame();
    EXPECT_THAT(gpu->calls(), ElementsAre());
}

TEST_F(QZLFrameLoop, AFrameIsClearedOnlyWhenItShallBe) {
    renderer->onDraw = [](QZLDrawContext& context) { context.renderCommandEncoderWithState(nullptr)->endEncoding(); };
    EXPECT_FALSE(attach());
    renderer->setShouldClearFrame(false);
    present(1);
    renderer->setShouldClearFrame(true);
    renderer->setClearFrameColor({1, 0, 0, 0.5});
    present(1);
    EXPECT_THAT(callsStartingWith("render "),
                ElementsAre("render [drawable 0 dontCare store]", "render [drawable 1 clear(1 0 0 0.5) store]"));
}

TEST_F(QZLFrameLoop, TheSlotsTakeTurns) {
    gpu->setCompletesAtCommit(true);
    EXPECT_FALSE(attach());
    present(7);
    EXPECT_EQ(renderer->bufferIndices(), (std::vector<std::int32_t>{0, 1, 2, 0, 1, 2, 0}));
}

TEST_F(QZLFrameLoop, FramesAreNumberedFromTheLastReset) {
    gpu->setCompletesAtCommit(true);
    EXPECT_FALSE(attach());
    present(2);
    renderer->stopAnimation();
    renderer->startAnimation();
    present(1);
    EXPECT_EQ(renderer->frames.back().frameNumber, 2U);
    EXPECT_EQ(renderer->frameNumber(), 3U);
    renderer->resetFrameNumber();
    EXPECT_EQ(renderer->frameNumber(), 0U);
    present(1);
    EXPECT_EQ(renderer->frames.back().frameNumber, 0U);
    EXPECT_EQ(renderer->frameNumber(), 1U);
}

TEST_F(QZLFrameLoop, AFourthFrameWaitsForTheFirstToComplete) {
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_EQ(gpu->committedButIncomplete(), 3U);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_EQ(renderer->bufferIndices(), (std::vector<std::int32_t>{0, 1, 2, 0}));
    EXPECT_EQ(gpu->committedButIncomplete(), 3U);
}

TEST_F(QZLFrameLoop, NeverAreMoreThanThreeFramesInFlight) {
    EXPECT_FALSE(attach());
    for (int frame = 0; frame < 20; ++frame) {
        if (gpu->committedButIncomplete() == 3) {
            gpu->completeNext();
        }
        present(1);
        ASSERT_LE(gpu->committedButIncomplete(), 3U);
    }
    EXPECT_EQ(renderer->frames.size(), 20U);
}

TEST_F(QZLFrameLoop, ASlotComesBackOnlyWithItsCompletion) {
    EXPECT_FALSE(attach());
    present(3);
    gpu->completeNext();
    gpu->completeNext();
    present(2);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
}

TEST_F(QZLFrameLoop, AFrameWithoutADrawableKeepsItsSlotForEver) {
    gpu->plan().failingDrawables = {1, 2};
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_EQ(renderer->frames.size(), 1U);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));  // one slot of three is left
    EXPECT_EQ(renderer->bufferIndices(), (std::vector<std::int32_t>{0, 1, 2}));
}

TEST_F(QZLFrameLoop, AFrameWithoutADrawableTakesNeitherIndexNorNumber) {
    gpu->setCompletesAtCommit(true);
    gpu->plan().failingDrawables = {1};
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_THAT(renderer->frames,
                ElementsAre(RecordingRenderer::Frame{0, 1.0F, 0}, RecordingRenderer::Frame{1, 1.0F, 1}));
    EXPECT_THAT(callsStartingWith("commandBuffer"), testing::SizeIs(2));
}

TEST_F(QZLFrameLoop, AFrameWithoutACommandBufferKeepsItsSlotForEver) {
    gpu->plan().failingCommandBuffers = {1, 2};
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_EQ(renderer->frames.size(), 3U);
}

TEST_F(QZLFrameLoop, AFrameWithoutACommandBufferTakesAnIndexAndNoNumber) {
    gpu->setCompletesAtCommit(true);
    gpu->plan().failingCommandBuffers = {1};
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_THAT(renderer->frames,
                ElementsAre(RecordingRenderer::Frame{0, 1.0F, 0}, RecordingRenderer::Frame{2, 1.0F, 1}));
}

TEST_F(QZLFrameLoop, PreparationIsFromAfterTheScreenshotQuestionToBeforeTheCommit) {
    gpu->setCompletesAtCommit(true);
    renderer->setScreenshotsEnabled(true);
    renderer->onShouldSaveScreenshot = [this] {
        clock.advance(0.002);
        return false;
    };
    renderer->onDraw = [this](QZLDrawContext& context) {
        clock.advance(0.005);
        context.commandBuffer().addScheduledHandler([this](gpu::CommandBuffer&) { clock.advance(0.007); });
    };
    EXPECT_FALSE(attach());
    present(1);
    clock.advance(1.0);
    present(1);
    EXPECT_NEAR(statistics->framePreparationTime(), 0.005, 1e-9);
    EXPECT_NEAR(statistics->frameRenderingTime(), 0.007, 1e-9);
    EXPECT_NEAR(statistics->frameElapsedTime(), 0.012, 1e-9);
}

TEST_F(QZLFrameLoop, CallbacksReportToTheStatisticsOfTheirMoment) {
    const auto later = std::make_shared<QZLStatistics>();
    EXPECT_FALSE(attach());
    present(2);
    renderer->detachFromView();
    EXPECT_FALSE(renderer->attachToView(view, false, 0, later));
    gpu->completeNext();
    clock.advance(1.5);
    gpu->completeNext();
    EXPECT_GT(later->frameElapsedTime(), 0.0);
    EXPECT_EQ(statistics->frameElapsedTime(), 0.0);
}

TEST_F(QZLFrameLoop, CallbacksOfAFrameReportNothingOnceThereAreNoStatistics) {
    EXPECT_FALSE(attach());
    present(2);
    renderer->detachFromView();
    EXPECT_FALSE(renderer->attachToView(view, false, 0, nullptr));
    gpu->completeNext();
    clock.advance(1.5);
    gpu->completeNext();
    EXPECT_EQ(statistics->frameElapsedTime(), 0.0);
    present(3);  // the slots came back
}

TEST_F(QZLFrameLoop, AnImageIsNotDrawnIntoAgainUntilItsFrameHasBeenSavedAndReported) {
    RecordingClock recordingClock(*gpu);
    const gpu::Texture* image = nullptr;
    const gpu::Texture* nextWhileReporting = nullptr;
    renderer->onDraw = [&image](QZLDrawContext& context) { image = context.drawable().texture().get(); };
    EXPECT_FALSE(attach());
    present(1);
    recordingClock.onRead = [&] { nextWhileReporting = renderer->layer()->nextDrawable()->texture().get(); };
    gpu->completeNext(false);  // failed, so that the layer does not hold the drawable for showing
    ASSERT_NE(nextWhileReporting, nullptr);
    EXPECT_NE(nextWhileReporting, image);
    EXPECT_EQ(renderer->layer()->nextDrawable()->texture().get(), image);
}
