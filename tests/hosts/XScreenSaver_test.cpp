// The program as the XScreenSaver daemon runs it.
#include "tests/hosts/XScreenSaver.hpp"

#include "tests/hosts/XServer.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <optional>

namespace hosts {
namespace {

class UnderXScreenSaver : public testing::Test {
protected:
    UnderXScreenSaver() : daemon(program().string() + " --root") {}

    testing::AssertionResult showsMovingCloudsOf(Size size) {
        return showsMovingClouds([this] { return server.picture(); }, size);
    }

    /// The one process that the daemon runs; nothing when there is none, or more than one.
    static std::optional<pid_t> saver() {
        const auto running = runningSavers();
        return running.size() == 1 ? std::optional(running.front()) : std::nullopt;
    }

    void TearDown() override {
        daemon.deactivate();
        EXPECT_TRUE(fake::eventually([] { return runningSavers().empty(); })) << "the saver did not end";
        EXPECT_FALSE(daemon.home().holdsErrorReport());
    }

    XServer server{judgedSize};
    XScreenSaver daemon;
};

TEST_F(UnderXScreenSaver, ShowsMovingCloudsUntilSomebodyComesBack) {
    daemon.activate();
    EXPECT_TRUE(showsMovingCloudsOf(judgedSize));
    ASSERT_TRUE(saver());
    EXPECT_EQ(getpriority(PRIO_PROCESS, static_cast<id_t>(*saver())), 10) << "the daemon makes its savers nice";
    daemon.deactivate();
    EXPECT_TRUE(fake::eventually([] { return runningSavers().empty(); }));
    EXPECT_TRUE(fake::eventually([this] { return server.picture().brightness() == 0.0; })) << "the desktop is back";
}

TEST_F(UnderXScreenSaver, AKeyReachesTheDaemon) {
    daemon.activate();
    ASSERT_TRUE(showsMovingCloudsOf(judgedSize));
    // For a moment after it was told to blank the screen, the daemon takes no notice of keys.
    EXPECT_TRUE(fake::eventually([this] {
        server.display().typeKey('a');
        return runningSavers().empty();
    }));
}

TEST_F(UnderXScreenSaver, RunsAgainAfterACycle) {
    daemon.activate();
    ASSERT_TRUE(showsMovingCloudsOf(judgedSize));
    const auto first = saver();
    ASSERT_TRUE(first);
    daemon.cycle();
    ASSERT_TRUE(fake::eventually([&] { return saver() && saver() != first; })) << "no other process came";
    EXPECT_TRUE(showsMovingCloudsOf(judgedSize));
}

TEST_F(UnderXScreenSaver, RunsAgainAndAgain) {
    for (int round = 0; round < 3; ++round) {
        daemon.activate();
        ASSERT_TRUE(showsMovingCloudsOf(judgedSize)) << round;
        daemon.deactivate();
        ASSERT_TRUE(fake::eventually([] { return runningSavers().empty(); })) << round;
    }
}

TEST_F(UnderXScreenSaver, FollowsTheMonitorIntoOtherModes) {
    server.setMode({320, 240});
    daemon.activate();
    ASSERT_TRUE(showsMovingCloudsOf({320, 240}));
    const auto first = saver();
    ASSERT_TRUE(first);
    for (const Size size : {judgedSize, Size{480, 360}, judgedSize}) {
        server.setMode(size);
        EXPECT_TRUE(showsMovingCloudsOf(size));
        EXPECT_TRUE(size != judgedSize || becomesSharp([this] { return server.picture(); }));
        EXPECT_EQ(saver(), first) << "it was not started anew";
    }
}

}  // namespace
}  // namespace hosts
