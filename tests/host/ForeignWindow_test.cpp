// The program in windows of others, as screen saver hosts run it.
#include "tests/host/Display.hpp"
#include "tests/host/Pixels.hpp"
#include "tests/host/Process.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

namespace {

constexpr std::uint32_t input = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
                                XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;

std::string hexadecimal(std::uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", number);
    return text;
}

class ForeignWindow : public testing::Test {
protected:
    ForeignWindow() : _window(_display.makeWindow(400, 300, input)) {}
    ~ForeignWindow() override { _display.destroy(_window); }

    /// As a host starts it, with next to nothing in its environment.
    void start(const std::vector<std::string>& arguments) {
        std::vector<std::string> command{fake::cirraneProgram(), "--validate"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        _process = std::make_unique<fake::Process>(
            command,
            std::vector<std::string>{"XSCREENSAVER_WINDOW=" + hexadecimal(_window), "WAYLAND_DISPLAY=wayland-0",
                                     "XDG_RUNTIME_DIR", "LC_ALL", "QT_SCALE_FACTOR=2"});
    }

    void expectClouds() { expectCloudsIn(_window); }
    void expectCloudsIn(xcb_window_t window) {
        ASSERT_TRUE(fake::eventually([&] { return fake::brightness(_display.pixels(window)) > 30.0; }))
            << "no clouds appeared";
        const auto before = _display.pixels(window);
        EXPECT_TRUE(fake::eventually([&] { return _display.pixels(window) != before; })) << "they stand still";
    }

    fake::ProcessEnd endBySignal() {
        _process->sendSignal(SIGTERM);
        return _process->waitForEnd(std::chrono::seconds(20)).value_or(fake::ProcessEnd{});
    }

    fake::Display _display;
    xcb_window_t _window;
    std::unique_ptr<fake::Process> _process;
};

TEST_F(ForeignWindow, ThatTheEnvironmentNamesIsFilled) {
    start({"-root"});
    expectClouds();
    for (const xcb_window_t inside : _display.windowsBelow(_window)) {
        EXPECT_EQ(_display.sizeOf(inside), _display.sizeOf(_window));
    }
    const auto end = endBySignal();
    EXPECT_EQ(end.signal, SIGTERM);
    EXPECT_EQ(end.standardError, "");
}

TEST_F(ForeignWindow, ThatTheCommandLineNamesWins) {
    const xcb_window_t preview = _display.makeWindow(200, 120, input);
    start({"--root", "--window-id", hexadecimal(preview)});
    ASSERT_TRUE(fake::eventually([&] { return !_display.windowsBelow(preview).empty(); }));
    EXPECT_TRUE(_display.windowsBelow(_window).empty());
    EXPECT_EQ(endBySignal().standardError, "");
    _display.destroy(preview);
}

TEST_F(ForeignWindow, ThatIsResizedIsFollowed) {
    start({"-root"});
    expectClouds();
    _display.resize(_window, 900, 500);
    const auto fills = [&] {
        const auto below = _display.windowsBelow(_window);
        return !below.empty() && std::ranges::all_of(below, [&](xcb_window_t inside) {
            return _display.sizeOf(inside) == std::pair<std::uint16_t, std::uint16_t>(900, 500);
        });
    };
    EXPECT_TRUE(fake::eventually(fills));
    expectClouds();
    EXPECT_EQ(endBySignal().standardError, "");
}

TEST_F(ForeignWindow, ThatIsDestroyedEndsTheProgramQuietly) {
    start({"-root"});
    expectClouds();
    _display.destroy(_window);
    const auto end = _process->waitForEnd(std::chrono::seconds(20));
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 0);
    EXPECT_EQ(end->standardError, "");
}

TEST_F(ForeignWindow, ThatIsHiddenIsNotDrawnInUntilItIsShownAgain) {
    start({"-root"});
    expectClouds();
    for (int round = 0; round < 3; ++round) {
        _display.setMapped(_window, false);
        EXPECT_TRUE(fake::eventually([&] { return !_process->isDrawing(); })) << round;
        _display.setMapped(_window, true);
        expectClouds();
    }
    EXPECT_EQ(endBySignal().standardError, "");
}

TEST_F(ForeignWindow, ThatIsCoveredIsNotDrawnInUntilItCanBeSeenAgain) {
    start({"-root"});
    expectClouds();
    const xcb_window_t cover = _display.makeWindow(800, 700, 0);
    EXPECT_TRUE(fake::eventually([&] { return !_process->isDrawing(); }));
    _display.destroy(cover);
    expectClouds();
    EXPECT_EQ(endBySignal().standardError, "");
}

TEST_F(ForeignWindow, ThatIsShownLaterIsFilledThen) {
    const xcb_window_t later = _display.makeHiddenWindow(300, 200, 24);
    start({"--window-id", hexadecimal(later)});
    ASSERT_TRUE(fake::eventually([&] { return !_display.windowsBelow(later).empty(); }));
    EXPECT_FALSE(_process->isDrawing());
    _display.setMapped(later, true);
    expectCloudsIn(later);
    EXPECT_EQ(endBySignal().standardError, "");
    _display.destroy(later);
}

TEST_F(ForeignWindow, OfAnotherDepthIsFilledToo) {
    const xcb_window_t translucent = _display.makeHiddenWindow(300, 200, 32);
    _display.setMapped(translucent, true);
    start({"--window-id", hexadecimal(translucent)});
    expectCloudsIn(translucent);
    EXPECT_EQ(endBySignal().standardError, "");
    _display.destroy(translucent);
}

TEST_F(ForeignWindow, WhoseOwnerManagesWhatIsInItIsFilledAndFollowed) {
    const xcb_window_t managed = _display.makeWindow(300, 200, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    start({"--window-id", hexadecimal(managed)});
    expectCloudsIn(managed);
    _display.resize(managed, 640, 400);
    EXPECT_TRUE(fake::eventually([&] {
        return std::ranges::all_of(_display.windowsBelow(managed), [&](xcb_window_t inside) {
            return _display.sizeOf(inside) == std::pair<std::uint16_t, std::uint16_t>(640, 400);
        });
    }));
    expectCloudsIn(managed);
    EXPECT_EQ(endBySignal().standardError, "");
    _display.destroy(managed);
}

TEST_F(ForeignWindow, ThatIsDestroyedAtAnyMomentOfTheStartEndsTheProgramQuietly) {
    xcb_window_t brief = 0;
    const std::function<bool()> momentsOfTheStart[] = {
        [this] { return _process->isRunning(); },
        [this] { return _process->hasLoaded("/libQt6Core.so"); },
        [this] { return _process->hasLoaded("/libqxcb.so"); },  // on its way to the display
        [this] { return _process->hasLoaded("/libvulkan.so"); },
        [this] { return _process->hasLoaded("/libvulkan_lvp.so"); },
        [&] { return !_display.windowsBelow(brief).empty(); },
        [&] {
            return std::ranges::any_of(_display.windowsBelow(brief),
                                       [this](xcb_window_t inside) { return _display.isMapped(inside); });
        },
        [this] { return _process->isDrawing(); },
    };
    for (const auto& hasCome : momentsOfTheStart) {
        const auto moment = &hasCome - momentsOfTheStart;
        brief = _display.makeWindow(300, 200, 0);
        start({"--window-id", hexadecimal(brief)});
        ASSERT_TRUE(fake::eventually(hasCome)) << moment;
        _display.destroy(brief);
        const auto end = _process->waitForEnd(std::chrono::seconds(20));
        ASSERT_TRUE(end) << moment;
        if (end->exitStatus == 1) {  // gone before it was looked at
            EXPECT_EQ(end->standardError,
                      "cirrane: there is no X11 window " + hexadecimal(brief) + " on this display\n");
        } else {
            EXPECT_EQ(end->exitStatus, 0) << moment;
            EXPECT_EQ(end->standardError, "") << moment;
        }
    }
}

TEST_F(ForeignWindow, ThatNothingCanBeDrawnInIsAClearFailure) {
    const xcb_window_t inputOnly = _display.makeInputOnlyWindow();
    const auto end = fake::runCirrane({"--window-id", hexadecimal(inputOnly)});
    EXPECT_EQ(end.exitStatus, 1);
    EXPECT_EQ(end.standardError, "cirrane: there is no X11 window " + hexadecimal(inputOnly) + " on this display\n");
    _display.destroy(inputOnly);
}

TEST_F(ForeignWindow, WhoseOwnerStandsStillDoesNotHoldUpTheEnd) {
    fake::Process owner({fake::cirraneProgram()}, {"WAYLAND_DISPLAY"});
    ASSERT_TRUE(fake::eventually([&] { return _display.findWindow("Cirrane").has_value(); }));
    const xcb_window_t owned = *_display.findWindow("Cirrane");
    const std::size_t ownersOwn = _display.windowsBelow(owned).size();
    start({"--window-id", hexadecimal(owned)});
    ASSERT_TRUE(fake::eventually([&] { return _display.windowsBelow(owned).size() > ownersOwn; }));
    ASSERT_TRUE(fake::eventually([&] { return _process->isDrawing(); }));
    owner.sendSignal(SIGSTOP);
    const auto end = endBySignal();
    EXPECT_EQ(end.signal, SIGTERM);
    EXPECT_EQ(end.standardError, "");
}

TEST_F(ForeignWindow, IsDrawnInAlsoByAProgramWithoutStandardStreams) {
    _process = std::make_unique<fake::Process>(
        std::vector<std::string>{"/bin/sh", "-c", R"(exec "$0" --root 0<&- 1>&- 2>&-)", fake::cirraneProgram()},
        std::vector<std::string>{"XSCREENSAVER_WINDOW=" + hexadecimal(_window)});
    expectClouds();
    EXPECT_EQ(endBySignal().signal, SIGTERM);
}

TEST_F(ForeignWindow, KeepsItsInputForItsOwner) {
    start({"-root"});
    expectClouds();
    for (const xcb_window_t inside : _display.windowsBelow(_window)) {
        EXPECT_EQ(_display.selectedEvents(inside) & input, 0U);
    }
    _display.movePointer(150, 120);
    EXPECT_TRUE(fake::eventually([&] { return _display.takeEvent(XCB_MOTION_NOTIFY, _window); }));
    _display.clickButton();
    EXPECT_TRUE(fake::eventually([&] { return _display.takeEvent(XCB_BUTTON_PRESS, _window); }));
    _display.typeKey('q');
    EXPECT_TRUE(fake::eventually([&] { return _display.takeEvent(XCB_KEY_PRESS, _window); }));
    expectClouds();
    EXPECT_EQ(endBySignal().signal, SIGTERM) << "a key of others does not end it";
}

TEST_F(ForeignWindow, APausedProgramGoesOnAfterwards) {
    start({"-root"});
    expectClouds();
    for (int round = 0; round < 3; ++round) {
        _process->sendSignal(SIGSTOP);
        _process->sendSignal(SIGCONT);
        expectClouds();
    }
    EXPECT_EQ(endBySignal().standardError, "");
}

TEST_F(ForeignWindow, ATokenOrNothingInItsPlaceIsAClearFailure) {
    const auto failure = [](const std::string& environment) {
        return fake::runCirrane({"--root"}, {environment}).standardError;
    };
    EXPECT_EQ(failure("XSCREENSAVER_WINDOW=wl-7"),
              "cirrane: XSCREENSAVER_WINDOW is \"wl-7\", which names no X11 window\n");
    EXPECT_EQ(failure("XSCREENSAVER_WINDOW"),
              "cirrane: --root draws in the window that XSCREENSAVER_WINDOW names, which is not set\n");
    EXPECT_EQ(failure("XSCREENSAVER_WINDOW=0x7fffffff"),
              "cirrane: there is no X11 window 0x7fffffff on this display\n");
    EXPECT_EQ(fake::runCirrane({"--root"}, {"XSCREENSAVER_WINDOW=wl-7"}).exitStatus, 1);
}

TEST_F(ForeignWindow, NeedsAnX11Display) {
    const auto end = fake::runCirrane({"--root"}, {"XSCREENSAVER_WINDOW=0x12", "DISPLAY"});
    EXPECT_EQ(end.exitStatus, 1);
    EXPECT_EQ(end.standardError, "cirrane: there is no X11 display to draw on (DISPLAY is not set)\n");
}

TEST_F(ForeignWindow, AnErrorStandsInItUntilTheHostEndsTheProgram) {
    start({"-root", "--test-error", "200:-6661"});
    EXPECT_TRUE(fake::eventually([&] {
        const auto pixels = _display.pixels(_window);
        return fake::shareOf(0xff0000, pixels) > 0.6 && fake::shareOf(0xffffff, pixels) > 0.005;
    }));
    EXPECT_TRUE(_process->isRunning());
    EXPECT_EQ(endBySignal().signal, SIGTERM);
}

}  // namespace
