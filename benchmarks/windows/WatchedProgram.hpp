#pragma once

#include "benchmarks/windows/WatchedDisplay.hpp"

#include <string>
#include <vector>

namespace bench {

/// A program that shows a picture in a window, and what was measured of it: a value for each time that it ran.
struct WatchedProgram {
    std::string name;
    std::vector<std::string> command;
    bool framesCount = true;                  ///< whether frames are measured, or the start alone
    std::vector<double> startMilliseconds{};  ///< to the first picture
    std::vector<double> framesPerSecond{};    ///< that reached the screen
    std::vector<double> cpuMilliseconds{};    ///< of the whole process, per frame that reached the screen
};

/// Runs the program for some seconds. Throws std::runtime_error when it shows nothing or leaves its window behind.
void measureOnce(WatchedDisplay& display, WatchedProgram& program);

}  // namespace bench
