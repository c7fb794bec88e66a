#pragma once

#include "platform/Clock.hpp"

#include <cstdint>

/// Monotonic nanoseconds since the first call of either function in the process. Any thread; lock-free after the first.
std::uint64_t QZLPrecisionTimeNanoseconds();

/// The same in seconds.
double QZLPrecisionTimeSeconds();

/// Turns a clock's ticks into nanoseconds since its base. Immutable; any thread.
class QZLTickConversion {
public:
    QZLTickConversion(platform::TimebaseInfo timebase, std::uint64_t baseTicks);

    /// Whole nanoseconds, rounded down; the ticks themselves where a tick is one nanosecond.
    std::uint64_t nanoseconds(std::uint64_t absoluteTicks) const;

private:
    std::uint64_t _baseTicks;
    double _nanosecondsPerTick;
};
