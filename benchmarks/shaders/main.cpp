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
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

/// How long a library draws before it is the next one's turn, and the fewest frames that have a median.
constexpr double millisecondsPerTurn = 400.0;
constexpr double fewestFrames = 12.0;

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
    std::unique_ptr<bench::LibraryDrawing> drawing{};
    Measured both{};
    Measured color{};
    Measured light{};
};

struct Arguments {
    bench::Size size{1920, 1080};
    int rounds = 9;
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
            arguments.rounds = std::max(1, std::stoi(words[++i]));
        } else {
            arguments.libraries.push_back(parseLibrary(word));
        }
    }
    if (arguments.libraries.empty()) {
        throw std::invalid_argument("usage: shader_benchmark [--size WIDTHxHEIGHT] [--rounds N] [NAME=]LIBRARY...");
    }
    return arguments;
}

void measureOnce(Library& library, std::size_t frames) {
    using bench::BarePasses;
    library.both.add(library.drawing->draw(frames, BarePasses::Both));
    library.color.add(library.drawing->draw(frames, BarePasses::Color));
    library.light.add(library.drawing->draw(frames, BarePasses::Light));
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
    std::printf("\n%s\n", goal);
}

int measure(Arguments arguments) {
    const std::string deviceName = bench::chosenDeviceName();
    const bench::BareDevice device(deviceName, bench::BareUseOfWindows::None);
    std::vector<Library> libraries = std::move(arguments.libraries);
    for (Library& library : libraries) {
        library.drawing = std::make_unique<bench::LibraryDrawing>(device, library.file, arguments.size);
    }
    const auto trial = libraries.front().drawing->draw(static_cast<std::size_t>(fewestFrames), bench::BarePasses::Both);
    const auto frames = static_cast<std::size_t>(std::max(fewestFrames, millisecondsPerTurn / trial.passing));
    for (int round = 0; round < arguments.rounds; ++round) {
        for (std::size_t turn = 0; turn < libraries.size(); ++turn) {  // who goes first changes from round to round
            measureOnce(libraries[(static_cast<std::size_t>(round) + turn) % libraries.size()], frames);
        }
    }
    std::printf("Device: %s; %ux%u; %d rounds by turns, %zu frames a turn; medians\n\n", deviceName.c_str(),
                arguments.size.width, arguments.size.height, arguments.rounds, frames);
    print(libraries);
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
