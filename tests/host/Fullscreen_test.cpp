#include "tests/host/Display.hpp"
#include "tests/host/Pixels.hpp"
#include "tests/host/Process.hpp"

#include <gtest/gtest.h>
#include <signal.h>

namespace {

class Fullscreen : public testing::Test {
protected:
    Fullscreen() {
        _display.movePointer(500, 500);
        _process = std::make_unique<fake::Process>(
            std::vector<std::string>{fake::cirraneProgram(), "--fullscreen", "--validate"},
            std::vector<std::string>{"WAYLAND_DISPLAY"});
    }

    void SetUp() override {
        ASSERT_TRUE(fake::eventually([&] {
            const auto window = _display.findWindow("Cirrane");
            return window && fake::brightness(_display.pixels(*window)) > 30.0;
        })) << "no clouds appeared";
    }

    void expectCleanEnd() {
        const auto end = _process->waitForEnd(std::chrono::seconds(20));
        ASSERT_TRUE(end) << "it did not end";
        EXPECT_EQ(end->exitStatus, 0);
        EXPECT_EQ(end->standardError, "");
    }

    /// Looks at that many further pictures, in which time a program that were to end would have.
    void watchPictures(int count) {
        const xcb_window_t window = *_display.findWindow("Cirrane");
        for (int picture = 0; picture < count; ++picture) {
            const auto before = _display.pixels(window);
            ASSERT_TRUE(fake::eventually([&] { return _display.pixels(window) != before; }));
        }
    }

    fake::Display _display;
    std::unique_ptr<fake::Process> _process;
};

TEST_F(Fullscreen, CoversTheScreen) {
    const auto window = _display.findWindow("Cirrane");
    EXPECT_EQ(_display.sizeOf(*window), (std::pair<std::uint16_t, std::uint16_t>(1920, 1080)));
    _process->sendSignal(SIGTERM);
    EXPECT_EQ(_process->waitForEnd().value_or(fake::ProcessEnd{}).signal, SIGTERM);
}

TEST_F(Fullscreen, AKeyEndsIt) {
    _display.focus(*_display.findWindow("Cirrane"));
    _display.typeKey('a');
    expectCleanEnd();
}

TEST_F(Fullscreen, AButtonEndsIt) {
    _display.clickButton();
    expectCleanEnd();
}

TEST_F(Fullscreen, AMovedPointerEndsIt) {
    // In steps, as a hand does, for as long as it takes.
    EXPECT_TRUE(fake::eventually([this, step = 0]() mutable {
        _display.movePointer(static_cast<std::int16_t>(500 + 6 * (++step % 200)), 500);
        return !_process->isRunning();
    }));
    expectCleanEnd();
}

TEST_F(Fullscreen, AWindowManagerThatClosesItEndsIt) {
    _display.askToClose(*_display.findWindow("Cirrane"));
    expectCleanEnd();
}

TEST_F(Fullscreen, ATremblingPointerDoesNot) {
    for (int round = 0; round < 5; ++round) {
        _display.movePointer(503, 500);
        _display.movePointer(500, 502);
    }
    watchPictures(3);
    EXPECT_TRUE(_process->isRunning());
}

TEST_F(Fullscreen, LosingTheFocusDoesNot) {
    const xcb_window_t other = _display.makeWindow(50, 50, 0);
    _display.focus(other);
    watchPictures(3);
    EXPECT_TRUE(_process->isRunning());
    _display.destroy(other);
}

}  // namespace
