#include "foundation/QZLPrecisionTime.hpp"

QZLTickConversion::QZLTickConversion(platform::TimebaseInfo timebase, std::uint64_t baseTicks)
    : _baseTicks(baseTicks),
      _nanosecondsPerTick(static_cast<double>(timebase.numerator) / static_cast<double>(timebase.denominator)) {}

std::uint64_t QZLTickConversion::nanoseconds(std::uint64_t absoluteTicks) const {
    const std::uint64_t ticks = absoluteTicks - _baseTicks;
    if (_nanosecondsPerTick == 1.0) {
        return ticks;  // a detour over double would round them
    }
    return static_cast<std::uint64_t>(static_cast<double>(ticks) * _nanosecondsPerTick);
}

std::uint64_t QZLPrecisionTimeNanoseconds() {
    static const QZLTickConversion conversion(platform::clock().timebase(), platform::clock().absoluteTicks());
    return conversion.nanoseconds(platform::clock().absoluteTicks());
}

double QZLPrecisionTimeSeconds() {
    return static_cast<double>(QZLPrecisionTimeNanoseconds()) * 1e-9;
}
