// The program as the screen savers of MATE and Xfce run it: nice, stopped while a password is asked for, and with an
// environment that holds next to nothing.
#include "tests/hosts/ForeignWindow.hpp"

#include <sys/resource.h>

#include <cstdlib>

namespace hosts {
namespace {

class UnderMateAndXfce : public ForeignWindowTest {
protected:
    void start(const std::string& windowName) {
        process = std::make_unique<fake::Process>(std::vector<std::string>{
            "/usr/bin/nice", "-n", "10", "/usr/bin/env", "-i", "PATH=/usr/bin:/bin", "HOME=" + home.path().string(),
            std::string("DISPLAY=") + std::getenv("DISPLAY"), "LANG=de_DE.UTF-8", "XSCREENSAVER_WINDOW=" + windowName,
            program().string(), "--root"});
    }
};

TEST_F(UnderMateAndXfce, ShowsMovingClouds) {
    start(hexadecimal(window));
    EXPECT_TRUE(showsMovingCloudsOf(size));
    endByHost();
    EXPECT_FALSE(home.holdsErrorReport());
}

TEST_F(UnderMateAndXfce, DrawsOnWhenNobodyReadsItsComplaints) {
    start(hexadecimal(window));
    process->closeOutput();
    EXPECT_TRUE(showsMovingCloudsOf(size));
    server.display().resize(window, 500, 350);
    EXPECT_TRUE(showsMovingCloudsOf({500, 350}));
    process->sendSignal(SIGTERM);
    const auto end = process->waitForEnd(std::chrono::seconds(2));
    ASSERT_TRUE(end);
    EXPECT_EQ(end->signal, SIGTERM);
}

TEST_F(UnderMateAndXfce, StandsWhileAPasswordIsAskedForAndGoesOnAfterwards) {
    start(hexadecimal(window));
    ASSERT_TRUE(showsMovingCloudsOf(size));
    for (int round = 0; round < 3; ++round) {
        process->sendSignal(SIGSTOP);
        EXPECT_TRUE(standsStill([this] { return picture(); })) << round;
        process->sendSignal(SIGCONT);
        EXPECT_TRUE(showsMovingCloudsOf(size)) << round;
    }
    endByHost();
}

TEST_F(UnderMateAndXfce, ASaverThatIsAskedToEndWhileItStandsEndsWhenItMayGoOn) {
    start(hexadecimal(window));
    ASSERT_TRUE(showsMovingCloudsOf(size));
    process->sendSignal(SIGSTOP);
    process->sendSignal(SIGTERM);
    process->sendSignal(SIGCONT);
    const auto end = process->waitForEnd(std::chrono::seconds(2));
    ASSERT_TRUE(end);
    EXPECT_EQ(end->signal, SIGTERM);
}

TEST_F(UnderMateAndXfce, ATokenOfAWaylandSessionIsAClearFailure) {
    start("xfce4-screensaver-1a2b");
    const auto end = process->waitForEnd(std::chrono::seconds(10));
    ASSERT_TRUE(end);
    EXPECT_EQ(end->exitStatus, 1);
    EXPECT_NE(end->standardError.find("xfce4-screensaver-1a2b"), std::string::npos) << end->standardError;
}

}  // namespace
}  // namespace hosts
