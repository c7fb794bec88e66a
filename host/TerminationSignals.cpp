#include "host/TerminationSignals.hpp"

#include <fcntl.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>

namespace host {
namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT};

// What the signal handlers touch.
std::atomic<int> receivedSignal{0};
std::array<int, 2> wakePipe{-1, -1};
std::optional<timer_t> endTimer;
itimerspec patienceLeft{};

void handleSignal(int signalNumber) {
    const int savedErrno = errno;
    if (receivedSignal.exchange(signalNumber) == 0 && endTimer) {
        timer_settime(*endTimer, 0, &patienceLeft, nullptr);
    }
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(wakePipe[1], &byte, 1);
    errno = savedErrno;
}

void runOutOfPatience(int) {
    TerminationSignals::raiseAgain(receivedSignal);
}

void setHandler(int signalNumber, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}

void makeEndTimer(std::chrono::milliseconds patience) {
    setHandler(SIGALRM, runOutOfPatience);
    timer_t timer{};
    if (timer_create(CLOCK_MONOTONIC, nullptr, &timer) == 0) {  // by default it sends SIGALRM
        endTimer = timer;
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience);
        patienceLeft.it_value.tv_sec = seconds.count();
        patienceLeft.it_value.tv_nsec = std::chrono::nanoseconds(patience - seconds).count();
    }
}

}  // namespace

TerminationSignals::TerminationSignals(std::optional<std::chrono::milliseconds> patience) {
    if (pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        wakePipe = {-1, -1};  // the signals then end the process at once, as they would by default
        return;
    }
    if (patience) {
        makeEndTimer(*patience);
    }
    for (const int signalNumber : handledSignals) {
        setHandler(signalNumber, handleSignal);
    }
}

TerminationSignals::~TerminationSignals() {
    for (const int signalNumber : handledSignals) {
        setHandler(signalNumber, SIG_DFL);
    }
    if (endTimer) {
        timer_delete(*endTimer);
        endTimer.reset();
        setHandler(SIGALRM, SIG_DFL);
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
    sigset_t itself;
    sigemptyset(&itself);
    sigaddset(&itself, signalNumber);
    pthread_sigmask(SIG_UNBLOCK, &itself, nullptr);  // blocked where its own handler was interrupted
    raise(signalNumber);
    _exit(128 + signalNumber);  // not reached
}

}  // namespace host
