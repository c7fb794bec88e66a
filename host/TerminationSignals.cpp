#include "host/TerminationSignals.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace host {
namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT};

// Written by the signal handler, which may touch nothing else.
std::atomic<int> receivedSignal{0};
std::array<int, 2> wakePipe{-1, -1};

void handleSignal(int signalNumber) {
    const int savedErrno = errno;
    receivedSignal = signalNumber;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(wakePipe[1], &byte, 1);
    errno = savedErrno;
}

void setHandler(int signalNumber, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}

}  // namespace

TerminationSignals::TerminationSignals() {
    if (pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        wakePipe = {-1, -1};  // the signals then end the process at once, as they would by default
        return;
    }
    for (const int signalNumber : handledSignals) {
        setHandler(signalNumber, handleSignal);
    }
}

TerminationSignals::~TerminationSignals() {
    for (const int signalNumber : handledSignals) {
        setHandler(signalNumber, SIG_DFL);
    }
    for (int& end : wakePipe) {
        if (end >= 0) {
            close(end);
            end = -1;
        }
    }
}

int TerminationSignals::fileDescriptor() const {
    return wakePipe[0];
}

std::optional<int> TerminationSignals::received() const {
    const int signalNumber = receivedSignal;
    return signalNumber != 0 ? std::optional(signalNumber) : std::nullopt;
}

void TerminationSignals::raiseAgain(int signalNumber) {
    setHandler(signalNumber, SIG_DFL);
    raise(signalNumber);
    _exit(128 + signalNumber);  // not reached unless the signal is blocked
}

}  // namespace host
