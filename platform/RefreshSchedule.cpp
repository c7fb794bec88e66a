#include "platform/RefreshSchedule.hpp"

#include <algorithm>

namespace platform {
namespace {

__extension__ using Wide = __int128;

constexpr Wide nanosecondsPerSecond = 1'000'000'000;

}  // namespace

RefreshSchedule::RefreshSchedule(RefreshPeriod period) : _period(period) {
    if (period.timeValue <= 0 || period.timeScale <= 0) {
        _period = {1, 100};
    }
}

std::chrono::nanoseconds RefreshSchedule::nextAfter(std::chrono::nanoseconds now) const {
    // Counted in ticks of the exact fraction, value * 10^9 / scale nanoseconds each. Rounding the result up makes a
    // refresh belong to its own period, so that the moment itself yields the one after it.
    const Wide period = Wide(_period.timeValue) * nanosecondsPerSecond;
    const Wide count = Wide(now.count()) * _period.timeScale / period + 1;
    const Wide next = (count * period + _period.timeScale - 1) / _period.timeScale;
    return std::chrono::nanoseconds(
        static_cast<std::int64_t>(std::min<Wide>(next, std::chrono::nanoseconds::max().count())));
}

}  // namespace platform
