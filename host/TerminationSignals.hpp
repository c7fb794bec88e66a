#pragma once

#include <optional>

namespace host {

/// Turns SIGTERM and SIGINT into something to wait for, so that the program can stop cleanly before it dies of them.
/// One per process, made before other threads start; main thread.
class TerminationSignals {
public:
    TerminationSignals();
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
