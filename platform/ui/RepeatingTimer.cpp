#include "platform/ui/RepeatingTimer.hpp"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

namespace platform {
namespace {

constexpr double millisecondsPerSecond = 1000.0;
constexpr double nanosecondsPerMillisecond = 1e6;
/// What a timer of the main loop can wait at most.
constexpr double longestWait = 2e9;  // milliseconds

/// One shot of a Qt timer after the other, so that calls keep to multiples of an interval that is no whole number of
/// milliseconds. The Qt timer is the application's child and holds this object through its connection.
class MainLoopTimer final : public RepeatingTimer, public std::enable_shared_from_this<MainLoopTimer> {
public:
    MainLoopTimer(double interval, Callback callback)
        : _interval(interval),
          _period(interval > 0.0 ? std::max(1.0, interval * millisecondsPerSecond) : 1.0),
          _callback(std::make_shared<const Callback>(std::move(callback))) {}

    void start(QCoreApplication& application) {
        _shots = new QTimer(&application);
        _shots->setSingleShot(true);
        _shots->setTimerType(Qt::PreciseTimer);
        QObject::connect(_shots, &QTimer::timeout, [self = shared_from_this()] { self->fire(); });
        _sinceStart.start();
        waitForNext();
    }

    double timeInterval() const override { return _interval; }

    void invalidate() override {
        _callback.reset();
        if (_shots != nullptr) {
            _shots->stop();
            _shots->deleteLater();
            _shots.clear();
        }
    }

private:
    void fire() {
        // Held while it runs, because it may invalidate this timer.
        if (const auto callback = _callback) {
            (*callback)(*this);
        }
        if (_shots != nullptr) {
            waitForNext();
        }
    }

    void waitForNext() {
        const double now = static_cast<double>(_sinceStart.nsecsElapsed()) / nanosecondsPerMillisecond;
        // Never the same multiple twice, should a shot have come early.
        _multiple = std::max(_multiple + 1.0, std::floor(now / _period) + 1.0);
        const double wait = std::clamp(std::ceil(_multiple * _period - now), 0.0, longestWait);
        _shots->start(static_cast<int>(wait));
    }

    const double _interval;
    const double _period;  // milliseconds
    std::shared_ptr<const Callback> _callback;
    QPointer<QTimer> _shots;
    QElapsedTimer _sinceStart;
    double _multiple = 0.0;
};

class MainLoopScheduler final : public TimerScheduler {
public:
    std::shared_ptr<RepeatingTimer> scheduleTimer(double interval, RepeatingTimer::Callback callback) override {
        QCoreApplication* application = QCoreApplication::instance();
        if (application == nullptr) {
            return nullptr;
        }
        auto timer = std::make_shared<MainLoopTimer>(interval, std::move(callback));
        timer->start(*application);
        return timer;
    }
};

constinit MainLoopScheduler theMainLoopScheduler;
constinit TimerScheduler* schedulerInForce = &theMainLoopScheduler;

}  // namespace

std::shared_ptr<RepeatingTimer> scheduleTimer(double interval, RepeatingTimer::Callback callback) {
    return schedulerInForce->scheduleTimer(interval, std::move(callback));
}

void setTimerScheduler(TimerScheduler* scheduler) {
    schedulerInForce = scheduler != nullptr ? scheduler : &theMainLoopScheduler;
}

}  // namespace platform
