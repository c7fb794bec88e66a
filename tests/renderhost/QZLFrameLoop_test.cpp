#include "tests/renderhost/FrameLoopTest.hpp"

using testing::ElementsAre;

namespace {

class QZLFrameLoop : public FrameLoopTest {};

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
