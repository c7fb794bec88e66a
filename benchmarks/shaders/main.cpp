// How fast shader libraries draw the picture, off the screen, by turns in one process: both passes and each alone.
// Usage: shader_benchmark [--size WIDTHxHEIGHT] [--rounds N] [NAME=]LIBRARY…
// The first library is the yardstick.
#include "benchmarks/Statistics.hpp"
#include "benchmarks/frameloop/ChosenDevice.hpp"
#include "benchmarks/shaders/LibraryDrawing.hpp"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <exception>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// How long a library draws before it is the next one's turn, and the fewest frames that have a median.
constexpr double millisecondsPerTurn = 400.0;
constexpr std::size_t fewestFrames = 12;

constexpr const char* goal = "Goal at 1920x1080 on a software driver: the last one's ratio at most 0.60.";

struct Measured {
    std::vector<double> times{};  ///< milliseconds a frame, one value a round
    std::vector<double> cpu{};
    void add(const bench::FrameTimes& frame) {
        times.push_back(frame.passing);
        cpu.push_back(frame.cpu);
    }
};

struct Library {
    std::string name;
    std::string file;
    Measured both{};
    Measured color{};
    Measured light{};
};

struct Arguments {
    bench::Size size{1920, 1080};
    std::size_t rounds = 9;
    std::vector<Library> libraries;
};

Library parseLibrary(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals != std::string::npos) {
        return {text.substr(0, equals), text.substr(equals + 1)};
    }
    return {std::filesystem::path(text).stem().string(), text};
}

Arguments parse(const std::vector<std::string>& words) {
    Arguments arguments;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word.starts_with("--") && i + 1 == words.size()) {
            throw std::invalid_argument(word + " needs a value");
        }
        if (word == "--size") {
            if (std::sscanf(words[++i].c_str(), "%ux%u", &arguments.size.width, &arguments.size.height) != 2) {
                throw std::invalid_argument("a size looks like 1920x1080");
            }
        } else if (word == "--rounds") {
            arguments.rounds = std::max(1UL, std::stoul(words[++i]));
        } else {
            arguments.libraries.push_back(parseLibrary(word));
        }
    }
    if (arguments.libraries.empty()) {
        throw std::invalid_argument("usage: shader_benchmark [--size WIDTHxHEIGHT] [--rounds N] [NAME=]LIBRARY...");
    }
    return arguments;
}

void measureOnce(Library& library, bench::LibraryDrawing& drawing) {
    using bench::BarePasses;
    const auto trial = drawing.draw(fewestFrames, BarePasses::Both);
    const auto frames = std::max(fewestFrames, static_cast<std::size_t>(millisecondsPerTurn / trial.passing));
    library.both.add(drawing.draw(frames, BarePasses::Both));
    library.color.add(drawing.draw(frames, BarePasses::Color));
    library.light.add(drawing.draw(frames, BarePasses::Light));
}

/// A round has a device, memory and compiled shaders of its own: now and then the software driver takes three times as
/// long for one library's colour pass, from its first frame to its last, and that must not decide a whole run.
void measureRound(std::vector<Library>& libraries, const std::string& deviceName, bench::Size size, std::size_t round) {
    const bench::BareDevice device(deviceName, bench::BareUseOfWindows::None);
    for (std::size_t turn = 0; turn < libraries.size(); ++turn) {  // who goes first changes from round to round
        Library& library = libraries[(round + turn) % libraries.size()];
        bench::LibraryDrawing drawing(device, library.file, size);
        measureOnce(library, drawing);
    }
}

void print(const std::vector<Library>& libraries) {
    const Library& first = libraries.front();
    std::printf(
        "| | ms a frame | ratio | colour pass, ms | ratio | light pass, ms | ratio | CPU, ms a frame | ratio |\n");
    std::printf("|---|---|---|---|---|---|---|---|---|\n");
    const auto cells = [](const std::vector<double>& values, const std::vector<double>& yardsticks) {
        std::printf(" %.2f | %.3f |", bench::median(values), bench::medianRatio(values, yardsticks));
    };
    for (const Library& library : libraries) {
        std::printf("| %s |", library.name.c_str());
        cells(library.both.times, first.both.times);
        cells(library.color.times, first.color.times);
        cells(library.light.times, first.light.times);
        cells(library.both.cpu, first.both.cpu);
        std::printf("\n");
    }
    std::printf("\nRatios of the rounds, ms a frame and CPU, lowest to highest:");
    for (const Library& library : std::span(libraries).subspan(1)) {
        const auto [lowest, highest] = bench::rangeOfRatios(library.both.times, first.both.times);
        const auto [lowestCpu, highestCpu] = bench::rangeOfRatios(library.both.cpu, first.both.cpu);
        std::printf(" %s %.2f to %.2f, %.2f to %.2f;", library.name.c_str(), lowest, highest, lowestCpu, highestCpu);
    }
    std::printf("\n%s\n", goal);
}

int measure(Arguments arguments) {
    const std::string deviceName = bench::chosenDeviceName();
    for (std::size_t round = 0; round < arguments.rounds; ++round) {
        measureRound(arguments.libraries, deviceName, arguments.size, round);
    }
    std::printf("Device: %s; %ux%u; %zu rounds by turns; medians\n\n", deviceName.c_str(), arguments.size.width,
                arguments.size.height, arguments.rounds);
    print(arguments.libraries);
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        return measure(parse({arguments + 1, arguments + argumentCount}));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "shader_benchmark: %s\n", error.what());
        return 1;
    }
}
