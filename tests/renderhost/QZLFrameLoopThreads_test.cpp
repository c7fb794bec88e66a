// The frame loop with its real threads: a display link's, a completion thread and the main one.
#include "tests/renderhost/RendererTest.hpp"
#include "tests/support/Waiting.hpp"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

constexpr std::uint64_t ticks = 300;

/// A view whose display link ticks as fast as frames are drawn.
class FreeRunningView final : public platform::HostView {
public:
    std::atomic<bool> finished{false};

    platform::Rect bounds() const override { return {0, 0, 16, 16}; }
    platform::Rect convertRectToBacking(const platform::Rect& rect) const override { return rect; }
    std::optional<std::uint32_t> screenNumber() const override { return 1; }
    int createDisplayLink(std::uint32_t, std::unique_ptr<platform::DisplayLink>& link) override {
        link = platform::makeFreeRunningDisplayLink({1, 60}, ticks, [this] { finished = true; });
        return link != nullptr ? platform::displayLinkSuccess : platform::displayLinkError;
    }
    void setLayer(std::shared_ptr<gpu::Layer>) override {}
    void setWantsLayer(bool) override {}
};

/// Completes what is committed, on a thread of its own.
class CompletionThread {
public:
    explicit CompletionThread(fake::Gpu& gpu)
        : _thread([this, &gpu] {
              while (!_ends) {
                  if (!gpu.completeNext()) {
                      std::this_thread::yield();
                  }
              }
              gpu.completeAll();
          }) {}
    ~CompletionThread() {
        _ends = true;
        _thread.join();
    }
    CompletionThread(const CompletionThread&) = delete;
    CompletionThread& operator=(const CompletionThread&) = delete;

private:
    std::atomic<bool> _ends{false};
    std::thread _thread;
};

class QZLFrameLoopThreads : public RendererTest {
protected:
    std::shared_ptr<FreeRunningView> runningView = std::make_shared<FreeRunningView>();

    /// What the main thread may do while frames are drawn.
    void useProperties() {
        renderer->setClearFrameColor({0.1, 0.2, 0.3, 1.0});
        renderer->setShouldClearFrame(!renderer->shouldClearFrame());
        renderer->setJournal(journal);
        renderer->resetFader();
        renderer->resetFrameNumber();
        statistics->reset();
        EXPECT_LE(renderer->frameNumber(), ticks);
        EXPECT_TRUE(renderer->isAttached());
        EXPECT_GE(statistics->frameRate(), 0.0);
    }
};

}  // namespace

TEST_F(QZLFrameLoopThreads, EveryTickBecomesAFrameWhileTheMainThreadUsesTheRenderer) {
    const CompletionThread completion(*gpu);
    renderer->setFadeInTime(1.0);
    ASSERT_FALSE(renderer->attachToView(runningView, false, 0, statistics));
    renderer->startAnimation();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!runningView->finished && std::chrono::steady_clock::now() < deadline) {
        useProperties();
    }
    renderer->stopAnimation();
    EXPECT_TRUE(runningView->finished);
    ASSERT_EQ(renderer->frames.size(), ticks);
    for (std::size_t frame = 0; frame < ticks; ++frame) {
        ASSERT_EQ(renderer->frames[frame].bufferIndex, static_cast<std::int32_t>(frame % 3));
    }
    renderer->detachFromView();
}

TEST_F(QZLFrameLoopThreads, ARendererMayGoWhileItsFramesComplete) {
    const CompletionThread completion(*gpu);
    for (int life = 0; life < 20; ++life) {
        renderer = QZLMakeRenderer<RecordingRenderer>();
        ASSERT_FALSE(renderer->attachToView(runningView, false, 0, statistics));
        renderer->startAnimation();
        EXPECT_TRUE(fake::eventually([this] { return renderer->frameNumber() > 0; }));
        renderer.reset();
    }
}
