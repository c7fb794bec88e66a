#pragma once

#include <chrono>
#include <optional>

namespace host {

/// Turns SIGTERM and SIGINT into something to wait for, so that the program can stop cleanly before it dies of them.
/// One per process, made before other threads start; main thread.
class TerminationSignals {
public:
    /// With a patience the signal ends the process that long after it came, whatever the main thread is waiting for: a
    /// display server that stands still must not hold up who waits for the end.
    explicit TerminationSignals(std::optional<std::chrono::milliseconds> patience = {});
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Becomes readable when a signal has come; -1 when the system gave none.
    int fileDescriptor() const;

    /// The signal that came, if one did.
    std::optional<int> received() const;

    /// Lets the signal do what it does by default, which ends the process.
    [[noreturn]] static void raiseAgain(int signalNumber);
};

}  // namespace host
