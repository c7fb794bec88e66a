#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace bench {

/// A program that runs until it is ended, with this process's environment. What it prints is dropped.
class ChildProcess {
public:
    /// Throws std::runtime_error when it cannot be started.
    explicit ChildProcess(std::vector<std::string> command);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Ends it, if nobody has.
    ~ChildProcess();

    std::chrono::steady_clock::time_point started() const { return _started; }
    /// CPU time of all its threads, in seconds; 0 when it has ended by itself.
    double cpuSeconds() const;
    /// Sends SIGTERM and waits for the end. False when that was not how it ended.
    bool terminate();

private:
    std::chrono::steady_clock::time_point _started;
    pid_t _process = 0;
};

}  // namespace bench
