#include "foundation/QZLCounter.hpp"

#include "foundation/QZLPrecisionTime.hpp"

QZLCounter::QZLCounter(double period) : _period(period) {}

void QZLCounter::reset() {
    const std::lock_guard lock(_mutex);
    _currentPeriodStart = 0.0;
    _currentNumberOfEvents = 0;
    _currentSumOfCount = 0;
    _completedPeriod = 0.0;
    _completedNumberOfEvents = 0;
    _completedSumOfCount = 0;
}

void QZLCounter::recordEvent(std::uint64_t count) {
    const std::lock_guard lock(_mutex);
    const double now = QZLPrecisionTimeSeconds();
    if (_currentPeriodStart != 0.0 && now - _currentPeriodStart < _period) {
        _currentNumberOfEvents += 1;
        _currentSumOfCount += count;
        return;
    }
    if (_currentPeriodStart > 0.0) {
        _completedPeriod = now - _currentPeriodStart;
        _completedNumberOfEvents = _currentNumberOfEvents;
        _completedSumOfCount = _currentSumOfCount;
    }
    _currentPeriodStart = now;
    _currentNumberOfEvents = 1;
    _currentSumOfCount = count;
}

double QZLCounter::currentAverageRate() const {
    const std::lock_guard lock(_mutex);
    return _completedPeriod > 0.0 ? static_cast<double>(_completedNumberOfEvents) / _completedPeriod : 0.0;
}

double QZLCounter::currentAverageCount() const {
    const std::lock_guard lock(_mutex);
    return _completedNumberOfEvents != 0
               ? static_cast<double>(_completedSumOfCount) / static_cast<double>(_completedNumberOfEvents)
               : 0.0;
}
