// The program on an X server that only it uses.
#include "tests/host/VirtualServer.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <string>
#include <vector>

namespace {

class OtherDisplay : public testing::Test {
protected:
    fake::VirtualServer _server;
};

TEST_F(OtherDisplay, ThatTheCommandLineNamesIsTheOne) {
    fake::Process program({fake::cirraneProgram(), "-display", _server.name()},
                          {"DISPLAY", "WAYLAND_DISPLAY=wayland-0", "QT_QPA_PLATFORM=wayland"});
    EXPECT_TRUE(fake::eventually([&] { return program.isDrawing(); }));
    program.sendSignal(SIGTERM);
    EXPECT_EQ(program.waitForEnd().value_or(fake::ProcessEnd{}).signal, SIGTERM);
}

TEST_F(OtherDisplay, ThatStandsStillDoesNotHoldUpTheEnd) {
    fake::Process program({fake::cirraneProgram()}, {"DISPLAY=" + _server.name(), "WAYLAND_DISPLAY"});
    ASSERT_TRUE(fake::eventually([&] { return program.isDrawing(); }));
    _server.freeze();
    program.sendSignal(SIGTERM);
    const auto end = program.waitForEnd();
    ASSERT_TRUE(end) << "it waits for the server";
    EXPECT_EQ(end->signal, SIGTERM);
}

TEST_F(OtherDisplay, ThatCannotBeOpenedIsAClearFailure) {
    for (const char* mode : {"--window", "--fullscreen"}) {
        const auto end = fake::runCirrane({mode, "--display", ":nowhere"}, {"WAYLAND_DISPLAY"});
        EXPECT_EQ(end.exitStatus, 1);
        EXPECT_EQ(end.standardError, "cirrane: the X11 display :nowhere cannot be opened\n");
    }
}

}  // namespace
