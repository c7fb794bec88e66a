// A device that is lost under the frame loop, whenever that is.
#include "tests/renderhost/FrameLoopTest.hpp"

#include <filesystem>
#include <tuple>

using gpu::CommandBufferStatus;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

constexpr int frames = 25;

/// With a GPU that completes every frame at once, or one that lags three frames behind.
enum class Pace { AtOnce, Lagging };

class QZLFrameLoopLostDevice : public FrameLoopTest,
                               public testing::WithParamInterface<std::tuple<std::uint64_t, Pace>> {
protected:
    QZLFrameLoopLostDevice() {
        view->viewBounds = {0, 0, 4, 4};
        gpu->setDeviceLostHandler([this] { ++losses; });
        renderer->onDraw = [this](QZLDrawContext& context) {
            context.renderCommandEncoderWithState(nullptr)->endEncoding();
            context.commandBuffer().addCompletedHandler(
                [this](gpu::CommandBuffer& completed) { outcomes.push_back(completed.status()); });
        };
    }

    static std::uint64_t soundCommits() { return std::get<0>(GetParam()); }
    static std::size_t framesBehind() { return std::get<1>(GetParam()) == Pace::Lagging ? 3 : 0; }

    /// Presents that many frames; each would wait for ever had a slot been lost.
    void presentAtPace(int count) {
        gpu->setCompletesAtCommit(framesBehind() == 0);
        for (int frame = 0; frame < count; ++frame) {
            if (gpu->committedButIncomplete() == 3) {
                gpu->completeNext();
            }
            renderer->presentFrame();
        }
        gpu->completeAll();
    }

    int losses = 0;
    std::vector<CommandBufferStatus> outcomes;
};

std::string nameOf(const testing::TestParamInfo<std::tuple<std::uint64_t, Pace>>& info) {
    return std::to_string(std::get<0>(info.param)) + (std::get<1>(info.param) == Pace::Lagging ? "Lagging" : "AtOnce");
}

}  // namespace

TEST_P(QZLFrameLoopLostDevice, EveryFrameCompletesOnceAndTheOnesFromTheLossOnFail) {
    gpu->plan().lostAfterCommits = soundCommits();
    ASSERT_FALSE(attach());
    presentAtPace(frames);

    EXPECT_EQ(losses, 1);
    EXPECT_EQ(renderer->frames.size(), static_cast<std::size_t>(frames));
    ASSERT_EQ(outcomes.size(), static_cast<std::size_t>(frames));
    // Those that were in flight fail with it: the frames before the fatal one had to make room for it only.
    const std::size_t inFlight = framesBehind() == 0 ? 0 : std::min<std::size_t>(soundCommits(), 2);
    const std::size_t sound = soundCommits() - inFlight;
    for (std::size_t frame = 0; frame < outcomes.size(); ++frame) {
        EXPECT_EQ(outcomes[frame], frame < sound ? CommandBufferStatus::Completed : CommandBufferStatus::Error)
            << frame;
    }
}

TEST_P(QZLFrameLoopLostDevice, AttachingAnewDrawsOnAnotherDeviceAndTheLostOneGoes) {
    gpu->plan().lostAfterCommits = soundCommits();
    ASSERT_FALSE(attach());
    const std::weak_ptr<gpu::Device> lost = renderer->layer()->device();
    presentAtPace(frames);
    outcomes.clear();

    renderer->detachFromView();
    ASSERT_FALSE(attach());
    EXPECT_TRUE(lost.expired());
    EXPECT_FALSE(renderer->layer()->device()->isLost());
    presentAtPace(frames);
    EXPECT_THAT(outcomes, testing::AllOf(SizeIs(frames), Each(CommandBufferStatus::Completed)));
    EXPECT_EQ(losses, 1);

    renderer.reset();
    view.reset();
    EXPECT_EQ(gpu->liveObjects(), 0U);
}

INSTANTIATE_TEST_SUITE_P(After, QZLFrameLoopLostDevice,
                         testing::Combine(testing::Range<std::uint64_t>(0, 21),
                                          testing::Values(Pace::AtOnce, Pace::Lagging)),
                         nameOf);

namespace {

class QZLFrameLoopLoss : public FrameLoopTest {
protected:
    void attachForScreenshots() {
        std::filesystem::create_directory(desktop());
        view->viewBounds = {0, 0, 2, 2};
        renderer->setScreenshotsEnabled(true);
        renderer->onShouldSaveScreenshot = [] { return true; };
        ASSERT_FALSE(attach());
    }
    std::filesystem::path desktop() const { return home.path() / "Desktop"; }
};

}  // namespace

TEST_F(QZLFrameLoopLoss, AFrameThatFailsWithTheDeviceIsNotSaved) {
    gpu->plan().lostAfterCommits = 0;
    attachForScreenshots();
    present(5);
    EXPECT_TRUE(std::filesystem::is_empty(desktop()));
    EXPECT_EQ(renderer->frames.size(), 5U);
}

TEST_F(QZLFrameLoopLoss, ALossDuringTheReadBackSavesAWholeFileAndLosesNoSlot) {
    gpu->plan().lostAfterCommits = 1;  // the second commit is the screenshot's copy
    attachForScreenshots();
    gpu->setCompletesAtCommit(true);
    present(5);
    EXPECT_EQ(renderer->frames.size(), 5U);
    EXPECT_EQ(std::filesystem::file_size(desktop() / "Cirrane 0.bmp"), 70U);
    EXPECT_FALSE(std::filesystem::exists(desktop() / "Cirrane 1.bmp"));
}

TEST_F(QZLFrameLoopLoss, TheHandlerTellsWhenToAttachAnew) {
    gpu->plan().lostAfterCommits = 2;
    gpu->setCompletesAtCommit(true);
    bool isLost = false;
    ASSERT_FALSE(attach());
    gpu->setDeviceLostHandler([&isLost] { isLost = true; });
    while (!isLost) {
        present(1);
    }
    ASSERT_FALSE(attach());
    present(5);
    EXPECT_EQ(renderer->frames.size(), 8U);
    EXPECT_FALSE(renderer->layer()->device()->isLost());
}
