// What becomes of a view whose loop freezes or whose device is lost.
#include "foundation/QZLError.hpp"
#include "saver/QZLCirraneView.hpp"
#include "tests/saver/SaverTest.hpp"
#include "tests/support/CountedDisplayLink.hpp"
#include "tests/support/Waiting.hpp"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

class QZLCirraneViewFaults : public SaverTest {
protected:
    static std::unique_ptr<QZLCirraneView> makeView(std::shared_ptr<platform::HostView> hostView) {
        auto made = std::make_unique<QZLCirraneView>(platform::Rect{0, 0, 640, 480}, true);
        made->setHostView(std::move(hostView));
        return made;
    }

    void fire(int refreshes) {
        for (int refresh = 0; refresh < refreshes; ++refresh) {
            view->displayLink->fire();
        }
    }
};

class QZLCirraneViewLoss : public QZLCirraneViewFaults, public testing::WithParamInterface<std::uint64_t> {};

TEST_P(QZLCirraneViewLoss, GoesOnWithoutAPictureAndIsFollowedByOneThatDraws) {
    int losses = 0;
    gpu->setDeviceLostHandler([&losses] { ++losses; });
    gpu->plan().lostAfterCommits = GetParam();
    gpu->setCompletesAtCommit(true);
    auto made = makeView(view);
    made->startAnimation();
    ASSERT_FALSE(made->shownError());
    const std::weak_ptr<gpu::Device> lost = view->layer->device();
    fire(25);
    EXPECT_EQ(losses, 1);
    const auto shown = fake::Gpu::lastPresented(*view->layer);
    EXPECT_EQ(shown != nullptr ? shown->identifier() + 1 : 0, GetParam()) << "the last frame before the loss stays";

    made.reset();
    made = makeView(view);
    made->startAnimation();
    ASSERT_FALSE(made->shownError());
    fire(5);
    ASSERT_NE(fake::Gpu::lastPresented(*view->layer), nullptr);
    EXPECT_EQ(fake::Gpu::lastPresented(*view->layer)->identifier(), 4U);
    EXPECT_NE(view->layer->device(), lost.lock());
    EXPECT_EQ(losses, 1);
}

INSTANTIATE_TEST_SUITE_P(After, QZLCirraneViewLoss, testing::Range<std::uint64_t>(0, 21));

TEST_F(QZLCirraneViewFaults, AFrozenOneStopsAndEndsAndKeepsNoOtherFromRunning) {
    const fake::Watchdog watchdog;
    gpu->plan().failingDrawables = {0, 1, 2};
    {
        const auto refreshing = std::make_shared<fake::RefreshingView>();
        const auto frozen = makeView(refreshing);
        frozen->startAnimation();
        ASSERT_FALSE(frozen->shownError());
        ASSERT_TRUE(fake::eventually([&] { return refreshing->refreshes->begun == 4; }));
        frozen->stopAnimation();
        EXPECT_FALSE(frozen->isAnimating());
    }
    const auto other = makeView(view);
    other->startAnimation();
    EXPECT_FALSE(other->shownError());
    gpu->setCompletesAtCommit(true);
    fire(5);
    EXPECT_THAT(gpu->draws(), SizeIs(10));
}

TEST_F(QZLCirraneViewFaults, AFrozenOneThatIsResizedShowsThatItCannotGoOn) {
    const fake::Watchdog watchdog;
    gpu->plan().failingDrawables = {0, 1, 2};
    const auto refreshing = std::make_shared<fake::RefreshingView>();
    struct Resized : QZLScreenSaverView {
        using QZLScreenSaverView::QZLScreenSaverView;
        using QZLScreenSaverView::renderer;
    };
    Resized frozen(QZLMakeRenderer<QZLCirraneRenderer>(), {0, 0, 16, 16}, true);
    frozen.setHostView(refreshing);
    frozen.startAnimation();
    ASSERT_TRUE(fake::eventually([&] { return refreshing->refreshes->begun == 4; }));
    frozen.stopAnimation();
    EXPECT_TRUE(frozen.renderer()->isAbandoned());
    frozen.renderer()->detachFromView();
    frozen.startAnimation();
    ASSERT_TRUE(frozen.shownError());
    EXPECT_EQ(frozen.shownError()->code(), 200);
    EXPECT_EQ(QZLGetErrorSubCode(*frozen.shownError()), platform::displayLinkAbandoned);
}

}  // namespace
