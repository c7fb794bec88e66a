#include "tests/support/FakeClock.hpp"

#include <cmath>

namespace fake {

Clock::Clock() : _ticks(platform::systemClock().absoluteTicks()) {
    platform::setClock(this);
}

Clock::~Clock() {
    platform::setClock(nullptr);
}

void Clock::advance(double seconds) {
    _ticks += static_cast<std::uint64_t>(std::llround(seconds * 1e9));
    _secondsSinceReferenceDate = _secondsSinceReferenceDate + seconds;
}

}  // namespace fake
