// The frame loop freezes when it has lost its three slots, which is wanted. Here it does so on a real display link, and
// whoever owns the renderer gets out of it all the same.
#include "foundation/QZLError.hpp"
#include "tests/renderhost/RendererTest.hpp"
#include "tests/support/CountedDisplayLink.hpp"
#include "tests/support/Waiting.hpp"

#include <set>

using testing::SizeIs;

namespace {

constexpr int slots = QZLMetalRenderer::inFlightSlots;

struct LostSlots {
    const char* name;
    std::set<std::uint64_t> failingDrawables;
    std::set<std::uint64_t> failingCommandBuffers;
};

void PrintTo(const LostSlots& lost, std::ostream* stream) {
    *stream << lost.name;
}

class FrozenLoop : public RendererTest {
protected:
    void freeze(const LostSlots& lost) {
        gpu->plan().failingDrawables = lost.failingDrawables;
        gpu->plan().failingCommandBuffers = lost.failingCommandBuffers;
        ASSERT_FALSE(renderer->attachToView(refreshingView, false, 0, statistics));
        renderer->startAnimation();
        ASSERT_TRUE(fake::eventually([this] { return refreshingView->refreshes->begun == slots + 1; }));
    }

    /// Shows that time goes by in which the loop could have gone on.
    static void letOthersRefresh() {
        fake::RefreshingView other;
        other.stopTimeout = fake::deadline;
        std::unique_ptr<platform::DisplayLink> link;
        ASSERT_EQ(other.createDisplayLink(1, link), platform::displayLinkSuccess);
        ASSERT_EQ(link->setOutputCallback([](auto...) { return 0; }, nullptr), platform::displayLinkSuccess);
        ASSERT_EQ(link->start(), platform::displayLinkSuccess);
        EXPECT_TRUE(fake::eventually([&other] { return other.refreshes->returned >= 20; }));
        link->stop();
    }

    void expectFrozen() {
        EXPECT_EQ(refreshingView->refreshes->begun, slots + 1);
        EXPECT_EQ(refreshingView->refreshes->returned, slots);
        EXPECT_THAT(callsStartingWith("nextDrawable"), SizeIs(slots));
        EXPECT_THAT(callsStartingWith("commit"), SizeIs(0));
    }

    const fake::Watchdog watchdog;
    std::shared_ptr<fake::RefreshingView> refreshingView = std::make_shared<fake::RefreshingView>();
};

class QZLFrameLoopFreeze : public FrozenLoop, public testing::WithParamInterface<LostSlots> {};

}  // namespace

TEST_P(QZLFrameLoopFreeze, NothingIsPresentedAnyMore) {
    freeze(GetParam());
    letOthersRefresh();
    expectFrozen();
    EXPECT_TRUE(renderer->frames.empty());
}

TEST_P(QZLFrameLoopFreeze, StoppingReturnsAndAbandonsTheRenderer) {
    freeze(GetParam());
    renderer->stopAnimation();
    EXPECT_TRUE(renderer->isAbandoned());
    EXPECT_EQ(journalLines().back(), "Stopped animation.");
    expectFrozen();
}

TEST_P(QZLFrameLoopFreeze, DetachingReturnsWithAndWithoutAStopBefore) {
    freeze(GetParam());
    renderer->detachFromView();
    EXPECT_TRUE(renderer->isAbandoned());
    EXPECT_FALSE(renderer->isAttached());
    renderer->stopAnimation();
    renderer->detachFromView();
    expectFrozen();
}

TEST_P(QZLFrameLoopFreeze, TheLastOwnerMayLetGo) {
    freeze(GetParam());
    renderer.reset();
    expectFrozen();
}

TEST_P(QZLFrameLoopFreeze, AttachingAgainIsAnErrorAndAnotherRendererDraws) {
    freeze(GetParam());
    const auto error = renderer->attachToView(refreshingView, false, 0, statistics);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 200);
    EXPECT_EQ(QZLGetErrorSubCode(*error), platform::displayLinkAbandoned);
    expectFrozen();

    const auto other = QZLMakeRenderer<RecordingRenderer>();
    gpu->setCompletesAtCommit(true);
    ASSERT_FALSE(other->attachToView(view, false, 0, nullptr));
    other->startAnimation();
    fire(5);
    EXPECT_EQ(other->frames.size(), 5U);
}

INSTANTIATE_TEST_SUITE_P(After, QZLFrameLoopFreeze,
                         testing::Values(LostSlots{"ThreeMissingDrawables", {0, 1, 2}, {}},
                                         LostSlots{"ThreeMissingCommandBuffers", {}, {0, 1, 2}},
                                         LostSlots{"OneAndTwoOfThem", {1}, {0, 1}}),
                         [](const auto& lost) { return std::string(lost.param.name); });

namespace {

/// Two slots are lost, and the third frame is on the GPU for longer than the link waits.
class QZLFrameLoopStuck : public FrozenLoop {
protected:
    ~QZLFrameLoopStuck() override {
        renderer.reset();
        delete _stuck;  // its callback has returned by now
    }

    void stick() {
        freeze({"", {0, 2}, {}});
        renderer->stopAnimation();
        ASSERT_TRUE(renderer->isAbandoned());
        _stuck = renderer.get();  // which, abandoned, nobody else lets go of
    }

private:
    RecordingRenderer* _stuck = nullptr;
};

}  // namespace

TEST_F(QZLFrameLoopStuck, AFrameThatGetsItsSlotAfterTheStopIsNotPresented) {
    stick();
    EXPECT_EQ(renderer->frames.size(), 1U);
    EXPECT_TRUE(gpu->completeNext());
    EXPECT_TRUE(fake::eventually([this] { return refreshingView->refreshes->returned == slots + 1; }));
    EXPECT_THAT(callsStartingWith("nextDrawable"), SizeIs(slots));
    EXPECT_EQ(renderer->frames.size(), 1U);
}
