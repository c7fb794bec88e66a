#include "platform/Clock.hpp"

#include <atomic>
#include <ctime>

namespace platform {
namespace {

constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;
/// 2001-01-01 00:00 UTC in seconds since 1970.
constexpr double referenceDate = 978307200.0;

timespec now(clockid_t which) {
    timespec time{};
    clock_gettime(which, &time);
    return time;
}

class SystemClock final : public Clock {
public:
    TimebaseInfo timebase() const override { return {1, 1}; }

    std::uint64_t absoluteTicks() const override {
        const timespec time = now(CLOCK_MONOTONIC);
        return static_cast<std::uint64_t>(time.tv_sec) * nanosecondsPerSecond +
               static_cast<std::uint64_t>(time.tv_nsec);
    }

    std::int64_t calendarSeconds() const override { return now(CLOCK_REALTIME).tv_sec; }

    double secondsSinceReferenceDate() const override {
        const timespec time = now(CLOCK_REALTIME);
        return static_cast<double>(time.tv_sec) - referenceDate + static_cast<double>(time.tv_nsec) * 1e-9;
    }
};

constinit const SystemClock theSystemClock;
constinit std::atomic<const Clock*> clockInForce{&theSystemClock};

}  // namespace

const Clock& systemClock() {
    return theSystemClock;
}

const Clock& clock() {
    return *clockInForce.load(std::memory_order_acquire);
}

void setClock(const Clock* clock) {
    clockInForce.store(clock != nullptr ? clock : &theSystemClock, std::memory_order_release);
}

}  // namespace platform
