// How long the program takes from SIGTERM to its end, in a window of 1280 x 720 that shows moving clouds.
// Screen saver hosts wait for that end, some of them with their own window frozen. Needs an X display without other
// windows. Usage: termination_benchmark PROGRAM [RUNS]
#include "benchmarks/windows/ChildProcess.hpp"
#include "benchmarks/windows/WatchedDisplay.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds goal{100};
constexpr std::chrono::seconds patience{30};
/// Of 255; clouds have begun to fade in.
constexpr int brightEnough = 20;

/// Milliseconds from the signal to the end of the process; nothing when it did not behave.
std::optional<double> measureOnce(bench::WatchedDisplay& display, const std::string& program) {
    bench::ChildProcess process({program});
    if (!display.waitForPicture(brightEnough, process.started() + patience)) {
        return {};
    }
    const auto start = steady_clock::now();
    const bool endedBySignal = process.terminate();
    const double taken = std::chrono::duration<double, std::milli>(steady_clock::now() - start).count();
    const bool left = display.waitForEnd(steady_clock::now() + patience);
    return endedBySignal && left ? std::optional(taken) : std::nullopt;
}

int measure(const std::string& program, int runs) {
    bench::WatchedDisplay display(1280, 720);
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto taken = measureOnce(display, program);
        if (!taken) {
            std::fprintf(stderr, "run %d did not show clouds and end by SIGTERM\n", i + 1);
            return 1;
        }
        times.push_back(*taken);
    }
    std::sort(times.begin(), times.end());
    std::printf(
        "SIGTERM to end, window 1280x720, %zu runs: median %.1f ms, worst %.1f ms (goal: median at most %lld ms)\n",
        times.size(), times[times.size() / 2], times.back(), static_cast<long long>(goal.count()));
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 2) {
        std::fprintf(stderr, "usage: termination_benchmark PROGRAM [RUNS]\n");
        return 2;
    }
    try {
        return measure(arguments[1], argumentCount > 2 ? std::max(1, std::atoi(arguments[2])) : 50);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "termination_benchmark: %s\n", error.what());
        return 1;
    }
}
