#include "platform/ThreadedDisplayLink.hpp"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

namespace platform {
namespace {

using SteadyTime = std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds>;

std::chrono::nanoseconds steadyNow() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

}  // namespace

/// What one thread of a link does from its start to its stop. Held by the thread and by the link.
class ThreadedDisplayLink::Run {
public:
    Run(ThreadedDisplayLink* link, OutputCallback callback, void* context, std::shared_ptr<TickSource> source)
        : _link(link), _callback(callback), _context(context), _source(std::move(source)) {}

    /// Starts the run's thread in `thread`. It makes no call before this is done with the link, whose end may come as
    /// early as in the first call.
    static void launch(const std::shared_ptr<Run>& run, std::thread& thread) {
        const std::lock_guard lock(run->_mutex);
        thread = std::thread([run] { run->main(); });
    }

    bool isCurrentThread() const { return currentRun == this; }

    bool stopAsked() {
        const std::lock_guard lock(_mutex);
        return _stopAsked;
    }

    /// From here on no call begins. False when that held already.
    bool askToStop() {
        const std::lock_guard lock(_mutex);
        _changed.notify_all();
        return !std::exchange(_stopAsked, true);
    }

    /// False when a call was still running at the end of that time.
    bool waitForCall(std::chrono::milliseconds timeout) {
        std::unique_lock lock(_mutex);
        return _changed.wait_for(lock, timeout, [this] { return !_calling; });
    }

private:
    void main() {
        currentRun = this;
        _source->threadStarted();
        for (;;) {
            const std::chrono::nanoseconds now = steadyNow();
            const auto due = _source->nextTick(now);
            if (!due) {
                break;
            }
            if ((*due > now && !waitUntil(SteadyTime(*due))) || !call([this] { tick(); })) {
                return;
            }
        }
        call([this] { _source->ended(); });
    }

    /// False when the link was asked to stop.
    bool waitUntil(SteadyTime due) {
        std::unique_lock lock(_mutex);
        return !_changed.wait_until(lock, due, [this] { return _stopAsked; });
    }

    /// Runs that with no lock held, unless the link was asked to stop. False when it was, also meanwhile.
    template <typename Function>
    bool call(Function function) {
        std::unique_lock lock(_mutex);
        if (_stopAsked) {
            return false;
        }
        _calling = true;
        lock.unlock();
        function();
        lock.lock();
        _calling = false;
        _changed.notify_all();
        return !_stopAsked;
    }

    void tick() {
        _source->tick();
        const std::chrono::nanoseconds now = steadyNow();
        const DisplayTime nowTime{now.count()};
        const DisplayTime outputTime{_source->outputTime(now).count()};
        std::uint64_t flagsOut = 0;
        _callback(_link, &nowTime, &outputTime, 0, &flagsOut, _context);
    }

    static inline thread_local const Run* currentRun = nullptr;

    ThreadedDisplayLink* const _link;
    const OutputCallback _callback;
    void* const _context;
    const std::shared_ptr<TickSource> _source;
    std::mutex _mutex;
    std::condition_variable _changed;
    bool _stopAsked = false;
    bool _calling = false;
};

ThreadedDisplayLink::ThreadedDisplayLink(RefreshPeriod period, std::shared_ptr<TickSource> source,
                                         std::chrono::milliseconds stopTimeout)
    : _period(period), _source(std::move(source)), _stopTimeout(stopTimeout) {}

ThreadedDisplayLink::~ThreadedDisplayLink() {
    ThreadedDisplayLink::stop();
    if (_thread.joinable()) {  // destroyed within the callback: the thread goes on with its run alone, and ends
        _thread.detach();
    }
}

int ThreadedDisplayLink::setOutputCallback(OutputCallback callback, void* context) {
    if (_run && !_run->stopAsked()) {
        return displayLinkAlreadyRunning;
    }
    _callback = callback;
    _context = context;
    return displayLinkSuccess;
}

int ThreadedDisplayLink::start() {
    if (_callback == nullptr) {
        return displayLinkCallbacksNotSet;
    }
    if (_run && !_run->stopAsked()) {
        return displayLinkAlreadyRunning;
    }
    // The callback may have asked for the stop, and may be the caller: two calls at once must never be.
    if (_run && (_run->isCurrentThread() || stop() == displayLinkAbandoned)) {
        return displayLinkError;
    }
    try {
        _run = std::make_shared<Run>(this, _callback, _context, _source);
        Run::launch(_run, _thread);
    } catch (const std::exception&) {  // no memory, or no thread to be had
        _run.reset();
        return displayLinkAllocationFailed;
    }
    return displayLinkSuccess;
}

int ThreadedDisplayLink::stop() {
    if (!_run) {
        return displayLinkNotRunning;
    }
    const int result = _run->askToStop() ? displayLinkSuccess : displayLinkNotRunning;
    if (_run->isCurrentThread()) {
        return result;
    }
    const bool leftBehind = !_thread.joinable();
    if (!_run->waitForCall(leftBehind ? std::chrono::milliseconds(0) : _stopTimeout)) {
        if (!leftBehind) {
            _thread.detach();
        }
        return displayLinkAbandoned;
    }
    if (!leftBehind) {
        _thread.join();
    }
    return result;
}

}  // namespace platform
