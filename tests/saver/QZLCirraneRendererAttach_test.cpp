#include "foundation/QZLError.hpp"
#include "tests/saver/SaverTest.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class QZLCirraneRendererAttach : public SaverTest {
protected:
    void attachAtSize(double width, double height) {
        view->viewBounds = {0, 0, width, height};
        renderer = makeRenderer();
        error = attach(*renderer);
    }

    std::shared_ptr<QZLCirraneRenderer> renderer;
    std::optional<platform::Error> error;
};

TEST_F(QZLCirraneRendererAttach, JournalTellsSeedAndSizesInOrder) {
    clock.setCalendarSeconds(0xABC);
    attachAtSize(1920, 1080);
    EXPECT_FALSE(error);
    const auto lines = journalLines();
    ASSERT_GE(lines.size(), 4U);
    EXPECT_EQ(lines.front(), "Seed: 0x00000abc.");
    EXPECT_EQ(lines[lines.size() - 3], "Attached Metal renderer successfully.");
    EXPECT_EQ(lines[lines.size() - 2], "View size: 1920 x 1080.");
    EXPECT_EQ(lines[lines.size() - 1], "Intermediate size: 843 x 474.");
}

TEST_F(QZLCirraneRendererAttach, SmallViewIsComposedAtItsOwnSize) {
    attachAtSize(640, 480);
    EXPECT_FALSE(error);
    EXPECT_EQ(renderer->intermediateWidth(), 640U);
    EXPECT_EQ(renderer->intermediateHeight(), 480U);
}

TEST_F(QZLCirraneRendererAttach, HugeViewIsComposedAtAThird) {
    attachAtSize(5120, 2880);
    EXPECT_FALSE(error);
    EXPECT_EQ(renderer->intermediateWidth(), 1707U);
    EXPECT_EQ(renderer->intermediateHeight(), 960U);
}

TEST_F(QZLCirraneRendererAttach, SizesAreDevicePixelsTruncated) {
    view->backingScale = 1.5;
    attachAtSize(201, 101);
    EXPECT_FALSE(error);
    EXPECT_THAT(journalLines(), Contains("View size: 301 x 151."));
}

TEST_F(QZLCirraneRendererAttach, LightQuadStopsAtTheLastTexels) {
    attachAtSize(640, 480);
    const auto u = static_cast<float>(639.0 / 640.0);
    const auto v = static_cast<float>(479.0 / 480.0);
    const float expected[4][4] = {{-1, -1, 0, v}, {1, -1, u, v}, {-1, 1, 0, 0}, {1, 1, u, 0}};
    for (std::size_t corner = 0; corner < 4; ++corner) {
        const QZLLightVertex& vertex = renderer->lightVertices()[corner];
        EXPECT_THAT(vertex.screenPosition, ElementsAre(expected[corner][0], expected[corner][1])) << corner;
        EXPECT_THAT(vertex.texturePosition, ElementsAre(expected[corner][2], expected[corner][3])) << corner;
    }
}

TEST_F(QZLCirraneRendererAttach, SinglePixelWorks) {
    attachAtSize(1, 1);
    EXPECT_FALSE(error);
    EXPECT_EQ(renderer->lightVertices()[1].texturePosition[0], 0.0F);
}

struct OddSize {
    double width;
    double height;
    const char* viewSize;
};

void PrintTo(const OddSize& size, std::ostream* out) {
    *out << size.width << " x " << size.height;
}

class QZLCirraneRendererAttachToNoSize : public QZLCirraneRendererAttach,
                                         public testing::WithParamInterface<OddSize> {};

TEST_P(QZLCirraneRendererAttachToNoSize, FailsAtTheFirstIntermediateTexture) {
    attachAtSize(GetParam().width, GetParam().height);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 107);
    EXPECT_EQ(QZLGetErrorSubCode(*error), 1005);
    EXPECT_THAT(journalLines(), Contains(GetParam().viewSize));
}

INSTANTIATE_TEST_SUITE_P(All, QZLCirraneRendererAttachToNoSize,
                         testing::Values(OddSize{0, 0, "View size: 0 x 0."}, OddSize{0.9, 480, "View size: 0 x 480."},
                                         OddSize{-5, 480, "View size: 0 x 480."},
                                         OddSize{std::numeric_limits<double>::quiet_NaN(), 480,
                                                 "View size: 0 x 480."}));

TEST_F(QZLCirraneRendererAttach, SizeOfNothingGivesInfiniteTextureCoordinates) {
    attachAtSize(0, 0);
    EXPECT_THAT(journalLines(), AllOf(Contains("View size: 0 x 0."), Contains("Intermediate size: 0 x 0.")));
    EXPECT_TRUE(std::isinf(renderer->lightVertices()[1].texturePosition[0]));
    EXPECT_TRUE(std::isinf(renderer->lightVertices()[1].texturePosition[1]));
}

TEST_F(QZLCirraneRendererAttach, ViewThatIsGoneMeanwhileHasNoSize) {
    renderer = makeRenderer();
    std::shared_ptr<platform::HostView> mortal = view;
    view->displayLink->record = [&](const std::string& call) {
        if (call == "createDisplayLink") {
            view.reset();
            mortal.reset();
        }
    };
    error = renderer->attachToView(mortal, false, 0, nullptr);
    EXPECT_EQ(renderer->view(), nullptr);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 107);
    EXPECT_EQ(QZLGetErrorSubCode(*error), 1005);
    EXPECT_THAT(journalLines(), AllOf(Contains("View size: 0 x 0."), Contains("Intermediate size: 0 x 0.")));
    renderer.reset();  // its display link still calls the function above
}

TEST_F(QZLCirraneRendererAttach, SizeBeyondAllMeasureIsAnErrorAndNoCrash) {
    attachAtSize(std::numeric_limits<double>::infinity(), 1e300);
    EXPECT_TRUE(error);
}

TEST_F(QZLCirraneRendererAttach, NothingFollowsAFailureOfTheBase) {
    gpu->plan().noCommandQueue = true;
    attachAtSize(640, 480);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 303);
    EXPECT_EQ(journalLines().front(), "Seed: 0x6553f100.");
    EXPECT_EQ(journalLines().back(), "Failed to attach Metal renderer.");
    EXPECT_THAT(journalLines(), Not(Contains("View size: 640 x 480.")));
    EXPECT_EQ(renderer->intermediateWidth(), 0U);
}

TEST_F(QZLCirraneRendererAttach, OldPlatformIsAnErrorThatStillTellsTheSizes) {
    gpu->plan().platformVersion = "10.12.6";
    RecordedRandom random({1});
    attachAtSize(1920, 1080);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 300);
    EXPECT_EQ(journalLines().back(), "Intermediate size: 843 x 474.");
    EXPECT_NE(renderer->lightVertices()[1].texturePosition[0], 0.0F);
    EXPECT_EQ(random.draws, 4U) << "no noise was made";
}

TEST_F(QZLCirraneRendererAttach, MissingFeaturesAreAnErrorThatStillTellsTheSizes) {
    gpu->plan().noFeatureSet = true;
    attachAtSize(1920, 1080);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 302);
    EXPECT_EQ(QZLGetErrorSubCode(*error), 0);
    EXPECT_EQ(journalLines().back(), "Intermediate size: 843 x 474.");
}

TEST_F(QZLCirraneRendererAttach, OldPlatformWinsOverMissingFeatures) {
    gpu->plan().platformVersion = "10.12.6";
    gpu->plan().noFeatureSet = true;
    attachAtSize(640, 480);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 300);
}

TEST_F(QZLCirraneRendererAttach, SecondAttachKeepsThePhasesAndTakesTheNewSize) {
    attachAtSize(640, 480);
    ASSERT_FALSE(error);
    renderer->setAnimationState({1.0, 2.0, 3.0, 0.5});
    const std::uint32_t seed = renderer->seed();
    renderer->detachFromView();

    clock.setCalendarSeconds(clock.calendarSeconds() + 100);
    view->viewBounds = {0, 0, 1920, 1080};
    EXPECT_FALSE(attach(*renderer));
    EXPECT_EQ(renderer->intermediateWidth(), 843U);
    EXPECT_EQ(renderer->intermediateHeight(), 474U);
    EXPECT_EQ(renderer->seed(), seed);
    EXPECT_EQ(renderer->animationState().motionAngle, 1.0);
    EXPECT_EQ(renderer->animationState().wobblePhase, 2.0);
    EXPECT_EQ(renderer->animationState().fBmAngle, 3.0);
    EXPECT_EQ(renderer->animationState().baseHue, 0.5);
}

TEST_F(QZLCirraneRendererAttach, DetachLetsGoOfTheDevice) {
    attachAtSize(640, 480);
    const std::weak_ptr<gpu::Device> device = renderer->layer()->device();
    renderer->detachFromView();
    view->layer.reset();
    EXPECT_TRUE(device.expired());
}

TEST_F(QZLCirraneRendererAttach, LastOwnerDetaches) {
    attachAtSize(640, 480);
    renderer.reset();
    EXPECT_EQ(journalLines().back(), "Detached Metal renderer.");
    EXPECT_FALSE(view->displayLink->exists);
}

TEST_F(QZLCirraneRendererAttach, NothingIsReleasedWhileACallbackMayStillRun) {
    QZLCirraneRenderer stuck;  // one made with QZLMakeRenderer would be leaked
    ASSERT_FALSE(attach(stuck));
    const std::weak_ptr<gpu::Device> device = stuck.layer()->device();
    const long users = device.use_count();
    view->displayLink->stopResult = platform::displayLinkAbandoned;
    stuck.detachFromView();
    EXPECT_TRUE(stuck.isAbandoned());
    EXPECT_EQ(device.use_count(), users);
    view->displayLink->stopResult = platform::displayLinkSuccess;
}

struct ScreenshotCase {
    bool isPreview;
    std::int64_t screenIndex;
    std::int64_t interval;
    bool enabled;
};

class QZLCirraneRendererScreenshots : public SaverTest, public testing::WithParamInterface<ScreenshotCase> {};

TEST_P(QZLCirraneRendererScreenshots, AreForTheMainScreenOfARealRunWithAnInterval) {
    defaults().setScreenshotInterval(GetParam().interval);
    const auto renderer = makeRenderer();
    EXPECT_FALSE(renderer->attachToView(view, GetParam().isPreview, GetParam().screenIndex, nullptr));
    EXPECT_EQ(renderer->screenshotsEnabled(), GetParam().enabled);
    EXPECT_EQ(view->layer->framebufferOnly(), !GetParam().enabled);
}

INSTANTIATE_TEST_SUITE_P(All, QZLCirraneRendererScreenshots,
                         testing::Values(ScreenshotCase{false, 0, 2, true}, ScreenshotCase{false, 0, 0, false},
                                         ScreenshotCase{true, 0, 2, false}, ScreenshotCase{false, 1, 2, false},
                                         ScreenshotCase{false, -1, 2, false}, ScreenshotCase{false, 0, 99, true}));

TEST_F(QZLCirraneRendererAttach, IntervalChosenAfterAttachCountsAtTheNext) {
    attachAtSize(640, 480);
    defaults().setScreenshotInterval(1);
    renderer->configurationChanged();
    EXPECT_FALSE(renderer->screenshotsEnabled());
    renderer->detachFromView();
    EXPECT_FALSE(attach(*renderer));
    EXPECT_TRUE(renderer->screenshotsEnabled());
}

}  // namespace
