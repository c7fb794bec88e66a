// What becomes of a session whose loop freezes or whose device is lost.
#include "foundation/QZLError.hpp"
#include "saver/QZLCirraneSession.hpp"
#include "tests/saver/SaverTest.hpp"
#include "tests/support/CountedDisplayLink.hpp"
#include "tests/support/Waiting.hpp"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

class QZLCirraneSessionFaults : public SaverTest {
protected:
    void fire(int refreshes) {
        for (int refresh = 0; refresh < refreshes; ++refresh) {
            view->displayLink->fire();
        }
    }
};

class QZLCirraneSessionLoss : public QZLCirraneSessionFaults, public testing::WithParamInterface<std::uint64_t> {};

TEST_P(QZLCirraneSessionLoss, GoesOnWithoutAPictureAndRecoversWhenStartedAnew) {
    int losses = 0;
    gpu->setDeviceLostHandler([&losses] { ++losses; });
    gpu->plan().lostAfterCommits = GetParam();
    gpu->setCompletesAtCommit(true);
    QZLCirraneSession session(view, false, 0);
    ASSERT_FALSE(session.startAnimation());
    const std::weak_ptr<gpu::Device> lost = view->layer->device();
    fire(25);
    EXPECT_EQ(losses, 1);
    EXPECT_EQ(session.renderer().frameNumber(), 25U);
    const auto shown = fake::Gpu::lastPresented(*view->layer);
    EXPECT_EQ(shown != nullptr ? shown->identifier() + 1 : 0, GetParam()) << "the last frame before the loss stays";

    session.stopAnimation();
    session.detach();
    ASSERT_FALSE(session.startAnimation());
    fire(5);
    EXPECT_EQ(session.renderer().frameNumber(), 30U);
    ASSERT_NE(fake::Gpu::lastPresented(*view->layer), nullptr);
    EXPECT_EQ(fake::Gpu::lastPresented(*view->layer)->identifier(), 4U);
    EXPECT_NE(view->layer->device(), lost.lock());
    EXPECT_EQ(losses, 1);
}

INSTANTIATE_TEST_SUITE_P(After, QZLCirraneSessionLoss, testing::Range<std::uint64_t>(0, 21));

TEST_F(QZLCirraneSessionFaults, AFrozenOneStopsDetachesAndEnds) {
    const fake::Watchdog watchdog;
    gpu->plan().failingDrawables = {0, 1, 2};
    {
        const auto refreshing = std::make_shared<fake::RefreshingView>();
        QZLCirraneSession session(refreshing, false, 0);
        ASSERT_FALSE(session.startAnimation());
        ASSERT_TRUE(fake::eventually([&] { return refreshing->refreshes->begun == 4; }));
        session.stopAnimation();
        EXPECT_TRUE(session.renderer().isAbandoned());
        session.detach();

        const auto error = session.startAnimation();
        ASSERT_TRUE(error);
        EXPECT_EQ(error->code(), 200);
        EXPECT_EQ(QZLGetErrorSubCode(*error), platform::displayLinkAbandoned);
    }
    QZLCirraneSession other(view, false, 0);
    EXPECT_FALSE(other.startAnimation()) << "a frozen session keeps no other from running";
    gpu->setCompletesAtCommit(true);
    fire(5);
    EXPECT_THAT(gpu->draws(), SizeIs(10));
}

}  // namespace
