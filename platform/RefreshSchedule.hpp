#pragma once

#include "platform/DisplayLink.hpp"

#include <chrono>

namespace platform {

/// The moments at which a display refreshes: the whole multiples of its period, counted from the start of the clock, so
/// that they never drift and links of one rate tick together. A period that is zero or negative counts as 1/100 s.
class RefreshSchedule {
public:
    explicit RefreshSchedule(RefreshPeriod period);

    /// The first refresh later than `now`, rounded up to whole nanoseconds.
    std::chrono::nanoseconds nextAfter(std::chrono::nanoseconds now) const;

private:
    RefreshPeriod _period;
};

}  // namespace platform
