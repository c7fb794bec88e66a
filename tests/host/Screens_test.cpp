// The program on more than one screen: an X server's one is told to be several monitors.
#include "tests/host/Display.hpp"
#include "tests/host/Pixels.hpp"
#include "tests/host/Process.hpp"
#include "tests/host/VirtualServer.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace {

using fake::Place;
using Places = std::vector<Place>;

constexpr Place left{0, 0, 400, 300};
constexpr Place right{400, 0, 320, 300};

class Screens : public testing::Test {
protected:
    Screens() {
        _display.movePointer(200, 200);
        addMonitor("left", left, "screen");
        addMonitor("right", right, "none");
    }

    /// `output` is the one that it takes a part of; those of "none" are monitors all the same.
    static void addMonitor(const std::string& name, const Place& place, const std::string& output) {
        const auto pair = [](int a, int b, char separator) {
            return std::to_string(a) + separator + std::to_string(b);
        };
        const std::string geometry =
            pair(place.width, 100, '/') + "x" + pair(place.height, 80, '/') + "+" + pair(place.x, place.y, '+');
        changeScreens({"--setmonitor", name, geometry, output});
    }
    static void removeMonitor(const std::string& name) { changeScreens({"--delmonitor", name}); }

    void start(const std::vector<std::string>& arguments, std::vector<std::string> environment = {}) {
        std::vector<std::string> command{fake::cirraneProgram(), "--validate"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        environment.push_back("WAYLAND_DISPLAY");
        environment.push_back("HOME=" + _home.path().string());
        _process = std::make_unique<fake::Process>(command, environment);
    }

    Places coveredPlaces() const {
        auto places = _display.placesOfWindows("Cirrane");
        std::erase(places, Place{0, 0, 1, 1});  // the toolkit's own
        std::ranges::sort(places);
        return places;
    }
    bool areCovered(const Places& places) const {
        return fake::eventually([&] { return coveredPlaces() == places; });
    }
    std::chrono::milliseconds timeUntilCovered(const Places& places) const {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_TRUE(areCovered(places));
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    }
    bool hasClouds(const Place& place) const {
        return fake::eventually([&] { return fake::brightness(_display.pixels(place)) > 30.0; });
    }
    bool isBlack(const Place& place) const { return fake::shareOf(0x000000, _display.pixels(place)) == 1.0; }

    void expectCleanEnd() {
        _process->sendSignal(SIGTERM);
        const auto end = _process->waitForEnd(std::chrono::seconds(20));
        ASSERT_TRUE(end);
        EXPECT_EQ(end->signal, SIGTERM);
        EXPECT_EQ(end->standardError, "");
    }

    void setMultiScreen(bool multiScreen) const {
        fake::writeFile(_home.path() / ".config/org.example.cirrane.conf",
                        std::string("[General]\nMultiScreen=") + (multiScreen ? "true" : "false") + "\n");
    }

    /// Made first: what opens the display after it opens this one.
    class Server : public fake::VirtualServer {
    public:
        Server() : VirtualServer("1920x1080") { useAsDisplay(); }
    } _server;
    fake::TemporaryDirectory _home;
    fake::Display _display;
    std::unique_ptr<fake::Process> _process;

private:
    static void changeScreens(const std::vector<std::string>& arguments) {
        std::vector<std::string> command{"/usr/bin/xrandr"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        fake::Process(command).waitForEnd();
    }
};

TEST_F(Screens, EachIsCovered) {
    setMultiScreen(true);
    start({"--fullscreen"});
    EXPECT_TRUE(areCovered({left, right}));
    EXPECT_TRUE(hasClouds(left));
    EXPECT_TRUE(hasClouds(right));
    expectCleanEnd();
}

TEST_F(Screens, OnlyTheFirstIsDrawnOnUnlessMoreAreWished) {
    setMultiScreen(false);
    start({"--fullscreen"});
    EXPECT_TRUE(areCovered({left, right}));
    EXPECT_TRUE(hasClouds(left));
    EXPECT_TRUE(isBlack(right));
    expectCleanEnd();
}

TEST_F(Screens, TheOneThatBecomesTheFirstIsDrawnOnThen) {
    setMultiScreen(false);
    start({"--fullscreen"});
    ASSERT_TRUE(areCovered({left, right}));
    ASSERT_TRUE(hasClouds(left));
    ASSERT_TRUE(isBlack(right));
    removeMonitor("right");
    addMonitor("*right", right, "none");  // the first of all, as the asterisk says
    EXPECT_TRUE(hasClouds(right));
    EXPECT_TRUE(fake::eventually([this] { return isBlack(left); }));
    expectCleanEnd();
}

TEST_F(Screens, ThatGoTakeTheirWindowsWithThemAndGetOneWhenTheyComeBack) {
    setMultiScreen(true);
    start({"--fullscreen"});
    ASSERT_TRUE(areCovered({left, right}));
    for (int round = 0; round < 3; ++round) {
        removeMonitor("right");
        EXPECT_TRUE(areCovered({left})) << round;
        addMonitor("right", right, "none");
        EXPECT_TRUE(areCovered({left, right})) << round;
        EXPECT_TRUE(hasClouds(right)) << round;
    }
    expectCleanEnd();
}

/// The medians, because a busy machine may hold up any one round.
TEST_F(Screens, ThatComeAndGoGetAndLoseTheirWindowsWithinASecond) {
    setMultiScreen(true);
    start({"--fullscreen"});
    ASSERT_TRUE(areCovered({left, right}));
    ASSERT_TRUE(hasClouds(right));
    std::vector<std::chrono::milliseconds> goings;
    std::vector<std::chrono::milliseconds> comings;
    for (int round = 0; round < 7; ++round) {
        removeMonitor("right");
        goings.push_back(timeUntilCovered({left}));
        addMonitor("right", right, "none");
        comings.push_back(timeUntilCovered({left, right}));
    }
    EXPECT_LT(fake::median(goings), std::chrono::seconds(1));
    EXPECT_LT(fake::median(comings), std::chrono::seconds(1));
    expectCleanEnd();
}

TEST_F(Screens, ThatAreAllReplacedByAnotherLeaveTheirWindowsToIt) {
    start({"--fullscreen"});
    ASSERT_TRUE(areCovered({left, right}));
    ASSERT_TRUE(hasClouds(left));
    removeMonitor("left");
    removeMonitor("right");
    const Place whole{0, 0, 1920, 1080};
    EXPECT_TRUE(areCovered({whole}));
    EXPECT_TRUE(hasClouds(whole));
    expectCleanEnd();
}

TEST_F(Screens, ShowAnErrorEach) {
    start({"--fullscreen", "--test-error", "303"});
    for (const Place& place : {left, right}) {
        EXPECT_TRUE(fake::eventually([&] { return fake::shareOf(0xff0000, _display.pixels(place)) > 0.6; }));
    }
    expectCleanEnd();
}

/// Hosts start one program per monitor, each with a window there.
TEST_F(Screens, AWindowOfOthersBelongsToTheOneThatItLiesOn) {
    setMultiScreen(false);
    const xcb_window_t window = _display.makeWindow(200, 200, 0);
    const std::vector<std::string> environment{"XSCREENSAVER_WINDOW=" + std::to_string(window)};
    start({"--root"}, environment);
    EXPECT_TRUE(hasClouds({40, 30, 200, 200}));
    expectCleanEnd();

    _display.place(window, 450, 0);
    start({"--root"}, environment);
    for (const std::uint16_t width : {210, 220}) {
        _display.resize(window, width, 200);
        EXPECT_TRUE(fake::eventually([&] {
            const auto inside = _display.windowsBelow(window);
            return !inside.empty() && _display.sizeOf(inside.front()).first == width;
        }));
    }
    EXPECT_TRUE(fake::becomesIdle(_process->identifier())) << "it has nothing more to do";
    EXPECT_FALSE(_process->isDrawing()) << "screens other than the first stay black";
    expectCleanEnd();
    _display.destroy(window);
}

}  // namespace
