#pragma once

#include "platform/ui/RepeatingTimer.hpp"

#include <cstddef>
#include <memory>
#include <vector>

namespace fake {

/// A scheduler whose timers stand until the test lets them tick; in force for the life of this object. Main thread.
class Timers final : public platform::TimerScheduler {
public:
    Timers();
    ~Timers() override;
    Timers(const Timers&) = delete;
    Timers& operator=(const Timers&) = delete;

    /// Calls every running timer that often, in turns.
    void tick(int times = 1);
    std::size_t runningTimers() const { return _running.size(); }
    /// Of the running timers, in seconds.
    std::vector<double> intervals() const;
    /// Running timers are forgotten as they are when an application ends, and there are no more from now on.
    void end();

    std::shared_ptr<platform::RepeatingTimer> scheduleTimer(double interval,
                                                            platform::RepeatingTimer::Callback callback) override;

private:
    class Timer;

    std::vector<std::shared_ptr<Timer>> _running;
    bool _hasEnded = false;
};

}  // namespace fake
