// The window for the settings, opened by the program itself.
#include "tests/host/Display.hpp"
#include "tests/host/Pixels.hpp"
#include "tests/host/Process.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

class Configure : public testing::Test {
protected:
    std::unique_ptr<fake::Process> start(const std::vector<std::string>& environment = {"WAYLAND_DISPLAY"}) const {
        return std::make_unique<fake::Process>(
            std::vector<std::string>{fake::cirraneProgram(), "--configure", "--validate"}, environment);
    }
    std::vector<fake::Place> windows() const { return display.placesOfWindows("Settings — Cirrane"); }
    bool showsClouds() const {
        return fake::eventually([this] {
            const auto places = windows();
            return places.size() == 1 &&
                   fake::brightness(display.pixels({places[0].x + 50, places[0].y + 50, 200, 150})) > 30.0 &&
                   fake::brightness(display.pixels({places[0].x + 50, places[0].y + 50, 200, 150})) < 220.0;
        });
    }

    /// By the button that has the focus at first.
    void openOptions() const {
        display.focus(*display.findWindow("Settings — Cirrane"));
        display.typeKey(0x20);
        ASSERT_TRUE(fake::eventually([&] { return display.findWindow("Options — Cirrane"); }));
        display.focus(*display.findWindow("Options — Cirrane"));
    }
    void closeOptions() const {
        display.typeKey(0xff0d);
        EXPECT_TRUE(fake::eventually([&] { return !display.findWindow("Options — Cirrane"); }));
    }

    fake::Display display;
};

TEST_F(Configure, ShowsThePreviewUntilItIsClosed) {
    const auto process = start();
    ASSERT_TRUE(showsClouds());
    EXPECT_TRUE(fake::eventually([&] { return process->isDrawing(); }));
    display.askToClose(*display.findWindow("Settings — Cirrane"));
    const auto end = process->waitForEnd();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 0);
    EXPECT_EQ(end->standardError, "");
}

TEST_F(Configure, EscapeClosesIt) {
    const auto process = start();
    ASSERT_TRUE(showsClouds());
    display.focus(*display.findWindow("Settings — Cirrane"));
    display.typeKey(0xff1b);
    const auto end = process->waitForEnd();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 0);
}

TEST_F(Configure, ASignalEndsIt) {
    const auto process = start();
    ASSERT_TRUE(showsClouds());
    process->sendSignal(SIGTERM);
    EXPECT_EQ(process->waitForEnd()->signal, SIGTERM);
}

TEST_F(Configure, ASecondOneRaisesTheFirstAndEnds) {
    const auto first = start();
    ASSERT_TRUE(showsClouds());
    const fake::Place place = windows().front();
    const xcb_window_t cover = display.makeWindow(1900, 1000, 0);
    display.place(cover, 0, 0);
    ASSERT_EQ(fake::brightness(display.pixels(place)), 0.0);
    const auto second = start()->waitForEnd();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->exitStatus, 0);
    EXPECT_EQ(second->standardError, "");
    EXPECT_TRUE(fake::eventually([&] { return fake::brightness(display.pixels(place)) > 0.0; })) << "not raised";
    EXPECT_EQ(windows().size(), 1U);
    EXPECT_TRUE(first->isRunning());
    display.destroy(cover);
}

TEST_F(Configure, AfterOneThatWasKilledAnotherOpens) {
    auto killed = start();
    ASSERT_TRUE(showsClouds());
    killed->sendSignal(SIGKILL);
    ASSERT_TRUE(killed->waitForEnd());
    ASSERT_TRUE(fake::eventually([&] { return windows().empty(); }));
    const auto next = start();
    EXPECT_TRUE(showsClouds());
    EXPECT_TRUE(next->isRunning());
}

TEST_F(Configure, ThePreviewFollowsWhenTheOptionsAreClosed) {
    const fake::TemporaryDirectory config;
    fake::writeFile(config.path() / "org.example.cirrane.conf", "[General]\nColors=1\n");
    const auto process = start({"WAYLAND_DISPLAY", "XDG_CONFIG_HOME=" + config.path().string()});
    ASSERT_TRUE(showsClouds());
    const fake::Place inside{windows()[0].x + 50, windows()[0].y + 50, 200, 150};
    const auto colourfulness = [&] { return fake::colourfulness(display.pixels(inside)); };
    ASSERT_TRUE(fake::eventually([&] { return colourfulness() > 32.0; }));  // 40 to 110, once it has faded in
    openOptions();
    display.typeKey(0xff50);  // Home, on the colours
    closeOptions();
    EXPECT_TRUE(fake::eventually([&] { return colourfulness() < 25.0; }));  // 8 to 20
}

TEST_F(Configure, SettingsThatCannotBeWrittenAreToldWhenTheSheetCloses) {
    const fake::TemporaryDirectory config;
    std::filesystem::create_directory(config.path() /
                                      "org.example.cirrane.conf");  // also the superuser cannot write it
    const auto process = start({"WAYLAND_DISPLAY", "XDG_CONFIG_HOME=" + config.path().string()});
    ASSERT_TRUE(showsClouds());
    openOptions();
    closeOptions();
    EXPECT_TRUE(fake::eventually([&] { return display.findWindow("Cirrane"); })) << "no message";
    display.askToClose(*display.findWindow("Settings — Cirrane"));
    const auto end = process->waitForEnd();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 0);
}

TEST_F(Configure, WithoutGraphicsTheWindowStillOpensAndStays) {
    fake::Process process({fake::cirraneProgram(), "--configure"},
                          {"WAYLAND_DISPLAY", "VK_DRIVER_FILES=/nowhere", "VK_ICD_FILENAMES=/nowhere"});
    ASSERT_TRUE(fake::eventually([&] {
        const auto places = windows();
        return places.size() == 1 &&
               fake::shareOf(0xff0000, display.pixels({places[0].x + 20, places[0].y + 20, 60, 60})) > 0.5;
    })) << "no error on red in the preview";
    EXPECT_TRUE(process.isRunning());
    display.askToClose(*display.findWindow("Settings — Cirrane"));
    const auto end = process.waitForEnd();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 0);
}

}  // namespace
