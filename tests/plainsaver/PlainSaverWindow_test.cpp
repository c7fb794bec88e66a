// The program with a saver that the framework has never heard of, in a window.
#include "tests/host/Display.hpp"
#include "tests/host/Pixels.hpp"
#include "tests/host/Process.hpp"
#include "tests/host/VirtualServer.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t plainColour = 0x336699;

class PlainSaverWindow : public testing::Test {
protected:
    PlainSaverWindow() {
        _server.useAsDisplay();
        _display = std::make_unique<fake::Display>();
    }

    void start() {
        _process = std::make_unique<fake::Process>(
            std::vector<std::string>{fake::cirraneProgram(), "--window", "--module", PLAIN_SAVER, "--validate"},
            std::vector<std::string>{"WAYLAND_DISPLAY", "HOME=" + _home.path().string()});
        ASSERT_TRUE(fake::eventually([this] { return _display->findWindow("Cirrane").has_value(); }));
        const auto [width, height] = _display->sizeOf(*_display->findWindow("Cirrane"));
        _picture = {0, 0, width, height - _stripHeight};
        _strip = {0, height - _stripHeight, width, _stripHeight};
        const auto [x, y] = _display->placeOf(*_display->findWindow("Cirrane"));
        for (fake::Place* place : {&_picture, &_strip}) {
            place->x += x;
            place->y += y;
        }
    }

    /// The share of a place that is of the saver's colour.
    double shareOfColour(const fake::Place& place) const { return fake::shareOf(plainColour, _display->pixels(place)); }

    void expectEndBySignal() {
        _process->sendSignal(SIGTERM);
        const auto end = _process->waitForEnd(std::chrono::seconds(20));
        ASSERT_TRUE(end);
        EXPECT_EQ(end->signal, SIGTERM);
        EXPECT_EQ(end->standardError, "") << "validation must have nothing to say";
    }

    static constexpr int _stripHeight = 27;  // a 27th of the height, 720, rounded
    fake::VirtualServer _server{"1280x720"};
    fake::TemporaryDirectory _home;
    std::unique_ptr<fake::Display> _display;
    std::unique_ptr<fake::Process> _process;
    fake::Place _picture;
    fake::Place _strip;
};

TEST_F(PlainSaverWindow, IsFilledWithItsColour) {
    start();
    EXPECT_TRUE(fake::eventually([this] { return shareOfColour(_picture) == 1.0 && shareOfColour(_strip) == 1.0; }));
    EXPECT_TRUE(_process->isDrawing());
    expectEndBySignal();
}

TEST_F(PlainSaverWindow, ShowsTheStripOfStatisticsOverItsColour) {
    fake::writeFile(_home.path() / ".config/org.example.plain.conf", "[General]\nDiagnostics=true\n");
    start();
    EXPECT_TRUE(fake::eventually([this] {
        // The strip's ground, blue, lets the colour through; its text is white.
        return shareOfColour(_picture) == 1.0 && shareOfColour(_strip) == 0.0 &&
               fake::shareOf(0x1429d6, _display->pixels(_strip)) > 0.5 &&
               fake::shareOf(0xffffff, _display->pixels(_strip)) > 0.005;
    }));
    const auto before = _display->pixels(_strip);
    EXPECT_TRUE(fake::eventually([&] { return _display->pixels(_strip) != before; })) << "the numbers stand still";
    expectEndBySignal();
}

}  // namespace
