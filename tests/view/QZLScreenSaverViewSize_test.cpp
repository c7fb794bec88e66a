// What becomes of a view whose window changes its size.
#include "tests/view/ViewTest.hpp"

namespace {

using testing::Contains;
using testing::EndsWith;

class QZLScreenSaverViewSize : public ViewTest {
protected:
    void resizeTo(double width, double height) {
        view->viewBounds = {0, 0, width, height};
        made->sizeSettled();
    }

    std::unique_ptr<LookedAtView> made = makeView();
};

TEST_F(QZLScreenSaverViewSize, ANewSizeThatHasSettledIsAttachedAnew) {
    made->startAnimation();
    fire(3);
    resizeTo(800, 600);
    EXPECT_EQ(view->layer->drawableSize(), (gpu::Extent{800, 600}));
    EXPECT_TRUE(view->displayLink->running);
    EXPECT_TRUE(made->isAnimating());
    EXPECT_EQ(made->renderer()->frameNumber(), 3U) << "the animation carries on";
}

TEST_F(QZLScreenSaverViewSize, TheSameSizeIsLeftAlone) {
    made->startAnimation();
    const auto layer = view->layer;
    resizeTo(640, 480);
    EXPECT_EQ(view->layer, layer);
}

TEST_F(QZLScreenSaverViewSize, ANewScaleIsANewSize) {
    made->startAnimation();
    view->backingScale = 2.0;
    made->sizeSettled();
    EXPECT_EQ(view->layer->drawableSize(), (gpu::Extent{1280, 960}));
}

TEST_F(QZLScreenSaverViewSize, OneThatIsStoppedTakesItsNewSizeWhenItStarts) {
    made->startAnimation();
    made->stopAnimation();
    resizeTo(800, 600);
    EXPECT_FALSE(view->displayLink->exists);
    EXPECT_THAT(linesOf(*made), Contains(EndsWith("Stopped animation.")).Times(1));
    made->startAnimation();
    EXPECT_EQ(view->layer->drawableSize(), (gpu::Extent{800, 600}));
}

TEST_F(QZLScreenSaverViewSize, OneThatHasNotStartedIsLeftAlone) {
    resizeTo(800, 600);
    EXPECT_FALSE(view->displayLink->exists);
}

TEST_F(QZLScreenSaverViewSize, OneThatHasComeToAScreenThatDoesNotDrawGoesBlank) {
    made->startAnimation();
    view->screen = 1;
    resizeTo(800, 600);
    EXPECT_FALSE(made->renderer()->isAttached());
    EXPECT_EQ(view->layer, nullptr);
}

TEST_F(QZLScreenSaverViewSize, ANewSizeThatCannotBeDrawnAtShowsTheError) {
    made->startAnimation();
    gpu->plan().noCommandQueue = true;
    resizeTo(800, 600);
    ASSERT_TRUE(made->shownError());
    EXPECT_EQ(made->shownError()->code(), 303);
}

TEST_F(QZLScreenSaverViewSize, AWidgetIsAttachedAnewOnceItsNewSizeHasSettled) {
    gpu->setCompletesAtCommit(true);  // the link is a real one here
    LookedAtView widget(QZLMakeRenderer<RecordingRenderer>(), {0, 0, 320, 200}, true);
    widget.show();
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return widget.isAnimating(); }));
    const auto layerSize = [&] { return widget.renderer()->layer()->drawableSize(); };
    EXPECT_EQ(layerSize(), (gpu::Extent{320, 200}));
    for (int width = 330; width <= 400; width += 10) {
        widget.resize(width, 250);
        EXPECT_EQ(layerSize(), (gpu::Extent{320, 200})) << "stretched meanwhile";
    }
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return layerSize() == gpu::Extent{400, 250}; }));
}

}  // namespace
