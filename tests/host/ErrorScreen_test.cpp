// The program on machines where it cannot draw: it stays, and says why in its window.
#include "tests/host/Display.hpp"
#include "tests/host/Pixels.hpp"
#include "tests/host/Process.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class ErrorScreen : public testing::Test {
protected:
    /// Starts the program and waits for a window of that ground with white text on it; then ends it.
    void expectErrorScreen(std::vector<std::string> arguments, std::vector<std::string> environment) {
        arguments.insert(arguments.begin(), fake::cirraneProgram());
        environment.insert(environment.end(), {"WAYLAND_DISPLAY", "HOME=" + _home.path().string()});
        fake::Process process(arguments, environment);
        EXPECT_TRUE(fake::eventually([&] {
            const auto window = _display.findWindow("Cirrane");
            if (!window) {
                return false;
            }
            const auto pixels = _display.pixels(*window);
            return fake::shareOf(0xff0000, pixels) > 0.7 && fake::shareOf(0xffffff, pixels) > 0.005;
        })) << "no red window with white text";
        EXPECT_TRUE(process.isRunning()) << "it stays until it is ended";
        process.sendSignal(SIGTERM);
        const auto end = process.waitForEnd();
        ASSERT_TRUE(end);
        EXPECT_EQ(end->signal, SIGTERM);
        EXPECT_EQ(end->standardError, "");
    }

    bool hasReport() const {
        const fs::path settings = _home.path() / ".config";
        if (!fs::exists(settings)) {
            return false;
        }
        for (const auto& entry : fs::recursive_directory_iterator(settings)) {
            if (entry.is_regular_file() && fake::readFile(entry.path()).find("SavedErrorCode") != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    fake::TemporaryDirectory _home;
    fake::Display _display;
};

TEST_F(ErrorScreen, StandsWhereThereIsNoLoader) {
    const fake::TemporaryDirectory directory;
    for (const char* name : {"libvulkan.so", "libvulkan.so.1"}) {
        fake::writeFile(directory.path() / name, "");
    }
    expectErrorScreen({}, {"LD_LIBRARY_PATH=" + directory.path().string()});
    EXPECT_FALSE(hasReport());
}

TEST_F(ErrorScreen, StandsWhereThereIsNoDriver) {
    expectErrorScreen({}, {"VK_DRIVER_FILES=/nonexistent", "VK_ICD_FILENAMES=/nonexistent"});
    EXPECT_FALSE(hasReport());
}

TEST_F(ErrorScreen, StandsWhereTheDeviceCannotPresent) {
    expectErrorScreen({}, {std::string("LD_LIBRARY_PATH=") + STAND_IN_VULKAN, "STAND_IN_VULKAN_DEVICE=1.3"});
    EXPECT_FALSE(hasReport());
}

TEST_F(ErrorScreen, StandsWhereTheShaderLibraryIsMissing) {
    const fake::TemporaryDirectory directory;
    const fs::path bundle = directory.path() / "Cirrane.saver";
    fs::copy(CIRRANE_BUILT_BUNDLE, bundle, fs::copy_options::recursive);
    fs::remove(bundle / "default.metallib");
    expectErrorScreen({"--module", bundle.string()}, {});
    EXPECT_FALSE(hasReport());
}

TEST_F(ErrorScreen, IsShownForATestAndNeverSaved) {
    expectErrorScreen({"--test-error", "201:7"}, {});
    EXPECT_FALSE(hasReport());
}

TEST_F(ErrorScreen, CoversTheScreenInFullScreenToo) {
    expectErrorScreen({"--fullscreen", "--test-error", "303"}, {});
}

TEST_F(ErrorScreen, ASaverThatCannotBeLoadedStaysAndSaysSo) {
    fake::Process process({fake::cirraneProgram(), "--module", "/nonexistent"}, {"WAYLAND_DISPLAY"});
    EXPECT_TRUE(fake::eventually([&] {
        const auto window = _display.findWindow("Cirrane");
        return window && fake::shareOf(0xff0000, _display.pixels(*window)) > 0.7;
    }));
    _display.askToClose(*_display.findWindow("Cirrane"));
    const auto end = process.waitForEnd();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 1);
    EXPECT_EQ(end->standardError, "cirrane: no saver bundle at /nonexistent\n");
}

}  // namespace
