#include "host/TerminationSignals.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>

namespace {

using host::TerminationSignals;
using namespace std::chrono_literals;

bool isReadable(int descriptor, std::chrono::milliseconds patience) {
    pollfd readable{descriptor, POLLIN, 0};
    int result = -1;
    do {
        result = poll(&readable, 1, static_cast<int>(patience.count()));
    } while (result < 0 && errno == EINTR);
    return result == 1;
}

[[noreturn]] void waitForEver() {
    while (true) {
        pause();
    }
}

class TerminationSignalsTest : public testing::TestWithParam<int> {
protected:
    // Each in a process of its own: they are one per process, and most end it.
    TerminationSignalsTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_P(TerminationSignalsTest, OneThatComesIsToldAndEndsNothingByItself) {
    const auto receive = [] {
        const TerminationSignals signals;
        const bool wasSilent = !signals.received() && !isReadable(signals.fileDescriptor(), 0ms);
        raise(GetParam());
        _exit(wasSilent && isReadable(signals.fileDescriptor(), 10s) && signals.received() == GetParam() ? 0 : 1);
    };
    EXPECT_EXIT(receive(), testing::ExitedWithCode(0), "");
}

TEST_P(TerminationSignalsTest, OneRaisedAgainEndsTheProcessAsItWouldByDefault) {
    const auto end = [] {
        const TerminationSignals signals;
        raise(GetParam());
        TerminationSignals::raiseAgain(*signals.received());
    };
    EXPECT_EXIT(end(), testing::KilledBySignal(GetParam()), "");
}

TEST_P(TerminationSignalsTest, PatienceEndsAProcessWhoseMainThreadIsStuck) {
    const auto beStuck = [] {
        const TerminationSignals signals(20ms);
        raise(GetParam());
        waitForEver();
    };
    EXPECT_EXIT(beStuck(), testing::KilledBySignal(GetParam()), "");
}

TEST_P(TerminationSignalsTest, MoreOfThemDoNotProlongPatience) {
    const auto beStuck = [] {
        const TerminationSignals signals(20ms);
        while (true) {
            raise(GetParam());
        }
    };
    EXPECT_EXIT(beStuck(), testing::KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(TerminationSignals, TerminationSignalsTest, testing::Values(SIGTERM, SIGINT));

}  // namespace
