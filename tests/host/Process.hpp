#pragma once

#include <sys/types.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace fake {

/// How a process ended.
struct ProcessEnd {
    std::optional<int> exitStatus;
    std::optional<int> signal;
    std::string standardOutput;
    std::string standardError;
};

/// What becomes of what a process writes until somebody asks for it.
enum class Output {
    /// It waits in pipes, which hold little: for processes that are asked, or end, before they have written much.
    Pipes,
    /// It waits in files, for processes that live as long as a test and may talk all the while. When the test has
    /// failed, it is printed.
    Files
};

/// A child process whose output is collected. Killed when this object goes before the process has ended. One that could
/// not be started fails the test and counts as not running and without an end.
class Process {
public:
    /// Environment entries "NAME=value" are added to the test's own; "NAME" alone is taken out.
    explicit Process(const std::vector<std::string>& command, const std::vector<std::string>& environment = {},
                     Output output = Output::Pipes);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// -1 when it could not be started.
    pid_t identifier() const { return _pid.value_or(-1); }
    /// Does nothing when it is known to have ended: its number may be somebody else's by now.
    void sendSignal(int signal) const;
    bool isRunning();
    /// Whether a file whose path has that in it, a program or a library, is in its memory.
    bool hasLoaded(const std::string& file) const;
    /// Whether a display link's thread asks it for frames.
    bool isDrawing() const;
    /// What it has written so far.
    const std::string& standardOutput();
    /// From here on nobody reads what it writes into pipes.
    void closeOutput();
    /// Waits for the end; nothing when the deadline passes first.
    std::optional<ProcessEnd> waitForEnd(std::chrono::milliseconds deadline = std::chrono::seconds(60));

private:
    void readOutput();
    void printOutput();

    const std::string _name;
    const Output _output;
    std::optional<pid_t> _pid;
    int _standardOutput = -1;
    int _standardError = -1;
    std::optional<int> _status;
    ProcessEnd _end;
};

/// That command, ended when the test that starts it goes in whatever way.
std::vector<std::string> endingWithTest(std::vector<std::string> command);

/// Looks until a process has next to nothing to do for half a second.
bool becomesIdle(pid_t process);

/// Runs the program under test to its end.
ProcessEnd runCirrane(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {});
std::string cirraneProgram();

/// Polls until the condition holds; false when the deadline passes first.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds deadline = std::chrono::seconds(30)) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        struct timespec pause = {0, 5'000'000};
        nanosleep(&pause, nullptr);
    }
    return true;
}

/// The one in the middle, of an odd number of times.
template <typename Duration>
Duration median(std::vector<Duration> times) {
    std::ranges::nth_element(times, times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2));
    return times[times.size() / 2];
}

}  // namespace fake
