// What the program costs in a window of 1280 x 720 beside a bare loop that shows the same clouds at the same pace: CPU
// time of the whole process per presented frame, and the time from its start to its first frame, that also beside
// another GL screen saver. Seen from outside, one program at a time, by turns, on an X display without other windows.
// Usage: window_benchmark FRAME_LOOP_BENCHMARK CIRRANE DEVICE GL_SAVER [ROUNDS]
#include "benchmarks/windows/ChildProcess.hpp"
#include "benchmarks/windows/WatchedDisplay.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;
using std::chrono::steady_clock;

/// Clouds fade in from black within a second: from any of it on there is a picture.
constexpr int nearlyBlack = 2;
constexpr seconds patience{30};
constexpr seconds warmUp{2};
constexpr seconds measuring{4};

struct Row {
    std::string name;
    std::vector<std::string> command;
    bool drawsClouds;
    std::vector<double> startMilliseconds{};
    std::vector<double> framesPerSecond{};
    std::vector<double> cpuMilliseconds{};  ///< of the whole process, per presented frame
};

/// A home for settings that ask for the diagnostics strip; gone with the object.
class StripSettings {
public:
    StripSettings() {
        std::string name = (fs::temp_directory_path() / "cirrane-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("cannot make a folder in " + fs::temp_directory_path().string());
        }
        _directory = name;
        std::ofstream(_directory / "org.example.cirrane.conf") << "[General]\nDiagnostics=1\n";
    }
    StripSettings(const StripSettings&) = delete;
    StripSettings& operator=(const StripSettings&) = delete;
    ~StripSettings() {
        std::error_code ignored;
        fs::remove_all(_directory, ignored);
    }

    const fs::path& directory() const { return _directory; }

private:
    fs::path _directory;
};

void measureFrames(bench::WatchedDisplay& display, const bench::ChildProcess& process, Row& row) {
    std::this_thread::sleep_for(warmUp);
    display.takeFrames();
    const auto start = steady_clock::now();
    const double cpuBefore = process.cpuSeconds();
    std::this_thread::sleep_for(measuring);
    const double frames = display.takeFrames();
    const double cpu = process.cpuSeconds() - cpuBefore;
    const std::chrono::duration<double> taken = steady_clock::now() - start;
    if (frames < 1.0 || cpu <= 0.0) {
        throw std::runtime_error(row.name + " presents no frames");
    }
    row.framesPerSecond.push_back(frames / taken.count());
    row.cpuMilliseconds.push_back(cpu * 1e3 / frames);
}

void measureOnce(bench::WatchedDisplay& display, Row& row) {
    display.takeFrames();
    bench::ChildProcess process(row.command);
    const auto shown = display.waitForPicture(nearlyBlack, process.started() + patience);
    if (!shown) {
        throw std::runtime_error(row.name + " shows nothing");
    }
    row.startMilliseconds.push_back(std::chrono::duration<double, std::milli>(*shown - process.started()).count());
    if (row.drawsClouds) {
        measureFrames(display, process, row);
    }
    process.terminate();
    if (!display.waitForEnd(steady_clock::now() + patience)) {
        throw std::runtime_error(row.name + " leaves its window behind");
    }
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The median of the rounds' ratios.
double ratio(const std::vector<double>& values, const std::vector<double>& yardsticks) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < values.size(); ++i) {
        ratios.push_back(values[i] / yardsticks[i]);
    }
    return median(std::move(ratios));
}

void print(const std::vector<Row>& rows) {
    const Row& bare = rows.front();
    std::printf("| | CPU of the process, ms a frame | ratio | frames a second | ms to the first frame | ratio |\n");
    std::printf("|---|---|---|---|---|---|\n");
    for (const Row& row : rows) {
        std::printf("| %s | ", row.name.c_str());
        if (row.drawsClouds) {
            std::printf("%.2f | %.3f | %.1f", median(row.cpuMilliseconds),
                        ratio(row.cpuMilliseconds, bare.cpuMilliseconds), median(row.framesPerSecond));
        } else {
            std::printf("| |");
        }
        std::printf(" | %.0f | %.2f |\n", median(row.startMilliseconds),
                    ratio(row.startMilliseconds, bare.startMilliseconds));
    }
}

int measure(const std::vector<std::string>& arguments) {
    const std::string& program = arguments[1];
    const std::string& saver = arguments[3];
    const int rounds = arguments.size() > 4 ? std::max(1, std::atoi(arguments[4].c_str())) : 5;
    const StripSettings strip;
    const std::string stripHome = "XDG_CONFIG_HOME=" + strip.directory().string();
    std::vector<Row> rows{
        {"bare loop", {arguments[0], "--window", "bare", "1280x720", arguments[2]}, true},
        {"program", {program}, true},
        {"program with its strip", {"/usr/bin/env", stripHome, program}, true},
        {"XScreenSaver's " + fs::path(saver).filename().string(),
         {saver, "-window", "-geometry", "1280x720+0+0"},
         false},
    };
    bench::WatchedDisplay display(1280, 720);
    for (int round = 0; round < rounds; ++round) {
        for (Row& row : rows) {
            measureOnce(display, row);
        }
    }
    std::printf("In a window of 1280x720, %d rounds by turns, medians:\n\n", rounds);
    print(rows);
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 5) {
        std::fprintf(stderr, "usage: window_benchmark FRAME_LOOP_BENCHMARK CIRRANE DEVICE GL_SAVER [ROUNDS]\n");
        return 2;
    }
    try {
        return measure({arguments + 1, arguments + argumentCount});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "window_benchmark: %s\n", error.what());
        return 1;
    }
}
