#pragma once

#include "platform/Clock.hpp"

#include <atomic>
#include <cstdint>

namespace fake {

/// A clock that stands until the test moves it; in force for the life of this object. Its ticks are nanoseconds and
/// start where the real clock's are, so that zero points taken earlier in the process stay in the past.
class Clock final : public platform::Clock {
public:
    Clock();
    ~Clock() override;

    void advance(double seconds);
    void setCalendarSeconds(std::int64_t seconds) { _calendarSeconds = seconds; }
    void setSecondsSinceReferenceDate(double seconds) { _secondsSinceReferenceDate = seconds; }

    platform::TimebaseInfo timebase() const override { return {1, 1}; }
    std::uint64_t absoluteTicks() const override { return _ticks; }
    std::int64_t calendarSeconds() const override { return _calendarSeconds; }
    double secondsSinceReferenceDate() const override { return _secondsSinceReferenceDate; }

private:
    std::atomic<std::uint64_t> _ticks;
    std::atomic<std::int64_t> _calendarSeconds{1700000000};
    std::atomic<double> _secondsSinceReferenceDate{700000000.0};
};

}  // namespace fake
