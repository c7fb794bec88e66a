#pragma once

#include "tests/host/Display.hpp"
#include "tests/host/VirtualServer.hpp"
#include "tests/hosts/Picture.hpp"

#include <memory>
#include <optional>
#include <set>
#include <string>

namespace hosts {

/// An X server of the test's own, with one monitor whose mode can be changed. From the making of it on, DISPLAY names
/// it.
class XServer {
public:
    /// No mode is larger than the one it starts with.
    explicit XServer(Size largest = {1280, 960});

    /// What the test itself does there.
    const fake::Display& display() const { return *_display; }
    Picture picture() const;
    Picture pictureOf(xcb_window_t window) const;
    /// Changes the monitor's mode, and with it the size of the screen.
    void setMode(Size size);
    /// A window manager that was started may lose what it is asked for before it is ready: waits until it is.
    static void waitForWindowManager();

private:
    fake::VirtualServer _server;
    std::unique_ptr<fake::Display> _display;
    std::set<std::string> _modes;
};

}  // namespace hosts
