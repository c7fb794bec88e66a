#pragma once

#include <cstdint>

/// Monotonic nanoseconds since the first call of either function in the process. Any thread; lock-free after the first.
std::uint64_t QZLPrecisionTimeNanoseconds();

/// The same in seconds.
double QZLPrecisionTimeSeconds();
