// Settings that another process changes while the program runs.
#include "tests/host/Display.hpp"
#include "tests/host/Pixels.hpp"
#include "tests/host/Process.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

class OutsideSettings : public testing::TestWithParam<const char*> {
protected:
    OutsideSettings() : window(display.makeWindow(400, 300, 0)) {}
    ~OutsideSettings() override { display.destroy(window); }

    /// As a program that replaces its files does.
    void writeColors(const std::string& colors) const {
        fake::writeFile(file.string() + ".new", "[General]\nColors=" + colors + "\n");
        std::filesystem::rename(file.string() + ".new", file);
    }
    std::vector<std::uint8_t> picture() const { return display.pixels({60, 60, 200, 200}); }
    /// How far the picture's pixels are from grey: 10 to 20 without colours, 45 to 80 with all.
    double colorfulness() const {
        const auto pixels = picture();
        double sum = 0.0;
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            const auto [least, most] = std::minmax({pixels[i], pixels[i + 1], pixels[i + 2]});
            sum += most - least;
        }
        return pixels.empty() ? 0.0 : sum * 4.0 / static_cast<double>(pixels.size());
    }

    fake::TemporaryDirectory directory;
    const std::filesystem::path file = directory.path() / "org.example.cirrane.conf";
    fake::Display display;
    xcb_window_t window;
};

TEST_P(OutsideSettings, ReachARunningSaver) {
    writeColors("0");
    fake::Process process({fake::cirraneProgram(), GetParam()},
                          {"WAYLAND_DISPLAY", "XDG_CONFIG_HOME=" + directory.path().string(),
                           "XSCREENSAVER_WINDOW=" + std::to_string(window)});
    ASSERT_TRUE(fake::eventually([&] { return fake::brightness(picture()) > 30.0; })) << "no clouds appeared";
    writeColors("1");
    EXPECT_TRUE(fake::eventually([&] { return colorfulness() > 35.0; })) << "it is " << colorfulness();
    writeColors("0");
    EXPECT_TRUE(fake::eventually([&] { return colorfulness() < 25.0; })) << "it is " << colorfulness();
    EXPECT_TRUE(process.isRunning());
}

INSTANTIATE_TEST_SUITE_P(InEveryMode, OutsideSettings, testing::Values("--window", "--fullscreen", "--root"),
                         [](const auto& test) { return std::string(test.param).substr(2); });

}  // namespace
