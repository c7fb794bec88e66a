#pragma once

#include "tests/hosts/Compositor.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace hosts {

inline constexpr Size first{640, 480};
inline constexpr Size second{480, 360};
inline constexpr const char* firstOutput = "X11-1";
inline constexpr const char* secondOutput = "X11-2";

/// The program in a session, which it must leave by the signal that it is sent, without a complaint.
class StartedIn {
public:
    StartedIn(const Compositor& session, const std::vector<std::string>& arguments)
        : _process(std::vector<std::string>{program()} + arguments, session.environment()) {}

    bool isRunning() { return _process.isRunning(); }
    bool hasLoaded(const std::string& file) const { return _process.hasLoaded(file); }
    bool isDrawing() const { return _process.isDrawing(); }
    bool becomesIdle() const { return fake::becomesIdle(_process.identifier()); }
    std::optional<fake::ProcessEnd> waitForEnd() { return _process.waitForEnd(std::chrono::seconds(10)); }
    void end() {
        _process.sendSignal(SIGTERM);
        const auto end = _process.waitForEnd(std::chrono::seconds(5));
        ASSERT_TRUE(end) << "it hangs";
        EXPECT_EQ(end->signal, SIGTERM);
        EXPECT_EQ(end->standardError, "");
    }

private:
    fake::Process _process;
};

inline testing::AssertionResult showsMovingCloudsOn(const Sway& sway, const std::string& output, Size size) {
    return showsMovingClouds([&] { return sway.picture(output); }, size);
}

}  // namespace hosts
