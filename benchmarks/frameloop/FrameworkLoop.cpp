#include "benchmarks/frameloop/FrameworkLoop.hpp"

#include "platform/DisplayLink.hpp"
#include "platform/HostView.hpp"
#include "platform/gpu/Layer.hpp"
#include "platform/ui/ScreenSaverView.hpp"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace bench {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::minutes patience{10};

/// Notes the frames of one run as they complete; keeps the last one's pixels.
class Completions final : public gpu::FrameObserver {
public:
    Completions(std::size_t frames, LastPicture lastPicture) : _frames(frames), _lastPicture(lastPicture) {}

    /// False when a frame failed or takes too long.
    bool waitFor(std::size_t frames) {
        std::unique_lock lock(_mutex);
        return _changed.wait_for(lock, patience, [&] { return _completed >= frames || _failed; }) && !_failed;
    }

    double framesPerSecond() const {
        const std::chrono::duration<double> taken = _last - _first;
        return static_cast<double>(_frames - 1) / taken.count();
    }
    std::vector<std::byte> takePicture() { return std::move(_picture); }

    void frameCompleted(const gpu::Drawable& drawable, bool succeeded) override {
        const auto now = steady_clock::now();
        const std::lock_guard lock(_mutex);
        _failed = _failed || !succeeded;
        if (_completed == 0) {
            _first = now;
            if (frameHooks().firstCompleted != nullptr) {
                frameHooks().firstCompleted();
            }
        }
        if (_completed + 1 == _frames) {
            _last = now;
            if (_lastPicture == LastPicture::Read) {
                _picture = drawable.layer()->readPixels(drawable);
            }
        }
        ++_completed;
        _changed.notify_all();
    }
    void drawableTaken(const gpu::Drawable&) override {}
    void frameCommitted(const gpu::Drawable&) override {}
    void frameScheduled(const gpu::Drawable&) override {}

private:
    const std::size_t _frames;
    const LastPicture _lastPicture;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::size_t _completed = 0;
    bool _failed = false;
    steady_clock::time_point _first;
    steady_clock::time_point _last;
    std::vector<std::byte> _picture;
};

/// The framework's free-running link, with a look at the clock around each call.
class MeasuredLink final : public platform::DisplayLink {
public:
    MeasuredLink(std::size_t frames, Pace pace, Completions& completions, std::vector<double>& cpuMicroseconds)
        : _pace(pace),
          _completions(completions),
          _cpuMicroseconds(cpuMicroseconds),
          _link(platform::makeFreeRunningDisplayLink({1, nominalRate}, frames, nullptr)) {
        _cpuMicroseconds.reserve(frames);
    }

    platform::RefreshPeriod nominalOutputVideoRefreshPeriod() const override {
        return _link->nominalOutputVideoRefreshPeriod();
    }
    int setOutputCallback(OutputCallback callback, void* context) override {
        _callback = callback;
        _context = context;
        return _link->setOutputCallback(tick, this);
    }
    int start() override { return _link->start(); }
    int stop() override { return _link->stop(); }

private:
    static int tick(DisplayLink*, const platform::DisplayTime* now, const platform::DisplayTime* outputTime,
                    std::uint64_t flagsIn, std::uint64_t* flagsOut, void* context) {
        auto& self = *static_cast<MeasuredLink*>(context);
        const std::size_t frame = self._cpuMicroseconds.size();
        if (self._pace == Pace::SlotIsFree && frame >= slots - 1) {
            if (!self._completions.waitFor(frame - (slots - 1) + 1)) {
                return platform::displayLinkError;  // who waits for the run tells of it
            }
            std::this_thread::sleep_for(settling);
        }
        if (frameHooks().begin != nullptr) {
            frameHooks().begin(frame);
        }
        const double start = threadCpuMicroseconds();
        const int result = self._callback(&self, now, outputTime, flagsIn, flagsOut, self._context);
        self._cpuMicroseconds.push_back(threadCpuMicroseconds() - start);
        if (frameHooks().end != nullptr) {
            frameHooks().end();
        }
        return result;
    }

    const Pace _pace;
    Completions& _completions;
    std::vector<double>& _cpuMicroseconds;
    OutputCallback _callback = nullptr;
    void* _context = nullptr;
    std::unique_ptr<DisplayLink> _link;  // last: it stops before the rest goes
};

class View final : public platform::HostView {
public:
    View(Size size, std::function<std::unique_ptr<platform::DisplayLink>()> makeLink,
         std::shared_ptr<gpu::FrameObserver> observer)
        : _size(size), _makeLink(std::move(makeLink)), _observer(std::move(observer)) {}
    ~View() override { setLayer(nullptr); }

    platform::Rect bounds() const override { return {0.0, 0.0, double(_size.width), double(_size.height)}; }
    platform::Rect convertRectToBacking(const platform::Rect& rect) const override { return rect; }
    std::optional<std::uint32_t> screenNumber() const override { return 0; }
    int createDisplayLink(std::uint32_t, std::unique_ptr<platform::DisplayLink>& link) override {
        link = _makeLink();
        return platform::displayLinkSuccess;
    }
    void setLayer(std::shared_ptr<gpu::Layer> layer) override {
        if (_layer != nullptr) {
            _layer->setFrameObserver(nullptr);
        }
        _layer = std::move(layer);
        if (_layer != nullptr) {
            _layer->setFrameObserver(_observer);
        }
    }
    void setWantsLayer(bool) override {}

private:
    Size _size;
    std::function<std::unique_ptr<platform::DisplayLink>()> _makeLink;
    std::shared_ptr<gpu::FrameObserver> _observer;
    std::shared_ptr<gpu::Layer> _layer;
};

}  // namespace

Run FrameworkLoop::run(std::size_t frames, Pace pace, LastPicture lastPicture) {
    Run result;
    const auto completions = std::make_shared<Completions>(frames, lastPicture);
    const auto makeLink = [&] {
        return std::make_unique<MeasuredLink>(frames, pace, *completions, result.cpuMicroseconds);
    };
    const std::unique_ptr<platform::ScreenSaverView> view(
        _module.createView({0.0, 0.0, double(_size.width), double(_size.height)}, false));
    if (view == nullptr) {
        throw std::runtime_error("the saver could not be made");
    }
    view->setHostView(std::make_shared<View>(_size, makeLink, completions));
    view->startAnimation();
    if (const auto error = view->shownError()) {
        throw std::runtime_error(error->localizedDescription());
    }
    if (!completions->waitFor(frames)) {
        throw std::runtime_error("a frame did not complete");
    }
    view->stopAnimation();
    result.framesPerSecond = completions->framesPerSecond();
    result.lastPicture = completions->takePicture();
    return result;
}

}  // namespace bench
