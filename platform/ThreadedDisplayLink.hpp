#pragma once

#include "platform/DisplayLink.hpp"

#include <chrono>
#include <memory>
#include <optional>
#include <thread>

namespace platform {

/// When a link's thread calls. Used on that thread alone, and by a later run of the link only after the earlier one
/// has made its last call.
class TickSource {
public:
    virtual ~TickSource() = default;

    virtual void threadStarted() {}
    /// When the next call is due, on the steady clock; a time gone by means at once, none means never again.
    virtual std::optional<std::chrono::nanoseconds> nextTick(std::chrono::nanoseconds now) const = 0;
    /// When the picture of a call made now would be seen.
    virtual std::chrono::nanoseconds outputTime(std::chrono::nanoseconds now) const = 0;
    /// A call is about to be made.
    virtual void tick() {}
    /// No call will be made any more. Held to the same rules as a call of the callback.
    virtual void ended() {}
};

/// A display link with a thread of its own from each start to the stop after it. A run of that thread keeps all it
/// needs in a state that it shares with the link, so that it can be left behind when its callback does not return, and
/// so that the link may be destroyed from within the callback.
class ThreadedDisplayLink final : public DisplayLink {
public:
    ThreadedDisplayLink(RefreshPeriod period, std::shared_ptr<TickSource> source,
                        std::chrono::milliseconds stopTimeout);
    ~ThreadedDisplayLink() override;

    RefreshPeriod nominalOutputVideoRefreshPeriod() const override { return _period; }
    int setOutputCallback(OutputCallback callback, void* context) override;
    int start() override;
    int stop() override;

private:
    class Run;

    const RefreshPeriod _period;
    const std::shared_ptr<TickSource> _source;
    const std::chrono::milliseconds _stopTimeout;
    OutputCallback _callback = nullptr;
    void* _context = nullptr;
    std::shared_ptr<Run>
        _run;             // the latest; replaced only when it makes no call any more, as its callback may read this
    std::thread _thread;  // not joinable after its run was left behind
};

}  // namespace platform
