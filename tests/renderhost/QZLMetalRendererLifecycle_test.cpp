#include "foundation/QZLError.hpp"
#include "tests/renderhost/RendererTest.hpp"

#include <algorithm>

using testing::Contains;
using testing::ElementsAre;

namespace {

class QZLMetalRendererLifecycle : public RendererTest {
protected:
    /// Nothing runs in an abandoned renderer here, so that it can be destroyed after all.
    ~QZLMetalRendererLifecycle() override {
        renderer.reset();
        delete _abandoned;
    }

    /// Attached and running, with a link whose stop gives up waiting.
    void attachWithAStuckLink() {
        EXPECT_FALSE(attach());
        _abandoned = renderer.get();
        renderer->startAnimation();
        view->displayLink->stopResult = platform::displayLinkAbandoned;
    }

    int countInJournal(const std::string& line) const {
        const auto lines = journalLines();
        return static_cast<int>(std::count(lines.begin(), lines.end(), line));
    }

private:
    RecordingRenderer* _abandoned = nullptr;
};

}  // namespace

TEST(QZLMetalRenderer, IsMadeWithItsDefaults) {
    const QZLMetalRenderer renderer;
    EXPECT_EQ(renderer.view(), nullptr);
    EXPECT_EQ(renderer.layer(), nullptr);
    EXPECT_FALSE(renderer.isAttached());
    EXPECT_EQ(renderer.frameNumber(), 0U);
    EXPECT_EQ(renderer.journal(), nullptr);
    EXPECT_FALSE(renderer.screenshotsEnabled());
    EXPECT_TRUE(renderer.shouldClearFrame());
    EXPECT_EQ(renderer.clearFrameColor(), (gpu::ClearColor{0, 0, 0, 1}));
    EXPECT_EQ(renderer.requestedFrameRate(), 0.0);
    EXPECT_EQ(renderer.selectedFrameRate(), 0.0);
    EXPECT_EQ(renderer.fadeInTime(), 0.0);
    EXPECT_FALSE(renderer.isAbandoned());
}

TEST_F(QZLMetalRendererLifecycle, StartAndStopWriteOnOppositeSidesOfTheLink) {
    EXPECT_FALSE(attach());
    std::vector<std::string> seen;
    view->displayLink->record = [&](const std::string& call) {
        seen.push_back(call + " after " + journalLines().back());
    };
    renderer->startAnimation();
    renderer->stopAnimation();
    EXPECT_THAT(seen,
                ElementsAre("startDisplayLink after Started animation.", "stopDisplayLink after Started animation."));
    EXPECT_EQ(journalLines().back(), "Stopped animation.");
    view->displayLink->record = nullptr;
}

TEST_F(QZLMetalRendererLifecycle, ADetachedRendererStartsAndStopsInTheJournalOnly) {
    renderer->startAnimation();
    renderer->stopAnimation();
    renderer->startDisplayLink();
    renderer->stopDisplayLink();
    EXPECT_THAT(journalLines(), ElementsAre("Started animation.", "Stopped animation."));
    EXPECT_EQ(view->displayLink->starts, 0);
    EXPECT_EQ(view->displayLink->stops, 0);
}

TEST_F(QZLMetalRendererLifecycle, DetachStopsAndReleasesTheLinkAndLetsGoOfTheView) {
    EXPECT_FALSE(attach());
    renderer->startAnimation();
    std::vector<std::string> calls;
    view->displayLink->record = [&calls](const std::string& call) { calls.push_back(call); };
    renderer->detachFromView();
    view->displayLink->record = nullptr;
    EXPECT_THAT(calls, ElementsAre("stopDisplayLink", "releaseDisplayLink"));
    EXPECT_EQ(renderer->view(), nullptr);
    EXPECT_EQ(renderer->layer(), nullptr);
    EXPECT_FALSE(renderer->isAttached());
    EXPECT_EQ(journalLines().back(), "Detached Metal renderer.");
}

TEST_F(QZLMetalRendererLifecycle, DetachLeavesTheLayerInTheView) {
    EXPECT_FALSE(attach());
    const auto layer = renderer->layer();
    renderer->detachFromView();
    EXPECT_EQ(view->layer, layer);
}

TEST_F(QZLMetalRendererLifecycle, DetachingTwiceWritesOnce) {
    EXPECT_FALSE(attach());
    renderer->detachFromView();
    renderer->detachFromView();
    EXPECT_EQ(countInJournal("Detached Metal renderer."), 1);
}

TEST_F(QZLMetalRendererLifecycle, DetachingWhatWasNeverAttachedDoesNothing) {
    renderer->detachFromView();
    EXPECT_THAT(journalLines(), ElementsAre());
}

TEST_F(QZLMetalRendererLifecycle, DetachKeepsPropertiesAndCounters) {
    gpu->setCompletesAtCommit(true);
    renderer->setRequestedFrameRate(30.0);
    renderer->setFadeInTime(1.0);
    EXPECT_FALSE(attach());
    renderer->presentFrame();
    renderer->presentFrame();
    renderer->detachFromView();
    EXPECT_EQ(renderer->frameNumber(), 2U);
    EXPECT_EQ(renderer->selectedFrameRate(), 30.0);
    EXPECT_EQ(renderer->fadeInTime(), 1.0);
    EXPECT_EQ(renderer->journal(), journal);

    EXPECT_FALSE(attach());
    renderer->presentFrame();
    EXPECT_EQ(renderer->frames.back(), (RecordingRenderer::Frame{2, 0.0F, 2}));  // only the fade begins again
}

TEST_F(QZLMetalRendererLifecycle, AttachingAgainStopsAndReplacesTheLink) {
    EXPECT_FALSE(attach());
    renderer->startAnimation();
    std::vector<std::string> calls;
    view->displayLink->record = [&calls](const std::string& call) { calls.push_back(call); };
    EXPECT_FALSE(attach());
    view->displayLink->record = nullptr;
    EXPECT_EQ(calls.front(), "stopDisplayLink");
    EXPECT_THAT(calls, Contains("createDisplayLink"));
    EXPECT_TRUE(renderer->isAttached());
}

TEST_F(QZLMetalRendererLifecycle, TheLastOwnerDetachesTheSubclass) {
    EXPECT_FALSE(attach());
    bool wasAttached = false;
    renderer->onDetach = [&, raw = renderer.get()] { wasAttached = raw->isAttached(); };
    renderer.reset();
    EXPECT_TRUE(wasAttached);
    EXPECT_FALSE(view->displayLink->exists);
    EXPECT_EQ(journalLines().back(), "Detached Metal renderer.");
}

TEST_F(QZLMetalRendererLifecycle, ARendererHoldsItsViewWeakly) {
    EXPECT_FALSE(attach());
    const std::weak_ptr<fake::HostView> weak = view;
    view.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(renderer->view(), nullptr);
}

TEST_F(QZLMetalRendererLifecycle, FramesInFlightSurviveADetach) {
    EXPECT_FALSE(attach());
    for (int frame = 0; frame < 3; ++frame) {
        renderer->presentFrame();
    }
    renderer->detachFromView();
    EXPECT_EQ(gpu->committedButIncomplete(), 3U);
    gpu->completeAll();

    EXPECT_FALSE(attach());
    for (int frame = 0; frame < 3; ++frame) {
        renderer->presentFrame();  // would block had a slot been lost
    }
    EXPECT_EQ(renderer->bufferIndices(), (std::vector<std::int32_t>{0, 1, 2, 0, 1, 2}));
}

TEST_F(QZLMetalRendererLifecycle, FramesInFlightSurviveTheRenderer) {
    EXPECT_FALSE(attach());
    std::weak_ptr<gpu::Device> device = renderer->layer()->device();
    renderer->presentFrame();
    renderer->presentFrame();
    renderer.reset();
    view.reset();
    EXPECT_FALSE(device.expired());

    clock.advance(0.25);
    gpu->completeNext();
    clock.advance(1.5);
    gpu->completeNext();  // the second event closes the period that the first one opened
    EXPECT_DOUBLE_EQ(statistics->frameElapsedTime(), 0.25);
    EXPECT_TRUE(device.expired());
}

TEST_F(QZLMetalRendererLifecycle, FailedFramesGiveTheirSlotsBackToo) {
    EXPECT_FALSE(attach());
    for (int frame = 0; frame < 7; ++frame) {
        renderer->presentFrame();
        gpu->completeNext(false);
    }
    EXPECT_EQ(renderer->frames.size(), 7U);
}

TEST_F(QZLMetalRendererLifecycle, ALostDeviceDoesNotStopTheLoop) {
    gpu->plan().lostAfterCommits = 1;
    EXPECT_FALSE(attach());
    renderer->presentFrame();
    for (int frame = 0; frame < 7; ++frame) {
        renderer->presentFrame();
    }
    EXPECT_EQ(renderer->frames.size(), 8U);
}

TEST_F(QZLMetalRendererLifecycle, AStuckCallbackAbandonsTheRenderer) {
    attachWithAStuckLink();
    renderer->stopAnimation();
    EXPECT_TRUE(renderer->isAbandoned());
    EXPECT_EQ(journalLines().back(), "Stopped animation.");
    renderer->startDisplayLink();
    renderer->stopDisplayLink();
    EXPECT_EQ(view->displayLink->starts, 1);
    EXPECT_EQ(view->displayLink->stops, 1);
}

TEST_F(QZLMetalRendererLifecycle, DetachingAnAbandonedRendererKeepsAllThatTheCallbackMayTouch) {
    attachWithAStuckLink();
    const auto layer = renderer->layer();
    renderer->detachFromView();
    EXPECT_TRUE(renderer->isAbandoned());
    EXPECT_TRUE(view->displayLink->exists);
    EXPECT_EQ(renderer->layer(), layer);
    EXPECT_EQ(renderer->view(), nullptr);
    EXPECT_FALSE(renderer->isAttached());
    renderer->detachFromView();
    EXPECT_EQ(countInJournal("Detached Metal renderer."), 1);
}

TEST_F(QZLMetalRendererLifecycle, AnAbandonedRendererPresentsNothing) {
    attachWithAStuckLink();
    renderer->stopAnimation();
    gpu->clearCalls();
    renderer->presentFrame();
    EXPECT_THAT(gpu->calls(), ElementsAre());
    EXPECT_TRUE(renderer->frames.empty());
}

TEST_F(QZLMetalRendererLifecycle, AnAbandonedRendererIsNotAttachedAgain) {
    attachWithAStuckLink();
    renderer->detachFromView();
    const auto layer = renderer->layer();
    const auto error = attach();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 200);
    EXPECT_EQ(QZLGetErrorSubCode(*error), platform::displayLinkAbandoned);
    EXPECT_EQ(renderer->layer(), layer);
    EXPECT_FALSE(renderer->isAttached());
    EXPECT_EQ(journalLines().back(), "Failed to attach Metal renderer.");
}

TEST_F(QZLMetalRendererLifecycle, AttachingOverAStuckCallbackTouchesNothing) {
    attachWithAStuckLink();
    const auto layer = renderer->layer();
    EXPECT_TRUE(attach());
    EXPECT_EQ(renderer->layer(), layer);
    EXPECT_TRUE(view->displayLink->exists);
}

TEST_F(QZLMetalRendererLifecycle, AnAbandonedRendererIsNeverDestroyed) {
    attachWithAStuckLink();
    const RecordingRenderer* const abandoned = renderer.get();
    renderer.reset();
    EXPECT_TRUE(view->displayLink->exists);
    EXPECT_TRUE(abandoned->isAbandoned());
}
