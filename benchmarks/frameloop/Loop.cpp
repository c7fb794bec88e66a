#include "benchmarks/frameloop/Loop.hpp"

#include <ctime>

namespace bench {

double threadCpuMicroseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

FrameHooks& frameHooks() {
    static FrameHooks hooks;
    return hooks;
}

}  // namespace bench
