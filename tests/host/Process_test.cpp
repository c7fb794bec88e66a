// The tests' own child processes: a fault here must neither hide one of the program nor reach other processes.
#include "tests/host/Process.hpp"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <memory>
#include <string>
#include <vector>

namespace {

/// One that cannot be started.
std::unique_ptr<fake::Process> makeImpossibleProcess() {
    std::unique_ptr<fake::Process> process;
    EXPECT_NONFATAL_FAILURE(process = std::make_unique<fake::Process>(std::vector<std::string>{"/nonexistent/program"}),
                            "/nonexistent/program cannot be started: No such file or directory");
    return process;
}

TEST(Process, TellsHowItEndedAndWhatItWrote) {
    fake::Process process({"/bin/sh", "-c", "echo out; echo err >&2; exit 3"});
    const auto end = process.waitForEnd();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 3);
    EXPECT_EQ(end->signal, std::nullopt);
    EXPECT_EQ(end->standardOutput, "out\n");
    EXPECT_EQ(end->standardError, "err\n");
}

TEST(Process, ThatIsEndedBySignalTellsWhich) {
    fake::Process process({"/bin/cat", "/dev/zero"});
    EXPECT_TRUE(process.isRunning());
    process.sendSignal(SIGTERM);
    EXPECT_EQ(process.waitForEnd().value_or(fake::ProcessEnd{}).signal, SIGTERM);
    EXPECT_FALSE(process.isRunning());
}

TEST(Process, ThatTalksAllTheWhileIsNotHeldUp) {
    constexpr std::size_t much = 1'000'000;  // many times what a pipe holds
    fake::Process process({"/bin/sh", "-c", "head -c 1000000 /dev/zero >&2; echo done; exec cat /dev/zero >/dev/null"},
                          {}, fake::Output::Files);
    EXPECT_TRUE(fake::eventually([&] { return process.standardOutput() == "done\n"; }));
    process.sendSignal(SIGTERM);
    EXPECT_EQ(process.waitForEnd().value_or(fake::ProcessEnd{}).standardError.size(), much);
}

TEST(Process, ThatCannotBeStartedIsAFailureAndHasNoEnd) {
    const auto impossible = makeImpossibleProcess();
    EXPECT_FALSE(impossible->isRunning());
    EXPECT_FALSE(impossible->isDrawing());
    EXPECT_FALSE(impossible->waitForEnd());
    EXPECT_EQ(impossible->standardOutput(), "");
}

TEST(Process, ThatCannotBeStartedHasNothingToDoWithOthers) {
    fake::Process other({"/bin/sh", "-c", "exit 7"});
    // Its end waits for this process to ask; until then there is a process of that number.
    siginfo_t ended{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(other.identifier()), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(makeImpossibleProcess()->isRunning());
    EXPECT_EQ(other.waitForEnd().value_or(fake::ProcessEnd{}).exitStatus, 7) << "its end was taken from it";
}

TEST(Process, ThatCannotBeStartedSendsItsSignalsToNobody) {
    fake::Process listener({"/bin/sh", "-c", "trap 'exit 5' WINCH; echo ready; while :; do :; done"});
    ASSERT_TRUE(fake::eventually([&] { return listener.standardOutput() == "ready\n"; }));
    makeImpossibleProcess()->sendSignal(SIGWINCH);  // who does not listen for it takes no notice
    listener.sendSignal(SIGTERM);
    EXPECT_EQ(listener.waitForEnd().value_or(fake::ProcessEnd{}).signal, SIGTERM);
}

}  // namespace
