// From the start of a process to its first completed frame, and its peak of resident memory, for a loop written by hand
// and for the framework; and the same for the whole program, which tells of its first frame only by ending after it.
// A program of its own, because a process's peak counts the one that it was started from.
// Usage: startup_benchmark FRAME_LOOP_BENCHMARK CIRRANE DEVICE [RUNS]

#include "benchmarks/Statistics.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace {

using std::chrono::steady_clock;

struct Started {
    double milliseconds = 0.0;  ///< to the first byte on the program's standard output, or to its end
    double peakMegabytes = 0.0;
};

/// Runs the command to its end. Nothing when it fails.
std::optional<Started> run(std::vector<std::string> command, char** environment) {
    std::vector<char*> arguments;
    for (std::string& word : command) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return {};
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    pid_t process = 0;
    const auto start = steady_clock::now();
    const bool spawned = posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environment) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    char byte = 0;
    const bool wasTold = spawned && read(ends[0], &byte, 1) == 1;
    const auto told = steady_clock::now();
    int status = 0;
    rusage usage{};
    const bool ended = spawned && wait4(process, &status, 0, &usage) == process;
    const auto end = wasTold ? told : steady_clock::now();
    close(ends[0]);
    if (!ended || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        return {};
    }
    return Started{std::chrono::duration<double, std::milli>(end - start).count(),
                   static_cast<double>(usage.ru_maxrss) / 1024.0};
}

struct Row {
    std::string name;
    std::vector<std::string> command;
    std::vector<double> milliseconds;
    std::vector<double> megabytes;
};

bool measure(const std::string& size, std::vector<Row> rows, int runs, char** environment) {
    for (int round = 0; round <= runs; ++round) {  // the first one warms the caches
        for (Row& row : rows) {
            const auto started = run(row.command, environment);
            if (!started) {
                std::fprintf(stderr, "startup_benchmark: %s failed\n", row.command.front().c_str());
                return false;
            }
            if (round > 0) {
                row.milliseconds.push_back(started->milliseconds);
                row.megabytes.push_back(started->peakMegabytes);
            }
        }
    }
    const double bareTime = bench::median(rows.front().milliseconds);
    const double bareMemory = bench::median(rows.front().megabytes);
    for (const Row& row : rows) {
        std::printf("| %s, %s | %.0f | %.2f | %.0f | %.2f |\n", size.c_str(), row.name.c_str(),
                    bench::median(row.milliseconds), bench::median(row.milliseconds) / bareTime,
                    bench::median(row.megabytes), bench::median(row.megabytes) / bareMemory);
    }
    return true;
}

}  // namespace

int main(int argumentCount, char** arguments, char** environment) {
    if (argumentCount < 4) {
        std::fprintf(stderr, "usage: startup_benchmark FRAME_LOOP_BENCHMARK CIRRANE DEVICE [RUNS]\n");
        return 2;
    }
    const std::string loops = arguments[1];
    const std::string program = arguments[2];
    const std::string device = arguments[3];  // that the program chooses by itself
    const int runs = argumentCount > 4 ? std::max(1, std::atoi(arguments[4])) : 11;
    std::printf("Start, and peak of resident memory (of the loops after 30 frames); medians of %d runs by turns:\n\n",
                runs);
    std::printf("| | ms | ratio | MiB resident at most | ratio |\n|---|---|---|---|---|\n");
    for (const std::string size : {"1920x1080", "640x480"}) {
        const std::vector<Row> rows{
            {"bare loop, to the first frame", {loops, "--loop", "bare", size, "30", device}, {}, {}},
            {"framework, to the first frame", {loops, "--loop", "framework", size, "30"}, {}, {}},
            {"program, one frame and to its end", {program, "--headless", "--size", size, "--frames", "1"}, {}, {}},
        };
        if (!measure(size, rows, runs, environment)) {
            return 1;
        }
    }
    return 0;
}
