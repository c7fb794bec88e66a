// The program in Wayland sessions.
#include "tests/hosts/StartedIn.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>

namespace hosts {
namespace {

TEST(InSway, AWindowFillsItsTile) {
    Sway sway(first);
    StartedIn cirrane(sway, {"--window"});
    EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    cirrane.end();
    EXPECT_FALSE(sway.home().holdsErrorReport());
}

TEST(InSway, FullScreenCoversEveryOutput) {
    Sway sway(first);
    sway.addOutput(secondOutput, second);
    StartedIn cirrane(sway, {"--fullscreen"});
    EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    EXPECT_TRUE(showsMovingCloudsOn(sway, secondOutput, second));
    cirrane.end();
    EXPECT_FALSE(sway.home().holdsErrorReport());
}

TEST(InSway, FullScreenLeavesTheOtherOutputsBlackWhenToldSo) {
    Sway sway(first);
    sway.addOutput(secondOutput, second);
    sway.home().storeSetting("MultiScreen=false");
    StartedIn cirrane(sway, {"--fullscreen"});
    EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    EXPECT_TRUE(standsStill([&] { return sway.picture(secondOutput); }));
    EXPECT_EQ(sway.picture(secondOutput).share({0, 0, 0}), 1.0);
    cirrane.end();
}

class InSwayMode : public testing::TestWithParam<const char*> {};

TEST_P(InSwayMode, AnOutputOfAnotherResolutionIsFilledSharply) {
    Sway sway({320, 240});
    StartedIn cirrane(sway, {GetParam()});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, {320, 240}));
    sway.setResolution(firstOutput, judgedSize);
    EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, judgedSize));
    EXPECT_TRUE(becomesSharp([&] { return sway.picture(firstOutput); }));
    cirrane.end();
}

TEST_P(InSwayMode, AnOutputOfTwiceTheScaleIsFilledSharply) {
    Sway sway(judgedSize, 2);
    StartedIn cirrane(sway, {GetParam()});
    EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, judgedSize));
    EXPECT_TRUE(becomesSharp([&] { return sway.picture(firstOutput); }));
    cirrane.end();
}

TEST_P(InSwayMode, AnOutputWhoseScaleChangesIsFilledSharply) {
    Sway sway(judgedSize);
    StartedIn cirrane(sway, {GetParam()});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, judgedSize));
    for (const int scale : {2, 1}) {
        sway.setScale(firstOutput, scale);
        EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, judgedSize)) << scale;
        EXPECT_TRUE(becomesSharp([&] { return sway.picture(firstOutput); })) << scale;
    }
    cirrane.end();
}

TEST_P(InSwayMode, CloudsThatWereHiddenMoveAgainWhenTheyAreShown) {
    Sway sway(first);
    StartedIn cirrane(sway, {GetParam()});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    for (int round = 0; round < 3; ++round) {
        sway.showWorkspace("other");
        EXPECT_TRUE(standsStill([&] { return sway.picture(firstOutput); })) << round;
        EXPECT_FALSE(isFilledWithClouds(sway.picture(firstOutput))) << round;
        sway.showWorkspace("1");
        EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, first)) << round;
    }
    cirrane.end();
}

TEST_P(InSwayMode, AProgramThatIsHiddenHasNothingToDoAndCanBeEnded) {
    Sway sway(first);
    StartedIn cirrane(sway, {GetParam()});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    sway.showWorkspace("other");
    EXPECT_TRUE(cirrane.becomesIdle());
    cirrane.end();
}

TEST_P(InSwayMode, TheEndOfTheSessionEndsTheProgram) {
    Sway sway(first);
    StartedIn cirrane(sway, {GetParam()});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    sway.end();
    const auto end = cirrane.waitForEnd();
    ASSERT_TRUE(end) << "it goes on for nobody";
    EXPECT_EQ(end->exitStatus, 1) << "no crash, but no success either";
}

TEST_P(InSwayMode, AFrozenCompositorHangsNothing) {
    Sway sway(first);
    StartedIn cirrane(sway, {GetParam()});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    sway.freeze();
    cirrane.end();
}

TEST_P(InSwayMode, ACompositorThatWasFrozenShowsMovingCloudsAgain) {
    Sway sway(first);
    StartedIn cirrane(sway, {GetParam()});
    ASSERT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    sway.freeze();
    // For longer than the second that a frame may wait to be shown.
    EXPECT_FALSE(fake::eventually([&] { return !cirrane.isRunning(); }, std::chrono::seconds(2))) << "it ended";
    sway.thaw();
    EXPECT_TRUE(showsMovingCloudsOn(sway, firstOutput, first));
    EXPECT_TRUE(cirrane.isRunning());
    cirrane.end();
}

std::string nameOf(const testing::TestParamInfo<const char*>& mode) {
    return std::string(mode.param) == "--window" ? "InAWindow" : "FullScreen";
}
INSTANTIATE_TEST_SUITE_P(Wayland, InSwayMode, testing::Values("--window", "--fullscreen"), nameOf);

TEST(InWeston, FullScreenCoversTheOutput) {
    Weston weston(first);
    StartedIn cirrane(weston, {"--fullscreen"});
    EXPECT_TRUE(showsMovingClouds([&] { return weston.picture(); }, first));
    cirrane.end();
    EXPECT_FALSE(weston.home().holdsErrorReport());
}

TEST(InWeston, FullScreenCoversAnOutputOfTwiceTheScaleSharply) {
    Weston weston(judgedSize, 2);
    StartedIn cirrane(weston, {"--fullscreen"});
    EXPECT_TRUE(showsMovingClouds([&] { return weston.picture(); }, judgedSize));
    EXPECT_TRUE(becomesSharp([&] { return weston.picture(); }));
    cirrane.end();
}

TEST(InWeston, AWindowIsFilledFromEdgeToEdge) {
    const Size window{1280, 720};
    Weston weston({1500, 900});
    StartedIn cirrane(weston, {"--window"});
    Picture before = weston.picture();
    Place changed;
    EXPECT_TRUE(fake::eventually([&] {
        Picture after = weston.picture();
        changed = changedPlace(before, after);
        const bool fills = changed.size == window && isFilledWithClouds(after.part(changed)) &&
                           movesEverywhere(before.part(changed), after.part(changed));
        before = std::move(after);
        return fills;
    })) << changed.size.width
        << "x" << changed.size.height;
    cirrane.end();
}

TEST(InWeston, AFrozenCompositorHangsNothing) {
    Weston weston(first);
    StartedIn cirrane(weston, {"--fullscreen"});
    ASSERT_TRUE(showsMovingClouds([&] { return weston.picture(); }, first));
    weston.freeze();
    cirrane.end();
}

}  // namespace
}  // namespace hosts
