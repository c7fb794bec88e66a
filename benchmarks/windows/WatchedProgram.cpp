#include "benchmarks/windows/WatchedProgram.hpp"

#include "benchmarks/windows/ChildProcess.hpp"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace bench {
namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;

/// Clouds fade in from black within a second: from any of it on there is a picture.
constexpr int nearlyBlack = 2;
constexpr seconds patience{30};
constexpr seconds warmUp{2};
constexpr seconds measuring{4};

void measureFrames(WatchedDisplay& display, const ChildProcess& process, WatchedProgram& program) {
    std::this_thread::sleep_for(warmUp);
    display.takeFrames();
    const auto start = steady_clock::now();
    const double cpuBefore = process.cpuSeconds();
    std::this_thread::sleep_for(measuring);
    const double frames = display.takeFrames();
    const double cpu = process.cpuSeconds() - cpuBefore;
    const std::chrono::duration<double> taken = steady_clock::now() - start;
    if (frames < 1.0 || cpu <= 0.0) {
        throw std::runtime_error(program.name + " presents no frames");
    }
    program.framesPerSecond.push_back(frames / taken.count());
    program.cpuMilliseconds.push_back(cpu * 1e3 / frames);
}

}  // namespace

void measureOnce(WatchedDisplay& display, WatchedProgram& program) {
    display.takeFrames();
    ChildProcess process(program.command);
    const auto shown = display.waitForPicture(nearlyBlack, process.started() + patience);
    if (!shown) {
        throw std::runtime_error(program.name + " shows nothing");
    }
    program.startMilliseconds.push_back(std::chrono::duration<double, std::milli>(*shown - process.started()).count());
    if (program.framesCount) {
        measureFrames(display, process, program);
    }
    process.terminate();
    if (!display.waitForEnd(steady_clock::now() + patience)) {
        throw std::runtime_error(program.name + " leaves its window behind");
    }
}

}  // namespace bench
