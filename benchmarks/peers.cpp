// How many frames the program brings to the screen, and at what CPU time, beside other screen savers that fill it: the
// same machine, the same sizes, one program at a time, by turns, on an X display of 1920 x 1080 without other windows.
// The others are told not to wait between frames; the program keeps to the display's rate, as always.
// Usage: peers_benchmark CIRRANE ROUNDS GL_SAVER…
#include "benchmarks/Statistics.hpp"
#include "benchmarks/windows/WatchedProgram.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using Programs = std::vector<bench::WatchedProgram>;

void addPeers(Programs& programs, const std::vector<std::string>& savers, const std::string& geometry) {
    for (const std::string& saver : savers) {
        programs.push_back({std::filesystem::path(saver).filename().string(),
                            {saver, "-window", "-geometry", geometry, "-delay", "0"}});
    }
}

void print(const Programs& programs) {
    const bench::WatchedProgram& ours = programs.front();
    std::printf("| | frames a second | ours to this | CPU of the process, ms a frame | this to ours |\n");
    std::printf("|---|---|---|---|---|\n");
    for (const bench::WatchedProgram& program : programs) {
        std::printf(
            "| %s | %.1f | %.2f | %.2f | %.2f |\n", program.name.c_str(), bench::median(program.framesPerSecond),
            bench::medianRatio(ours.framesPerSecond, program.framesPerSecond), bench::median(program.cpuMilliseconds),
            bench::medianRatio(program.cpuMilliseconds, ours.cpuMilliseconds));
    }
    std::fflush(stdout);
}

void measure(Programs programs, std::uint16_t width, std::uint16_t height, int rounds) {
    bench::WatchedDisplay display(width, height);
    for (int round = 0; round < rounds; ++round) {
        for (bench::WatchedProgram& program : programs) {
            bench::measureOnce(display, program);
        }
    }
    std::printf("%ux%u, %d rounds by turns, medians; above 1 ours is ahead:\n\n", width, height, rounds);
    print(programs);
    std::printf("\n");
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 4) {
        std::fprintf(stderr, "usage: peers_benchmark CIRRANE ROUNDS GL_SAVER...\n");
        return 2;
    }
    const std::string cirrane = arguments[1];
    const int rounds = std::max(1, std::atoi(arguments[2]));
    const std::vector<std::string> savers(arguments + 3, arguments + argumentCount);
    try {
        Programs inWindow{{"Cirrane", {cirrane}}};
        addPeers(inWindow, savers, "1280x720+0+0");
        measure(std::move(inWindow), 1280, 720, rounds);
        Programs onScreen{{"Cirrane", {cirrane, "--fullscreen"}}};
        addPeers(onScreen, savers, "1920x1080+0+0");
        measure(std::move(onScreen), 1920, 1080, rounds);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "peers_benchmark: %s\n", error.what());
        return 1;
    }
    return 0;
}
