#include "tests/host/Display.hpp"
#include "tests/host/Pixels.hpp"
#include "tests/host/Process.hpp"

#include <gtest/gtest.h>
#include <signal.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using fake::brightness;
using fake::difference;

class Window : public testing::Test {
protected:
    explicit Window() : _process({fake::cirraneProgram(), "--validate"}, {"WAYLAND_DISPLAY"}) {}

    void SetUp() override {
        ASSERT_TRUE(fake::eventually([&] { return window().has_value(); })) << "no window appeared";
        ASSERT_TRUE(fake::eventually([&] { return brightness(_display.pixels(*window())) > 30.0; }))
            << "no clouds appeared";
    }

    std::optional<xcb_window_t> window() const { return _display.findWindow("Cirrane"); }

    fake::ProcessEnd end() {
        const auto ended = _process.waitForEnd(std::chrono::seconds(20));
        EXPECT_TRUE(ended) << "it did not end";
        return ended.value_or(fake::ProcessEnd{});
    }

    void expectCleanEnd() {
        const fake::ProcessEnd ended = end();
        EXPECT_EQ(ended.exitStatus, 0);
        EXPECT_EQ(ended.standardError, "") << "validation must have nothing to say";
    }

    fake::Display _display;
    fake::Process _process;
};

TEST_F(Window, ShowsCloudsThatMoveSmoothly) {
    const auto first = _display.pixels(*window());
    std::vector<std::uint8_t> second;
    ASSERT_TRUE(fake::eventually([&] {
        second = _display.pixels(*window());
        return second != first;
    })) << "the picture stands still";
    ASSERT_EQ(second.size(), first.size());
    EXPECT_LT(difference(first, second), 40.0);
    _display.pressKey(*window(), 0xff1b);
    expectCleanEnd();
}

TEST_F(Window, EscapeEndsTheProgramWell) {
    _display.pressKey(*window(), 0xff1b);
    expectCleanEnd();
}

TEST_F(Window, TheLetterQEndsTheProgramWell) {
    _display.pressKey(*window(), 'q');
    expectCleanEnd();
}

TEST_F(Window, ClosingItEndsTheProgramWell) {
    _display.askToClose(*window());
    expectCleanEnd();
}

TEST_F(Window, AResizedWindowIsFilledAgain) {
    _display.resize(*window(), 900, 500);
    ASSERT_TRUE(fake::eventually([&] {
        const auto pixels = _display.pixels(*window());
        return pixels.size() == 900U * 500 * 4 && brightness(pixels) > 30.0;
    }));
    for (std::uint32_t step = 0; step < 30; ++step) {
        _display.resize(*window(), 300 + 20 * step, 700 - 15 * step);
    }
    ASSERT_TRUE(fake::eventually([&] {
        const auto pixels = _display.pixels(*window());
        return pixels.size() == 880U * 265 * 4 && brightness(pixels) > 30.0;
    }));
    _display.askToClose(*window());
    expectCleanEnd();
}

TEST_F(Window, AWindowThatIsHiddenIsNotDrawnIn) {
    const xcb_window_t hidden = *window();
    EXPECT_TRUE(_process.isDrawing());
    _display.setMapped(hidden, false);
    EXPECT_TRUE(fake::eventually([&] { return !_process.isDrawing(); }));
    _display.setMapped(hidden, true);
    EXPECT_TRUE(fake::eventually([&] { return _process.isDrawing(); }));
    _display.askToClose(hidden);
    expectCleanEnd();
}

TEST_F(Window, AWindowThatWasHiddenShowsCloudsAgain) {
    const xcb_window_t hidden = *window();
    for (int round = 0; round < 5; ++round) {
        _display.setMapped(hidden, false);
        ASSERT_TRUE(fake::eventually([&] { return !window().has_value(); }));
        _display.setMapped(hidden, true);
        ASSERT_TRUE(fake::eventually([&] { return window() == hidden && brightness(_display.pixels(hidden)) > 30.0; }))
            << "round " << round;
    }
    _display.askToClose(hidden);
    expectCleanEnd();
}

class WindowSignal : public Window, public testing::WithParamInterface<int> {};

TEST_P(WindowSignal, EndsTheProgramByItsDefaultAction) {
    _process.sendSignal(GetParam());
    const fake::ProcessEnd ended = end();
    EXPECT_EQ(ended.signal, GetParam());
    EXPECT_EQ(ended.standardError, "") << "validation must have nothing to say";
}

INSTANTIATE_TEST_SUITE_P(Window, WindowSignal, testing::Values(SIGTERM, SIGINT));

}  // namespace
