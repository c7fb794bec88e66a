// The program in Wayland sessions whose outputs come and go.
#include "tests/hosts/StartedIn.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <string>
#include <vector>

namespace hosts {
namespace {

/// The outputs that are added one after the other, from the second on.
std::string laterOutput(int number) {
    return "X11-" + std::to_string(2 + number);
}

TEST(InSway, AnOutputThatGoesAndComesAgainIsCoveredAgain) {
    Sway sway(first);
    sway.addOutput(secondOutput, second);
    StartedIn cirrane(sway, {"--fullscreen"});
    ASSERT_TRUE(showsMovingCloudsOn(sway, secondOutput, second));
    for (int round = 0; round < 3; ++round) {
        sway.showWorkspace("1");  // the one that has the focus is shown on the output that is left
        sway.removeOutput(second);
        EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, first)) << round;
        sway.addOutput(laterOutput(1 + round), second);
        EXPECT_TRUE(showsMovingCloudsOn(sway, laterOutput(1 + round), second)) << round;
    }
    cirrane.end();
}

TEST(InSway, AnOutputThatIsAddedIsCoveredToo) {
    Sway sway(first);
    StartedIn cirrane(sway, {"--fullscreen"});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    sway.addOutput(secondOutput, second);
    EXPECT_TRUE(showsMovingCloudsOn(sway, secondOutput, second));
    EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    cirrane.end();
}

/// The medians, because a busy machine may hold up any one round.
TEST(InSway, OutputsThatComeAndGoGetAndLoseTheirWindowsWithinASecond) {
    Sway sway(first);
    sway.addOutput(secondOutput, second);
    StartedIn cirrane(sway, {"--fullscreen"});
    ASSERT_TRUE(showsMovingCloudsOn(sway, secondOutput, second));
    const auto timeUntilCovered = [&](const std::set<std::string>& outputs) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_TRUE(fake::eventually([&] { return sway.coveredOutputs() == outputs; }, std::chrono::seconds(5)));
        return std::chrono::steady_clock::now() - start;
    };
    std::vector<std::chrono::steady_clock::duration> goings;
    std::vector<std::chrono::steady_clock::duration> comings;
    for (int round = 0; round < 7; ++round) {
        sway.showWorkspace("1");  // the one that has the focus is shown on the output that is left
        sway.removeOutput(second);
        goings.push_back(timeUntilCovered({firstOutput}));
        sway.addOutput(laterOutput(1 + round), second);
        comings.push_back(timeUntilCovered({firstOutput, laterOutput(1 + round)}));
    }
    EXPECT_LT(fake::median(goings), std::chrono::seconds(1));
    EXPECT_LT(fake::median(comings), std::chrono::seconds(1));
    cirrane.end();
}

TEST(InSway, NoOutputAtAllIsNoReasonToEnd) {
    Sway sway(first);
    StartedIn cirrane(sway, {"--fullscreen"});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    for (int round = 0; round < 3; ++round) {
        sway.removeOutput(first);
        EXPECT_FALSE(sway.hasOutputs()) << round;
        EXPECT_TRUE(fake::eventually([&] { return !cirrane.isDrawing(); })) << round;
        EXPECT_TRUE(cirrane.becomesIdle()) << round;
        ASSERT_TRUE(cirrane.isRunning()) << round;
        sway.addOutput(laterOutput(round), first);
        ASSERT_TRUE(showsMovingCloudsOn(sway, laterOutput(round), first)) << round;
    }
    cirrane.end();
}

TEST(InSway, AProgramThatIsStartedWithoutAnyOutputCoversTheFirstThatComes) {
    Sway sway(first);
    sway.removeOutput(first);
    StartedIn cirrane(sway, {"--fullscreen"});
    ASSERT_TRUE(fake::eventually([&] { return cirrane.hasLoaded("/libqwayland") || !cirrane.isRunning(); }));
    EXPECT_TRUE(cirrane.becomesIdle());
    ASSERT_TRUE(cirrane.isRunning());
    sway.addOutput(secondOutput, second);
    EXPECT_TRUE(showsMovingCloudsOn(sway, secondOutput, second));
    cirrane.end();
}

TEST(InSway, AProgramThatIsStartedWithoutAnyOutputCanBeEnded) {
    Sway sway(first);
    sway.removeOutput(first);
    StartedIn cirrane(sway, {"--fullscreen"});
    ASSERT_TRUE(fake::eventually([&] { return cirrane.hasLoaded("/libqwayland") || !cirrane.isRunning(); }));
    EXPECT_TRUE(cirrane.becomesIdle());
    cirrane.end();
}

}  // namespace
}  // namespace hosts
