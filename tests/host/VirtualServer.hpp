#pragma once

#include "tests/host/Process.hpp"

#include <string>

namespace fake {

/// An X server without a screen of glass, which only one test uses. It goes with this object, and with the test however
/// that ends.
class VirtualServer {
public:
    /// Of that many pixels, "WIDTHxHEIGHT". Fails the test and has no name when there is none to be had.
    explicit VirtualServer(const std::string& size = "1280x960");
    ~VirtualServer();
    VirtualServer(const VirtualServer&) = delete;
    VirtualServer& operator=(const VirtualServer&) = delete;

    /// ":NUMBER", as in DISPLAY.
    const std::string& name() const { return _name; }
    /// Makes it the one that DISPLAY names, for this process and those that it starts.
    void useAsDisplay() const;
    /// Keeps it from answering anybody for good.
    void freeze() const;

private:
    Process _process;
    std::string _name;
};

}  // namespace fake
