// Every single call to the GPU that an attach makes fails once, in the order in which they are made.
#include "foundation/QZLError.hpp"
#include "tests/saver/SaverTest.hpp"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

/// A call of a sound attach, and the error that its failure is.
struct Call {
    const char* text;
    std::int64_t code;
    std::int64_t subCode;
};

const std::vector<Call> callsOfAnAttach{
    {"newLayer", 301, 0},
    {"openDevice", 303, 0},
    {"newCommandQueue", 303, 0},
    {"newRenderPassDescriptor", 304, 0},
    {"newLibrary default.metallib", 101, 1000},
    {"newFunction QZLColorVertexShader", 102, 1000},
    {"newFunction QZLColorFragmentShader", 103, 1000},
    {"newRenderPipeline QZLColorVertexShader+QZLColorFragmentShader [RGB10A2Unorm, R16Unorm] 480", 105, 1000},
    {"newLibrary default.metallib", 101, 1001},
    {"newFunction QZLLightVertexShader", 102, 1001},
    {"newFunction QZLLightFragmentShader", 103, 1001},
    {"newRenderPipeline QZLLightVertexShader+QZLLightFragmentShader [BGRA8Unorm]", 105, 1001},
    {"newBuffer 40", 108, 1002},
    {"newBuffer 40", 108, 1002},
    {"newBuffer 40", 108, 1002},
    {"newBuffer 16", 108, 1003},
    {"newBuffer 16", 108, 1003},
    {"newBuffer 16", 108, 1003},
    {"newTexture R8Snorm 256x256 usage 1 storage 1", 107, 1004},
    {"replaceRegion R8Snorm 256x256 0,0 256x256", 107, 1004},
    {"newTexture RGB10A2Unorm 640x480 usage 5 storage 2", 107, 1005},
    {"newTexture RGB10A2Unorm 640x480 usage 5 storage 2", 107, 1005},
    {"newTexture RGB10A2Unorm 640x480 usage 5 storage 2", 107, 1005},
    {"newTexture R16Unorm 640x480 usage 5 storage 2", 107, 1006},
    {"newTexture R16Unorm 640x480 usage 5 storage 2", 107, 1006},
    {"newTexture R16Unorm 640x480 usage 5 storage 2", 107, 1006},
    {"newRenderPassDescriptor", 304, 1007},
    {"newRenderPassDescriptor", 304, 1007},
    {"newRenderPassDescriptor", 304, 1007},
};

class QZLCirraneRendererFaults : public SaverTest {
protected:
    /// What somebody still holds once the renderer is detached and the view has let go of its layer.
    std::size_t leftBehind(QZLCirraneRenderer& renderer) {
        renderer.detachFromView();
        view->layer.reset();
        return gpu->liveObjects();
    }

    /// Draws a few frames, and tells how many of their draws were done.
    std::size_t drawsOf(QZLCirraneRenderer& renderer, int frames) {
        const std::size_t before = gpu->draws().size();
        gpu->setCompletesAtCommit(true);
        renderer.startAnimation();
        for (int frame = 0; frame < frames; ++frame) {
            view->displayLink->fire();
        }
        renderer.stopAnimation();
        return gpu->draws().size() - before;
    }
};

TEST_F(QZLCirraneRendererFaults, TheListIsOfEveryCallThatASoundAttachMakes) {
    const auto renderer = makeRenderer();
    ASSERT_FALSE(attach(*renderer));
    const auto calls = gpu->calls();
    ASSERT_THAT(calls, SizeIs(callsOfAnAttach.size()));
    for (std::size_t call = 0; call < calls.size(); ++call) {
        EXPECT_EQ(calls[call], callsOfAnAttach[call].text);
    }
}

TEST_F(QZLCirraneRendererFaults, EveryCallThatFailsIsItsErrorAndLeavesNothingBehind) {
    const auto renderer = makeRenderer();
    std::uint64_t callsSoFar = 0;
    for (std::size_t failing = 0; failing < callsOfAnAttach.size(); ++failing) {
        const Call& call = callsOfAnAttach[failing];
        SCOPED_TRACE(std::to_string(failing) + ": " + call.text);
        gpu->clearCalls();
        gpu->plan().failingCalls = {callsSoFar + failing};
        const auto error = attach(*renderer);
        callsSoFar += gpu->calls().size();
        ASSERT_TRUE(error);
        EXPECT_EQ(error->domain(), QZLVistashadeErrorDomain);
        EXPECT_EQ(error->code(), call.code);
        EXPECT_EQ(QZLGetErrorSubCode(*error), call.subCode);
        EXPECT_THAT(gpu->calls(), testing::Contains(std::string(call.text) + " failed").Times(1));
        EXPECT_EQ(leftBehind(*renderer), 0U);
        EXPECT_FALSE(view->displayLink->exists);
    }
}

TEST_F(QZLCirraneRendererFaults, TheAttachAfterAnyFailureSucceedsAndDraws) {
    for (std::size_t failing = 0; failing < callsOfAnAttach.size(); ++failing) {
        SCOPED_TRACE(std::to_string(failing) + ": " + callsOfAnAttach[failing].text);
        const fake::ScopedGpu machine;
        machine->plan().failingCalls = {failing};
        const auto renderer = makeRenderer();
        ASSERT_TRUE(attach(*renderer));
        renderer->detachFromView();
        ASSERT_FALSE(attach(*renderer));
        machine->setCompletesAtCommit(true);
        renderer->startAnimation();
        for (int frame = 0; frame < 5; ++frame) {
            view->displayLink->fire();
        }
        EXPECT_THAT(machine->draws(), SizeIs(10));
        renderer->detachFromView();
        view->layer.reset();
        EXPECT_EQ(machine->liveObjects(), 0U);
    }
}

TEST_F(QZLCirraneRendererFaults, WithoutABundleItIsTheFirstPipelineThatFails) {
    platform::Bundle::setOverride(nullptr);
    const auto renderer = makeRenderer();
    const auto error = attach(*renderer);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 100);
    EXPECT_EQ(QZLGetErrorSubCode(*error), 1000);
    EXPECT_EQ(leftBehind(*renderer), 0U);
}

TEST_F(QZLCirraneRendererFaults, WithoutADisplayLinkNothingIsLeftEither) {
    const auto renderer = makeRenderer();
    view->displayLink->createResult = platform::displayLinkAllocationFailed;
    auto error = attach(*renderer);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 200);
    EXPECT_EQ(QZLGetErrorSubCode(*error), platform::displayLinkAllocationFailed);
    EXPECT_EQ(leftBehind(*renderer), 0U);

    view->displayLink->createResult = platform::displayLinkSuccess;
    view->displayLink->setOutputCallbackResult = platform::displayLinkError;
    error = attach(*renderer);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 201);
    EXPECT_EQ(QZLGetErrorSubCode(*error), platform::displayLinkError);
    EXPECT_EQ(leftBehind(*renderer), 0U);

    view->displayLink->setOutputCallbackResult = platform::displayLinkSuccess;
    EXPECT_FALSE(attach(*renderer));
}

TEST_F(QZLCirraneRendererFaults, AnAttachAfterASoundOneIsFreeOfTheFormerObjects) {
    const auto renderer = makeRenderer();
    ASSERT_FALSE(attach(*renderer));
    const std::size_t attached = gpu->liveObjects();
    renderer->detachFromView();
    ASSERT_FALSE(attach(*renderer));
    EXPECT_EQ(gpu->liveObjects(), attached);
    EXPECT_EQ(leftBehind(*renderer), 0U);
}

TEST_F(QZLCirraneRendererFaults, ADeviceLostDuringTheAttachIsTheErrorOfTheNextResource) {
    gpu->plan().lostAfterCommits = 0;
    const auto renderer = makeRenderer();
    view->displayLink->record = [this](const std::string& call) {
        if (call == "createDisplayLink") {
            view->layer->device()->newCommandQueue()->commandBuffer()->commit();
        }
    };
    const auto error = attach(*renderer);
    view->displayLink->record = nullptr;
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 101);
    EXPECT_EQ(QZLGetErrorSubCode(*error), 1000);
    renderer->detachFromView();
    EXPECT_FALSE(attach(*renderer));
    EXPECT_EQ(drawsOf(*renderer, 5), 10U);
}

TEST_F(QZLCirraneRendererFaults, AFrameWithoutEncodersCompletesAndTheNextOnesDraw) {
    const auto renderer = makeRenderer();
    ASSERT_FALSE(attach(*renderer));
    gpu->plan().failingEncoders = {0, 1, 2, 3, 4, 5, 6};  // three whole frames, and the colour pass of the fourth
    EXPECT_EQ(drawsOf(*renderer, 8), 9U);
    EXPECT_EQ(renderer->frameNumber(), 8U);
}

}  // namespace
