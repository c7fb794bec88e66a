#include "tests/renderhost/FrameLoopTest.hpp"
#include "tests/support/Waiting.hpp"

#include <new>

using testing::ElementsAre;

namespace {

class QZLFrameLoopSlots : public FrameLoopTest {
protected:
    /// True when the next frame waits for a slot until `release` has been called.
    bool nextFrameWaitsFor(const std::function<void()>& release) {
        const std::size_t callsBefore = gpu->calls().size();
        fake::StartedCall frame([this] { renderer->presentFrame(); });
        const bool waits = frame.waits();
        EXPECT_EQ(gpu->calls().size(), callsBefore);
        release();
        frame.finish();
        return waits;
    }
};

}  // namespace

TEST_F(QZLFrameLoopSlots, TheSlotsTakeTurns) {
    gpu->setCompletesAtCommit(true);
    EXPECT_FALSE(attach());
    present(7);
    EXPECT_EQ(renderer->bufferIndices(), (std::vector<std::int32_t>{0, 1, 2, 0, 1, 2, 0}));
}

TEST_F(QZLFrameLoopSlots, AFourthFrameWaitsForTheFirstToComplete) {
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_EQ(gpu->committedButIncomplete(), 3U);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_EQ(renderer->bufferIndices(), (std::vector<std::int32_t>{0, 1, 2, 0}));
    EXPECT_EQ(gpu->committedButIncomplete(), 3U);
}

TEST_F(QZLFrameLoopSlots, NeverAreMoreThanThreeFramesInFlight) {
    EXPECT_FALSE(attach());
    for (int frame = 0; frame < 20; ++frame) {
        if (gpu->committedButIncomplete() == 3) {
            gpu->completeNext();
        }
        present(1);
        ASSERT_LE(gpu->committedButIncomplete(), 3U);
    }
    EXPECT_EQ(renderer->frames.size(), 20U);
}

TEST_F(QZLFrameLoopSlots, ASlotComesBackOnlyWithItsCompletion) {
    EXPECT_FALSE(attach());
    present(3);
    gpu->completeNext();
    gpu->completeNext();
    present(2);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
}

TEST_F(QZLFrameLoopSlots, AFrameWithoutADrawableKeepsItsSlotForEver) {
    gpu->plan().failingDrawables = {1, 2};
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_EQ(renderer->frames.size(), 1U);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));  // one slot of three is left
    EXPECT_EQ(renderer->bufferIndices(), (std::vector<std::int32_t>{0, 1, 2}));
}

TEST_F(QZLFrameLoopSlots, AFrameWithoutADrawableTakesNeitherIndexNorNumber) {
    gpu->setCompletesAtCommit(true);
    gpu->plan().failingDrawables = {1};
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_THAT(renderer->frames,
                ElementsAre(RecordingRenderer::Frame{0, 1.0F, 0}, RecordingRenderer::Frame{1, 1.0F, 1}));
    EXPECT_THAT(callsStartingWith("commandBuffer"), testing::SizeIs(2));
}

TEST_F(QZLFrameLoopSlots, AFrameWithoutACommandBufferKeepsItsSlotForEver) {
    gpu->plan().failingCommandBuffers = {1, 2};
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_EQ(renderer->frames.size(), 3U);
}

TEST_F(QZLFrameLoopSlots, AFrameWithoutACommandBufferTakesAnIndexAndNoNumber) {
    gpu->setCompletesAtCommit(true);
    gpu->plan().failingCommandBuffers = {1};
    EXPECT_FALSE(attach());
    present(3);
    EXPECT_THAT(renderer->frames,
                ElementsAre(RecordingRenderer::Frame{0, 1.0F, 0}, RecordingRenderer::Frame{2, 1.0F, 1}));
}

TEST_F(QZLFrameLoopSlots, AFrameThatThrowsKeepsItsSlotForEver) {
    EXPECT_FALSE(attach());
    renderer->onDraw = [](QZLDrawContext&) { throw std::bad_alloc(); };
    for (int frame = 0; frame < 2; ++frame) {
        EXPECT_THROW(renderer->presentFrame(), std::bad_alloc);
    }
    renderer->onDraw = nullptr;
    present(1);
    EXPECT_TRUE(nextFrameWaitsFor([this] { gpu->completeNext(); }));
    EXPECT_EQ(gpu->committedButIncomplete(), 1U);
}
