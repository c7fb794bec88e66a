// The program over a whole X11 desktop, with and without a window manager.
#include "tests/hosts/Home.hpp"
#include "tests/hosts/XServer.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hosts {
namespace {

class FullScreenOnX11 : public testing::TestWithParam<bool> {
protected:
    FullScreenOnX11() {
        if (GetParam()) {
            manager = std::make_unique<fake::Process>(std::vector<std::string>{"/usr/bin/openbox", "--sm-disable"},
                                                      home.environment(), fake::Output::Files);
            XServer::waitForWindowManager();
        }
        server.display().movePointer(10, 10);
        cirrane =
            std::make_unique<fake::Process>(std::vector<std::string>{program(), "--fullscreen"}, home.environment());
    }

    testing::AssertionResult showsMovingCloudsOf(Size size) {
        return showsMovingClouds([this] { return server.picture(); }, size);
    }

    void expectGoodEnd() {
        const auto end = cirrane->waitForEnd(std::chrono::seconds(10));
        ASSERT_TRUE(end);
        EXPECT_EQ(end->exitStatus, 0);
        EXPECT_EQ(end->standardError, "");
        EXPECT_FALSE(home.holdsErrorReport());
    }

    Home home;
    XServer server{judgedSize};
    std::unique_ptr<fake::Process> manager;
    std::unique_ptr<fake::Process> cirrane;
};

TEST_P(FullScreenOnX11, FollowsTheMonitorIntoOtherModesAndStays) {
    ASSERT_TRUE(showsMovingCloudsOf(judgedSize));
    for (const Size size : {Size{320, 240}, judgedSize}) {
        server.setMode(size);
        EXPECT_TRUE(showsMovingCloudsOf(size));
    }
    EXPECT_TRUE(becomesSharp([this] { return server.picture(); }));
    server.display().typeKey('a');
    expectGoodEnd();
}

TEST_P(FullScreenOnX11, EndsWhenThePointerIsMoved) {
    ASSERT_TRUE(showsMovingCloudsOf(judgedSize));
    std::int16_t x = 100;
    EXPECT_TRUE(fake::eventually([&] {
        x = static_cast<std::int16_t>(x < 600 ? x + 4 : 100);
        server.display().movePointer(x, 200);
        return !cirrane->isRunning();
    }));
    expectGoodEnd();
}

TEST_P(FullScreenOnX11, ASignalEndsIt) {
    ASSERT_TRUE(showsMovingCloudsOf(judgedSize));
    cirrane->sendSignal(SIGTERM);
    const auto end = cirrane->waitForEnd(std::chrono::seconds(2));
    ASSERT_TRUE(end);
    EXPECT_EQ(end->signal, SIGTERM);
    EXPECT_EQ(end->standardError, "");
}

std::string nameOf(const testing::TestParamInfo<bool>& withManager) {
    return withManager.param ? "UnderAWindowManager" : "Alone";
}
INSTANTIATE_TEST_SUITE_P(FullScreen, FullScreenOnX11, testing::Bool(), nameOf);

}  // namespace
}  // namespace hosts
