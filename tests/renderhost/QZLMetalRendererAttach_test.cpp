#include "foundation/QZLError.hpp"
#include "tests/renderhost/RendererTest.hpp"

#include <limits>

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {

class QZLMetalRendererAttach : public RendererTest {};

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// A machine whose graphics platform is new enough and yet makes no layer.
class LayerlessBackend final : public gpu::Backend {
public:
    std::string platformVersion() override { return "10.13.0"; }
    std::shared_ptr<gpu::Layer> newLayer() override { return nullptr; }

private:
    std::shared_ptr<gpu::Device> openDevice() override { return nullptr; }
};

void expectFailedAttach(RendererWorld& world, std::int64_t code, std::int64_t subCode) {
    const auto error = world.attach();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), code);
    EXPECT_EQ(QZLGetErrorSubCode(*error), subCode);
    EXPECT_EQ(error->domain(), QZLVistashadeErrorDomain);
    EXPECT_FALSE(world.renderer->isAttached());
    EXPECT_EQ(world.renderer->view(), nullptr);
    EXPECT_EQ(world.renderer->layer(), nullptr);
    EXPECT_FALSE(world.view->displayLink->exists);
    EXPECT_EQ(world.journalLines().back(), "Failed to attach Metal renderer.");
    EXPECT_THAT(world.journalLines(), Not(Contains("Detached Metal renderer.")));
}

}  // namespace

TEST_F(QZLMetalRendererAttach, MakesLayerQueueDescriptorAndLinkInThisOrder) {
    view->displayLink->record = [this](const std::string& call) { gpu->record(call); };
    EXPECT_FALSE(attach());
    EXPECT_THAT(gpu->calls(), ElementsAre("newLayer", "openDevice", "newCommandQueue", "newRenderPassDescriptor",
                                          "createDisplayLink"));
    EXPECT_THAT(journalLines(),
                ElementsAre("Metal device: " + renderer->layer()->device()->name(), "Drawable size: 640 x 480.",
                            "Requested display native frame rate, selected frame rate 60.00 Hz.",
                            "Attached Metal renderer successfully."));
    EXPECT_TRUE(renderer->isAttached());
    EXPECT_EQ(renderer->view(), view);
    EXPECT_FALSE(view->displayLink->running);
    view->displayLink->record = nullptr;
}

TEST_F(QZLMetalRendererAttach, InstallsTheLayerInTheView) {
    renderer->setClearFrameColor({0.1, 0.2, 0.3, 0.4});
    EXPECT_FALSE(attach());
    ASSERT_NE(renderer->layer(), nullptr);
    EXPECT_EQ(view->layer, renderer->layer());
    EXPECT_TRUE(view->wantsLayer);
    EXPECT_EQ(renderer->layer()->device(), gpu::createSystemDefaultDevice());
    EXPECT_EQ(renderer->layer()->pixelFormat(), gpu::PixelFormat::BGRA8Unorm);
    EXPECT_TRUE(renderer->layer()->framebufferOnly());
    EXPECT_EQ(renderer->layer()->backgroundColor(), (gpu::ClearColor{0.1, 0.2, 0.3, 0.4}));
}

TEST_F(QZLMetalRendererAttach, ScreenshotsMakeTheLayerReadable) {
    renderer->setScreenshotsEnabled(true);
    EXPECT_FALSE(attach());
    EXPECT_FALSE(renderer->layer()->framebufferOnly());
}

TEST_F(QZLMetalRendererAttach, ScreenshotsEnabledLaterTakeEffectWithTheNextAttach) {
    EXPECT_FALSE(attach());
    renderer->setScreenshotsEnabled(true);
    EXPECT_TRUE(renderer->layer()->framebufferOnly());
    renderer->detachFromView();
    EXPECT_FALSE(attach());
    EXPECT_FALSE(renderer->layer()->framebufferOnly());
}

TEST_F(QZLMetalRendererAttach, TheLayerHasTheViewsSizeInDevicePixels) {
    view->viewBounds = {0, 0, 100, 50};
    view->backingScale = 2.0;
    EXPECT_FALSE(attach());
    EXPECT_EQ(renderer->layer()->drawableSize(), (gpu::Extent{200, 100}));
    EXPECT_THAT(journalLines(), Contains("Drawable size: 200 x 100."));
}

TEST_F(QZLMetalRendererAttach, SizesAreTruncated) {
    view->viewBounds = {0, 0, 100.99, 50.5};
    EXPECT_FALSE(attach());
    EXPECT_THAT(journalLines(), Contains("Drawable size: 100 x 50."));
}

TEST_F(QZLMetalRendererAttach, WhatIsNoSizeBecomesNone) {
    view->viewBounds = {0, 0, notANumber, -5};
    EXPECT_FALSE(attach());
    EXPECT_THAT(journalLines(), Contains("Drawable size: 0 x 0."));
    view->viewBounds = {0, 0, infinity, 1e300};
    renderer->sizeLayerToView();
    EXPECT_EQ(renderer->layer()->drawableSize(), (gpu::Extent{2147483647, 2147483647}));
}

TEST_F(QZLMetalRendererAttach, SizeLayerToViewFollowsTheView) {
    renderer->sizeLayerToView();  // no layer yet
    EXPECT_FALSE(attach());
    view->viewBounds = {0, 0, 800, 600};
    EXPECT_EQ(renderer->layer()->drawableSize(), (gpu::Extent{640, 480}));
    renderer->sizeLayerToView();
    EXPECT_EQ(renderer->layer()->drawableSize(), (gpu::Extent{800, 600}));
}

TEST_F(QZLMetalRendererAttach, SizeLayerToViewDoesNothingWhenTheViewHasGone) {
    EXPECT_FALSE(attach());
    view.reset();
    renderer->sizeLayerToView();
    EXPECT_EQ(renderer->layer()->drawableSize(), (gpu::Extent{640, 480}));
}

TEST_F(QZLMetalRendererAttach, TheLinkIsMadeForTheViewsScreen) {
    view->screen = 7;
    EXPECT_FALSE(attach());
    EXPECT_EQ(view->displayLink->display, 7U);
}

TEST_F(QZLMetalRendererAttach, AViewInNoWindowIsOnDisplayZero) {
    view->screen = std::nullopt;
    view->displayLink->display = 99;
    EXPECT_FALSE(attach());
    EXPECT_EQ(view->displayLink->display, 0U);
}

TEST_F(QZLMetalRendererAttach, WorksWithoutJournalAndStatistics) {
    renderer->setJournal(nullptr);
    EXPECT_FALSE(renderer->attachToView(view, true, 3, nullptr));
    gpu->setCompletesAtCommit(true);
    renderer->startAnimation();
    fire(5);
    renderer->stopAnimation();
    renderer->detachFromView();
    EXPECT_EQ(renderer->frames.size(), 5U);
    EXPECT_THAT(journalLines(), ElementsAre());
}

TEST(QZLMetalRendererAttachFailure, TheFirstFailingStepsCodeWins) {
    for (unsigned faults = 1; faults < 128; ++faults) {
        const auto has = [faults](unsigned bit) { return (faults & (1U << bit)) != 0; };
        SCOPED_TRACE(faults);
        RendererWorld world;
        fake::FaultPlan& plan = world.gpu->plan();
        plan.platformVersion = has(0) ? "10.10.5" : has(1) ? "" : "10.13.239";
        plan.noDevice = has(2);
        plan.noCommandQueue = has(3);
        plan.failingRenderPassDescriptors = has(4) ? std::set<std::uint64_t>{0} : std::set<std::uint64_t>{};
        world.view->displayLink->createResult = has(5) ? platform::displayLinkAllocationFailed : 0;
        world.view->displayLink->setOutputCallbackResult = has(6) ? platform::displayLinkError : 0;
        if (has(0) || has(1)) {
            expectFailedAttach(world, 301, 0);
        } else if (has(2) || has(3)) {
            expectFailedAttach(world, 303, 0);
        } else if (has(4)) {
            expectFailedAttach(world, 304, 0);
        } else if (has(5)) {
            expectFailedAttach(world, 200, platform::displayLinkAllocationFailed);
        } else {
            expectFailedAttach(world, 201, platform::displayLinkError);
        }
    }
}

TEST(QZLMetalRendererAttachFailure, TheMessageIsTheCodes) {
    RendererWorld world;
    world.view->displayLink->createResult = platform::displayLinkError;
    EXPECT_EQ(world.attach()->localizedDescription(), "QZL_ERROR_DISPLAY_LINK_INITIALIZE");
}

TEST(QZLMetalRendererAttachFailure, AMissingDeviceIsNamedNull) {
    RendererWorld world;
    world.gpu->plan().noDevice = true;
    expectFailedAttach(world, 303, 0);
    EXPECT_THAT(world.journalLines(),
                ElementsAre("Metal device: (null)", "Drawable size: 640 x 480.", "Failed to attach Metal renderer."));
}

TEST(QZLMetalRendererAttachFailure, AnOldPlatformGetsNoLayer) {
    RendererWorld world;
    world.gpu->plan().platformVersion = "10.10.9";
    expectFailedAttach(world, 301, 0);
    EXPECT_THAT(world.journalLines(), ElementsAre("Failed to attach Metal renderer."));
    EXPECT_EQ(world.view->layer, nullptr);
    EXPECT_FALSE(world.view->wantsLayer);
    EXPECT_THAT(world.gpu->calls(), ElementsAre("newRenderPassDescriptor"));
}

TEST(QZLMetalRendererAttachFailure, VersionTenElevenIsEnough) {
    RendererWorld world;
    world.gpu->plan().platformVersion = "10.11.0";
    EXPECT_FALSE(world.attach());
}

TEST(QZLMetalRendererAttachFailure, ABackendWithoutLayersCountsAsNoLayer) {
    RendererWorld world;
    gpu::setBackend(std::make_shared<LayerlessBackend>());
    QZLForgetMacOsVersion();
    expectFailedAttach(world, 301, 0);
}

TEST(QZLMetalRendererAttachFailure, WithoutAViewThereIsNoDisplayLink) {
    RendererWorld world;
    world.view = nullptr;
    const auto error = world.attach();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 200);
    EXPECT_EQ(QZLGetErrorSubCode(*error), platform::displayLinkInvalidArgument);
    EXPECT_THAT(world.journalLines(), Contains("Drawable size: 0 x 0."));
}

TEST(QZLMetalRendererAttachFailure, ALinkWhoseCallbackIsRefusedIsReleased) {
    RendererWorld world;
    std::vector<std::string> calls;
    world.view->displayLink->record = [&calls](const std::string& call) { calls.push_back(call); };
    world.view->displayLink->setOutputCallbackResult = platform::displayLinkError;
    expectFailedAttach(world, 201, platform::displayLinkError);
    EXPECT_THAT(calls, ElementsAre("createDisplayLink", "releaseDisplayLink"));
}

TEST(QZLMetalRendererAttachFailure, TheSubclassIsDetached) {
    RendererWorld world;
    world.gpu->plan().noDevice = true;
    int detached = 0;
    world.renderer->onDetach = [&detached] { ++detached; };
    EXPECT_TRUE(world.attach());
    EXPECT_EQ(detached, 1);
    world.renderer->onDetach = nullptr;
}

TEST(QZLMetalRendererAttachFailure, ALaterAttachMaySucceed) {
    RendererWorld world;
    world.gpu->plan().noDevice = true;
    EXPECT_TRUE(world.attach());
    world.gpu->plan().noDevice = false;
    EXPECT_FALSE(world.attach());
    EXPECT_TRUE(world.renderer->isAttached());
}
