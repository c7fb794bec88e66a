#pragma once

#include <cstdint>

namespace platform {

/// How long a tick is: numerator / denominator nanoseconds.
struct TimebaseInfo {
    std::uint32_t numerator = 1;
    std::uint32_t denominator = 1;
};

/// The system's clocks. Any thread.
class Clock {
public:
    virtual ~Clock() = default;
    virtual TimebaseInfo timebase() const = 0;
    /// Monotonic ticks since an unspecified start.
    virtual std::uint64_t absoluteTicks() const = 0;
    /// Whole seconds since 1970-01-01 00:00 UTC.
    virtual std::int64_t calendarSeconds() const = 0;
    /// Seconds since 2001-01-01 00:00 UTC.
    virtual double secondsSinceReferenceDate() const = 0;
};

/// The real clocks.
const Clock& systemClock();

/// The clock in force. Lock-free.
const Clock& clock();

/// Puts another clock in force, which must outlive its use; null restores the real ones.
void setClock(const Clock* clock);

}  // namespace platform
