#pragma once

#include <functional>
#include <memory>

namespace platform {

/// Calls back again and again, never two calls at once, until it is invalidated. Until then it holds its callback, and
/// the main loop holds it. Main thread.
class RepeatingTimer {
public:
    using Callback = std::function<void(RepeatingTimer& timer)>;

    RepeatingTimer(const RepeatingTimer&) = delete;
    RepeatingTimer& operator=(const RepeatingTimer&) = delete;
    virtual ~RepeatingTimer() = default;

    /// The nominal time between two calls, in seconds: what was asked for, not what has passed.
    virtual double timeInterval() const = 0;
    /// Ends the calls and lets go of the callback; from within the callback, when that returns. Repeatable.
    virtual void invalidate() = 0;

protected:
    RepeatingTimer() = default;
};

/// Makes timers that run. Main thread.
class TimerScheduler {
public:
    virtual ~TimerScheduler() = default;
    /// Null when there is no main loop that could hold it.
    virtual std::shared_ptr<RepeatingTimer> scheduleTimer(double interval, RepeatingTimer::Callback callback) = 0;
};

/// A running timer of the scheduler in force, which is the main loop's own unless a test has put another in place:
/// calls come whole intervals after the start, and those that are late by more than an interval are left out. They end
/// with the application object at the latest. `interval` is in seconds; one that is not positive counts as a
/// millisecond.
std::shared_ptr<RepeatingTimer> scheduleTimer(double interval, RepeatingTimer::Callback callback);

/// Puts another scheduler in force, which must outlive its use; null restores the main loop's.
void setTimerScheduler(TimerScheduler* scheduler);

}  // namespace platform
