// What the program costs in a window of 1280 x 720 beside a bare loop that shows the same clouds at the same pace: CPU
// time of the whole process per presented frame, and the time from its start to its first frame, that also beside
// another GL screen saver. Seen from outside, one program at a time, by turns, on an X display without other windows.
// Usage: window_benchmark FRAME_LOOP_BENCHMARK CIRRANE DEVICE GL_SAVER [ROUNDS]
#include "benchmarks/Statistics.hpp"
#include "benchmarks/windows/WatchedProgram.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
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

void print(const std::vector<bench::WatchedProgram>& rows) {
    const bench::WatchedProgram& bare = rows.front();
    std::printf("| | CPU of the process, ms a frame | ratio | frames a second | ms to the first frame | ratio |\n");
    std::printf("|---|---|---|---|---|---|\n");
    for (const bench::WatchedProgram& row : rows) {
        std::printf("| %s | ", row.name.c_str());
        if (row.framesCount) {
            std::printf("%.2f | %.3f | %.1f", bench::median(row.cpuMilliseconds),
                        bench::medianRatio(row.cpuMilliseconds, bare.cpuMilliseconds),
                        bench::median(row.framesPerSecond));
        } else {
            std::printf("| |");
        }
        std::printf(" | %.0f | %.2f |\n", bench::median(row.startMilliseconds),
                    bench::medianRatio(row.startMilliseconds, bare.startMilliseconds));
    }
}

int measure(const std::vector<std::string>& arguments) {
    const std::string& program = arguments[1];
    const std::string& saver = arguments[3];
    const int rounds = arguments.size() > 4 ? std::max(1, std::atoi(arguments[4].c_str())) : 5;
    const StripSettings strip;
    const std::string stripHome = "XDG_CONFIG_HOME=" + strip.directory().string();
    std::vector<bench::WatchedProgram> rows{
        {"bare loop", {arguments[0], "--window", "bare", "1280x720", arguments[2]}, true},
        {"program", {program}, true},
        {"program with its strip", {"/usr/bin/env", stripHome, program}, true},
        {"XScreenSaver's " + fs::path(saver).filename().string(),
         {saver, "-window", "-geometry", "1280x720+0+0"},
         false},
    };
    bench::WatchedDisplay display(1280, 720);
    for (int round = 0; round < rounds; ++round) {
        for (bench::WatchedProgram& row : rows) {
            bench::measureOnce(display, row);
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
