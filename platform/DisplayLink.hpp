#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace platform {

/// Result codes of display links; the numbers are the platform's, because error reports show them.
enum DisplayLinkResult : int {
    displayLinkSuccess = 0,
    displayLinkError = -6660,
    displayLinkInvalidArgument = -6661,
    displayLinkAllocationFailed = -6662,
    displayLinkAlreadyRunning = -6671,
    displayLinkNotRunning = -6672,
    displayLinkCallbacksNotSet = -6673,
    /// The callback did not return in time: the link no longer ticks, but that one call may still be running, so
    /// nothing that it uses may be freed or changed.
    displayLinkAbandoned = -6699,
};

/// A moment of a display link, in nanoseconds of the steady clock.
struct DisplayTime {
    std::int64_t nanoseconds = 0;
};

/// A refresh period as a fraction of a second; zero in either field means that it is unknown.
struct RefreshPeriod {
    std::int64_t timeValue = 0;
    std::int32_t timeScale = 0;
};

/// A source of one callback per display refresh, on a thread of its own, never two at once. Made stopped. Set up,
/// started and stopped on one thread, any number of times; destroying it stops it.
class DisplayLink {
public:
    using OutputCallback = int (*)(DisplayLink* link, const DisplayTime* now, const DisplayTime* outputTime,
                                   std::uint64_t flagsIn, std::uint64_t* flagsOut, void* context);

    DisplayLink(const DisplayLink&) = delete;
    DisplayLink& operator=(const DisplayLink&) = delete;
    virtual ~DisplayLink() = default;

    virtual RefreshPeriod nominalOutputVideoRefreshPeriod() const = 0;
    /// The context is not retained: it must live until the link has stopped (or for ever, if `stop` gave up).
    virtual int setOutputCallback(OutputCallback callback, void* context) = 0;
    virtual int start() = 0;
    /// Waits for a running callback, but not for ever: see `displayLinkAbandoned`. Called from within the callback it
    /// only asks the link to stop.
    virtual int stop() = 0;

protected:
    DisplayLink() = default;
};

/// Starts a link; a null one is refused with `displayLinkInvalidArgument`.
int displayLinkStart(DisplayLink* link);

/// A link that ticks at absolute times `period` apart. Ticks that come late are skipped, never bunched.
/// `stopTimeout` is how long `stop` waits for a callback that does not return.
std::unique_ptr<DisplayLink> makeTimerDisplayLink(RefreshPeriod period,
                                                  std::chrono::milliseconds stopTimeout = std::chrono::seconds(2));

/// A link that ticks again as soon as the callback has returned, `ticks` times in all, and then calls `finished` once
/// on its own thread. `nominalPeriod` is what it claims to tick at.
std::unique_ptr<DisplayLink> makeFreeRunningDisplayLink(RefreshPeriod nominalPeriod, std::uint64_t ticks,
                                                        std::function<void()> finished);

}  // namespace platform
