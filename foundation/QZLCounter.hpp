#pragma once

#include <cstdint>
#include <mutex>

/// Averages events over fixed periods. A period ends with the first event that comes after it has run its length; the
/// averages describe the last completed period. Any thread; each operation holds the counter's own lock.
class QZLCounter {
public:
    /// `period` in seconds.
    explicit QZLCounter(double period);

    void reset();
    void recordEvent(std::uint64_t count);
    /// Events per second; 0 before the first period has closed.
    double currentAverageRate() const;
    /// Mean count per event; 0 before the first period has closed.
    double currentAverageCount() const;

private:
    mutable std::recursive_mutex _mutex;
    const double _period;
    double _currentPeriodStart = 0.0;  // 0.0: no period has begun
    std::uint64_t _currentNumberOfEvents = 0;
    std::uint64_t _currentSumOfCount = 0;
    double _completedPeriod = 0.0;
    std::uint64_t _completedNumberOfEvents = 0;
    std::uint64_t _completedSumOfCount = 0;
};
