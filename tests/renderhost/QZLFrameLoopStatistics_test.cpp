#include "tests/renderhost/FrameLoopTest.hpp"

namespace {

class QZLFrameLoopStatistics : public FrameLoopTest {};

}  // namespace

TEST_F(QZLFrameLoopStatistics, PreparationIsFromAfterTheScreenshotQuestionToBeforeTheCommit) {
    gpu->setCompletesAtCommit(true);
    renderer->setScreenshotsEnabled(true);
    renderer->onShouldSaveScreenshot = [this] {
        clock.advance(0.002);
        return false;
    };
    renderer->onDraw = [this](QZLDrawContext& context) {
        clock.advance(0.005);
        context.commandBuffer().addScheduledHandler([this](gpu::CommandBuffer&) { clock.advance(0.007); });
    };
    EXPECT_FALSE(attach());
    present(1);
    clock.advance(1.5);
    present(1);
    EXPECT_NEAR(statistics->framePreparationTime(), 0.005, 1e-9);
    EXPECT_NEAR(statistics->frameRenderingTime(), 0.007, 1e-9);
    EXPECT_NEAR(statistics->frameElapsedTime(), 0.012, 1e-9);
}

TEST_F(QZLFrameLoopStatistics, CallbacksReportToTheStatisticsOfTheirMoment) {
    const auto later = std::make_shared<QZLStatistics>();
    EXPECT_FALSE(attach());
    present(2);
    renderer->detachFromView();
    EXPECT_FALSE(renderer->attachToView(view, false, 0, later));
    gpu->completeNext();
    clock.advance(1.5);
    gpu->completeNext();
    EXPECT_GT(later->frameElapsedTime(), 0.0);
    EXPECT_EQ(statistics->frameElapsedTime(), 0.0);
}

TEST_F(QZLFrameLoopStatistics, CallbacksOfAFrameReportNothingOnceThereAreNoStatistics) {
    EXPECT_FALSE(attach());
    present(2);
    renderer->detachFromView();
    EXPECT_FALSE(renderer->attachToView(view, false, 0, nullptr));
    gpu->completeNext();
    clock.advance(1.5);
    gpu->completeNext();
    EXPECT_EQ(statistics->frameElapsedTime(), 0.0);
    present(3);  // the slots came back
}
