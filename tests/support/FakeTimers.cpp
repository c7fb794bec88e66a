#include "tests/support/FakeTimers.hpp"

#include <algorithm>
#include <utility>

namespace fake {

class Timers::Timer final : public platform::RepeatingTimer, public std::enable_shared_from_this<Timer> {
public:
    Timer(Timers& timers, double interval, Callback callback)
        : _timers(timers), _interval(interval), _callback(std::make_shared<const Callback>(std::move(callback))) {}

    double timeInterval() const override { return _interval; }

    void invalidate() override {
        if (_callback != nullptr) {
            const auto self = shared_from_this();
            std::erase(_timers._running, self);
            _callback.reset();
        }
    }

    void fire() {
        if (const auto callback = _callback) {
            (*callback)(*this);
        }
    }

private:
    Timers& _timers;
    const double _interval;
    std::shared_ptr<const Callback> _callback;
};

Timers::Timers() {
    platform::setTimerScheduler(this);
}

Timers::~Timers() {
    end();
    platform::setTimerScheduler(nullptr);
}

void Timers::tick(int times) {
    for (int i = 0; i < times; ++i) {
        const auto running = _running;
        for (const auto& timer : running) {
            timer->fire();
        }
    }
}

std::vector<double> Timers::intervals() const {
    std::vector<double> intervals;
    for (const auto& timer : _running) {
        intervals.push_back(timer->timeInterval());
    }
    return intervals;
}

void Timers::end() {
    _hasEnded = true;
    while (!_running.empty()) {
        _running.back()->invalidate();
    }
}

std::shared_ptr<platform::RepeatingTimer> Timers::scheduleTimer(double interval,
                                                                platform::RepeatingTimer::Callback callback) {
    if (_hasEnded) {
        return nullptr;
    }
    return _running.emplace_back(std::make_shared<Timer>(*this, interval, std::move(callback)));
}

}  // namespace fake
