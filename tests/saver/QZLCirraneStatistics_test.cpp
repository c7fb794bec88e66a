#include "platform/Clock.hpp"
#include "platform/DisplayLink.hpp"
#include "saver/QZLCirraneRenderer.hpp"
#include "tests/saver/VulkanTest.hpp"

#include <chrono>
#include <cmath>
#include <cstddef>
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
    /// What was counted up to some moment.
    struct Totals {
        double framesTaken = 0.0;
        double framesCompleted = 0.0;
        Seconds elapsed{0};  ///< of all completed frames
        steady_clock::time_point lastTaken;
    };

    void drawableTaken(const gpu::Drawable& drawable) override {
        const std::lock_guard lock(_mutex);
        _taken.resize(drawable.identifier() + 1);
        _taken.back() = steady_clock::now();
        _totals.framesTaken += 1.0;
        _totals.lastTaken = _taken.back();
    }
    void frameCommitted(const gpu::Drawable&) override {}
    void frameScheduled(const gpu::Drawable&) override {}
    void frameCompleted(const gpu::Drawable& drawable, bool) override {
        const std::lock_guard lock(_mutex);
        _totals.framesCompleted += 1.0;
        _totals.elapsed += steady_clock::now() - _taken[drawable.identifier()];
    }

    Totals totals() const {
        const std::lock_guard lock(_mutex);
        return _totals;
    }

private:
    mutable std::mutex _mutex;
    std::vector<steady_clock::time_point> _taken;
    Totals _totals;
};

/// One completed period: what the statistics said of it when it showed, and what was counted meanwhile.
struct Period {
    double reported = 0.0;
    IndependentCount::Totals start;
    IndependentCount::Totals end;

    double frames() const { return end.framesTaken - start.framesTaken; }
    double seconds() const { return Seconds(end.lastTaken - start.lastTaken).count(); }
    double completed() const { return end.framesCompleted - start.framesCompleted; }
    double elapsed() const { return (end.elapsed - start.elapsed).count(); }
};

double ratioOfFrameRates(const std::vector<Period>& periods) {
    double reportedFrames = 0.0;
    double frames = 0.0;
    for (const Period& period : periods) {
        reportedFrames += period.reported * period.seconds();
        frames += period.frames();
    }
    return reportedFrames / frames;
}

double ratioOfElapsedTimes(const std::vector<Period>& periods) {
    double reportedTime = 0.0;
    double time = 0.0;
    for (const Period& period : periods) {
        reportedTime += period.reported * period.completed();
        time += period.elapsed();
    }
    return reportedTime / time;
}

/// Watches a figure's latest periods, each of which shows as a new value.
class PeriodWatch {
public:
    static constexpr std::size_t periodsKept = 4;

    void look(double value, const IndependentCount& count) {
        if (value == _last) {
            return;
        }
        const IndependentCount::Totals now = count.totals();
        if (_last != 0.0) {
            _periods.push_back({value, _start, now});
        }
        if (_periods.size() > periodsKept) {
            _periods.erase(_periods.begin());
        }
        _last = value;
        _start = now;
    }
    /// Reported over counted, for all of them together; 0 until there are enough.
    double ratio(double (*ratioOf)(const std::vector<Period>&)) const {
        return _periods.size() < periodsKept ? 0.0 : ratioOf(_periods);
    }

private:
    double _last = 0.0;
    IndependentCount::Totals _start;
    std::vector<Period> _periods;
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
    // A thread that is held up between two stamps makes the counts differ for once, so they may agree a little later.
    const auto agrees = [](double ratio) { return std::abs(ratio - 1.0) <= 0.02; };
    const auto deadline = steady_clock::now() + std::chrono::seconds(60);
    PeriodWatch frameRate;
    PeriodWatch elapsedTime;
    while (steady_clock::now() < deadline &&
           !(agrees(frameRate.ratio(ratioOfFrameRates)) && agrees(elapsedTime.ratio(ratioOfElapsedTimes)))) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));  // between two looks; a period lasts a second
        frameRate.look(statistics->frameRate(), *count);
        elapsedTime.look(statistics->frameElapsedTime(), *count);
    }
    renderer->stopAnimation();

    EXPECT_NEAR(frameRate.ratio(ratioOfFrameRates), 1.0, 0.02);
    EXPECT_NEAR(elapsedTime.ratio(ratioOfElapsedTimes), 1.0, 0.02);
    EXPECT_GT(statistics->frameRenderingTime(), 0.0);
    EXPECT_LT(statistics->framePreparationTime(), statistics->frameElapsedTime());
    renderer->detachFromView();
}

}  // namespace
