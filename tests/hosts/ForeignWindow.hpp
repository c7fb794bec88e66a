#pragma once

#include "tests/host/Process.hpp"
#include "tests/hosts/Home.hpp"
#include "tests/hosts/XServer.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace hosts {

/// What hosts write after `--window-id` and into XSCREENSAVER_WINDOW.
inline std::string hexadecimal(xcb_window_t window) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%lX", static_cast<unsigned long>(window));
    return text;
}

/// A host of the test's own: it owns a window, takes all input to it for itself, and runs the program there.
class ForeignWindowTest : public testing::Test {
protected:
    static constexpr Size size{400, 300};
    static constexpr std::uint32_t input = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                                           XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                           XCB_EVENT_MASK_POINTER_MOTION;

    ForeignWindowTest() : window(server.display().makeWindow(size.width, size.height, input)) {}

    /// Starts the program by that command, with XSCREENSAVER_WINDOW set.
    void start(const std::vector<std::string>& command, const std::vector<std::string>& environment = {}) {
        process = std::make_unique<fake::Process>(
            command,
            home.environment() + std::vector<std::string>{"XSCREENSAVER_WINDOW=" + hexadecimal(window)} + environment);
    }

    Picture picture() const { return server.pictureOf(window); }
    testing::AssertionResult showsMovingCloudsOf(Size wanted) {
        return showsMovingClouds([this] { return picture(); }, wanted);
    }

    /// Asks the program to end and waits for it, as hosts do: blocked.
    void endByHost() {
        process->sendSignal(SIGTERM);
        const auto end = process->waitForEnd(std::chrono::seconds(2));
        ASSERT_TRUE(end) << "the host's window would stand frozen";
        EXPECT_EQ(end->signal, SIGTERM);
        EXPECT_EQ(complaints(end->standardError), "");
    }

    /// All but what Mesa's choice of a device says where there is no XDG_RUNTIME_DIR: it looks for Wayland on its own.
    static std::string complaints(std::string written) {
        const std::string known = "error: XDG_RUNTIME_DIR is invalid or not set in the environment.\n";
        for (std::size_t at = 0; (at = written.find(known)) != std::string::npos;) {
            written.erase(at, known.size());
        }
        return written;
    }

    Home home;
    XServer server{Size{800, 600}};
    xcb_window_t window;
    std::unique_ptr<fake::Process> process;
};

}  // namespace hosts
