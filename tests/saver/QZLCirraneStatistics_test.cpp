#include "platform/Clock.hpp"
#include "platform/DisplayLink.hpp"
#include "saver/QZLCirraneRenderer.hpp"
#include "tests/saver/VulkanTest.hpp"

#include <chrono>
#include <cstdint>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// A view whose display refreshes as fast as frames are drawn.
class FastView final : public platform::HostView {
public:
    platform::Rect bounds() const override { return {0, 0, 640, 360}; }
    platform::Rect convertRectToBacking(const platform::Rect& rect) const override { return rect; }
    std::optional<std::uint32_t> screenNumber() const override { return 0; }
    int createDisplayLink(std::uint32_t, std::unique_ptr<platform::DisplayLink>& link) override {
        link = platform::makeFreeRunningDisplayLink({1, 60}, std::numeric_limits<std::uint64_t>::max(), nullptr);
        return platform::displayLinkSuccess;
    }
    void setLayer(std::shared_ptr<gpu::Layer> layer) override { _layer = std::move(layer); }
    void setWantsLayer(bool) override {}

    gpu::Layer& layer() const { return *_layer; }

private:
    std::shared_ptr<gpu::Layer> _layer;
};

/// Counts by itself, from outside the renderer.
class IndependentCount final : public gpu::FrameObserver {
public:
    void drawableTaken(const gpu::Drawable& drawable) override {
        const std::lock_guard lock(_mutex);
        _taken.resize(drawable.identifier() + 1);
        _taken[drawable.identifier()] = steady_clock::now();
    }
    void frameCommitted(const gpu::Drawable&) override {}
    void frameScheduled(const gpu::Drawable&) override {}
    void frameCompleted(const gpu::Drawable& drawable, bool) override {
        const std::lock_guard lock(_mutex);
        _elapsed.push_back(steady_clock::now() - _taken[drawable.identifier()]);
    }

    double frameRate() const {
        const std::lock_guard lock(_mutex);
        return static_cast<double>(_taken.size() - 1) / Seconds(_taken.back() - _taken.front()).count();
    }
    double meanElapsedTime() const {
        const std::lock_guard lock(_mutex);
        Seconds sum(0);
        for (const Seconds elapsed : _elapsed) {
            sum += elapsed;
        }
        return sum.count() / static_cast<double>(_elapsed.size());
    }

private:
    mutable std::mutex _mutex;
    std::vector<steady_clock::time_point> _taken;
    std::vector<Seconds> _elapsed;
};

/// The mean of a figure over its first completed periods, each of which shows as a new value.
class PeriodMean {
public:
    explicit PeriodMean(int periods) : _periods(periods) {}

    void look(double value) {
        if (!isComplete() && value != _last) {
            _last = value;
            _sum += value;
            ++_seen;
        }
    }
    bool isComplete() const { return _seen == _periods; }
    double mean() const { return _sum / _periods; }

private:
    int _periods;
    int _seen = 0;
    double _last = 0.0;
    double _sum = 0.0;
};

using QZLCirraneStatistics = VulkanTest;

TEST_F(QZLCirraneStatistics, OfARealRunAgreeWithAnIndependentCount) {
    platform::setClock(nullptr);  // real time, for once
    const auto view = std::make_shared<FastView>();
    const auto statistics = std::make_shared<QZLStatistics>();
    const auto count = std::make_shared<IndependentCount>();
    const auto renderer = QZLMakeRenderer<QZLCirraneRenderer>();
    ASSERT_FALSE(renderer->attachToView(view, true, 0, statistics));
    view->layer().setFrameObserver(count);

    renderer->startAnimation();
    PeriodMean frameRate(4);
    PeriodMean elapsedTime(4);
    while (!frameRate.isComplete() || !elapsedTime.isComplete()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));  // between two looks; a period lasts a second
        frameRate.look(statistics->frameRate());
        elapsedTime.look(statistics->frameElapsedTime());
    }
    renderer->stopAnimation();

    EXPECT_NEAR(frameRate.mean() / count->frameRate(), 1.0, 0.02);
    EXPECT_NEAR(elapsedTime.mean() / count->meanElapsedTime(), 1.0, 0.02);
    EXPECT_GT(statistics->frameRenderingTime(), 0.0);
    EXPECT_LE(statistics->frameRenderingTime(), elapsedTime.mean() * 1.5);
    renderer->detachFromView();
}

}  // namespace
