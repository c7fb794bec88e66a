#include "tests/platform/gpu/Conformance.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <algorithm>
#include <atomic>
#include <limits>
#include <regex>

using gpu::PixelFormat;
using gpu::TextureUsage;

TEST_P(Conformance, ThePlatformHasAVersionOfThreeNumbers) {
    EXPECT_TRUE(std::regex_match(backend->platformVersion(), std::regex("10\\.[0-9]+\\.[0-9]+")))
        << backend->platformVersion();
}

TEST_P(Conformance, ADeviceTellsItsNameAndDriver) {
    EXPECT_FALSE(device->name().empty());
    EXPECT_FALSE(device->driverDescription().empty());
    EXPECT_FALSE(device->isLost());
    EXPECT_GE(device->maximumTextureSize(), 4096u);
}

TEST_P(Conformance, ADeviceSupportsTheFeatureSetOfTheFrameLoopAndNoOther) {
    EXPECT_TRUE(device->supportsFeatureSet(gpu::FeatureSet::MacOsGpuFamily1V3));
    EXPECT_FALSE(device->supportsFeatureSet(static_cast<gpu::FeatureSet>(10001)));
}

TEST_P(Conformance, TheDeviceIsOneForAllWhileAnybodyHoldsIt) {
    EXPECT_EQ(backend->systemDefaultDevice(), device);
}

TEST_P(Conformance, TheDeviceClosesWhenTheLastLetsGoAndOpensAnew) {
    const std::weak_ptr<gpu::Device> closed = device;
    queue.reset();
    device.reset();
    EXPECT_TRUE(closed.expired());
    EXPECT_NE(backend->systemDefaultDevice(), nullptr);
}

TEST_P(Conformance, EveryResourceKeepsItsDevice) {
    const std::weak_ptr<gpu::Device> kept = device;
    auto texture = makeTexture(PixelFormat::R8Unorm, {1, 1}, TextureUsage::ShaderRead);
    EXPECT_EQ(texture->device(), device);
    queue.reset();
    device.reset();
    EXPECT_FALSE(kept.expired());
    texture.reset();
    EXPECT_TRUE(kept.expired());
}

TEST_P(Conformance, TexturesOfNoSizeOrFormatAreNotMade) {
    EXPECT_EQ(makeTexture(PixelFormat::R8Unorm, {0, 4}, TextureUsage::ShaderRead), nullptr);
    EXPECT_EQ(makeTexture(PixelFormat::R8Unorm, {4, 0}, TextureUsage::ShaderRead), nullptr);
    EXPECT_EQ(makeTexture(PixelFormat::Invalid, {4, 4}, TextureUsage::ShaderRead), nullptr);
}

TEST_P(Conformance, TexturesGoUpToTheDevicesLimitAndNotBeyond) {
    const std::size_t limit = device->maximumTextureSize();
    EXPECT_NE(makeTexture(PixelFormat::R8Unorm, {limit, 1}, TextureUsage::ShaderRead), nullptr);
    EXPECT_NE(makeTexture(PixelFormat::R8Unorm, {1, limit}, TextureUsage::ShaderRead), nullptr);
    EXPECT_EQ(makeTexture(PixelFormat::R8Unorm, {limit + 1, 1}, TextureUsage::ShaderRead), nullptr);
    EXPECT_EQ(makeTexture(PixelFormat::R8Unorm, {1, limit + 1}, TextureUsage::ShaderRead), nullptr);
}

TEST_P(Conformance, ATextureTellsWhatItWasMadeAs) {
    const auto texture = makeTexture(PixelFormat::R16Unorm, {7, 3}, TextureUsage::ShaderReadRenderTarget);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->textureType(), gpu::TextureType::Type2D);
    EXPECT_EQ(texture->pixelFormat(), PixelFormat::R16Unorm);
    EXPECT_EQ(texture->size(), (gpu::Extent{7, 3}));
    EXPECT_EQ(texture->depth(), 1u);
    EXPECT_EQ(texture->usage(), TextureUsage::ShaderReadRenderTarget);
    EXPECT_EQ(texture->storageMode(), gpu::StorageMode::Private);
    EXPECT_FALSE(texture->isFramebufferOnly());
}

TEST_P(Conformance, BuffersOfNoOrImpossibleLengthAreNotMade) {
    EXPECT_EQ(device->newBuffer(0), nullptr);
    EXPECT_EQ(device->newBuffer(Bytes()), nullptr);
    EXPECT_EQ(device->newBuffer(std::numeric_limits<std::size_t>::max() / 2), nullptr);
}

TEST_P(Conformance, ABufferHoldsTheBytesItWasMadeWithAndThoseWrittenLater) {
    const Bytes bytes = countingBytes(100);
    const auto buffer = device->newBuffer(bytes);
    ASSERT_EQ(buffer->length(), 100u);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), buffer->contents()));
    buffer->contents()[50] = std::byte{0xEE};
    commit(queue->commandBuffer());
    finish();
    EXPECT_EQ(buffer->contents()[50], std::byte{0xEE});
    EXPECT_EQ(buffer->contents()[99], bytes[99]);
}

TEST_P(Conformance, LabelsAreKept) {
    const auto texture = makeTexture(PixelFormat::R8Unorm, {1, 1}, TextureUsage::ShaderRead);
    const auto buffer = device->newBuffer(4);
    EXPECT_EQ(texture->label(), "");
    texture->setLabel("RenderTarget0");
    buffer->setLabel("ärger");
    queue->setLabel("");
    EXPECT_EQ(texture->label(), "RenderTarget0");
    EXPECT_EQ(buffer->label(), "ärger");
}

TEST_P(Conformance, AMissingLibraryIsNotOpened) {
    const fake::TemporaryDirectory directory;
    EXPECT_EQ(device->newLibrary(directory.path() / "default.metallib"), nullptr);
    EXPECT_EQ(device->newLibrary(directory.path()), nullptr) << "a directory";
    EXPECT_EQ(device->newLibrary({}), nullptr);
}

TEST_P(Conformance, PipelinesWithoutFunctionsAreNotMade) {
    EXPECT_EQ(device->newRenderPipelineState({nullptr, nullptr, {PixelFormat::BGRA8Unorm}}), nullptr);
    EXPECT_EQ(device->newComputePipelineState(nullptr), nullptr);
}

TEST_P(Conformance, ALostDeviceIsReportedOnceAndForgotten) {
    std::atomic<int> reports = 0;
    backend->setDeviceLostHandler([&reports] { ++reports; });
    GetParam().loseDevice(*backend, *device);
    GetParam().loseDevice(*backend, *device);
    EXPECT_TRUE(device->isLost());
    EXPECT_EQ(reports, 1);
    const auto next = backend->systemDefaultDevice();
    ASSERT_NE(next, nullptr);
    EXPECT_NE(next, device);
    EXPECT_FALSE(next->isLost());
}

TEST_P(Conformance, OnALostDeviceNoResourceIsMade) {
    const auto texture = makeTexture(PixelFormat::R8Unorm, {4, 4}, TextureUsage::ShaderRead, gpu::StorageMode::Managed);
    GetParam().loseDevice(*backend, *device);
    EXPECT_EQ(makeTexture(PixelFormat::R8Unorm, {4, 4}, TextureUsage::ShaderRead), nullptr);
    EXPECT_EQ(device->newBuffer(4), nullptr);
    EXPECT_FALSE(texture->replaceRegion(wholeOf(*texture), countingBytes(16), 4));
}

TEST_P(Conformance, OnALostDeviceFramesGoOnAndFailAtOnce) {
    GetParam().loseDevice(*backend, *device);
    const auto layer = makeLayer({4, 4});  // which has no image yet, and can have none
    for (int frame = 0; frame < 5; ++frame) {
        const auto drawable = layer->nextDrawable();
        ASSERT_NE(drawable, nullptr);
        EXPECT_EQ(drawable->texture()->size(), (gpu::Extent{4, 4}));
        drawable->texture()->setLabel("Drawable");
        const auto buffer = queue->commandBuffer();
        ASSERT_NE(buffer, nullptr);
        if (auto* const encoder = buffer->renderCommandEncoder(passInto(drawable->texture(), gpu::LoadAction::Clear))) {
            encoder->endEncoding();
        }
        buffer->presentDrawable(drawable);
        std::atomic<int> scheduled = 0;
        std::atomic<int> failed = 0;
        buffer->addScheduledHandler([&scheduled](gpu::CommandBuffer&) { ++scheduled; });
        buffer->addCompletedHandler([&failed](gpu::CommandBuffer& completed) {
            failed += completed.status() == gpu::CommandBufferStatus::Error ? 1 : 0;
        });
        buffer->commit();
        buffer->waitUntilCompleted();
        EXPECT_TRUE(eventually([&failed] { return failed == 1; }));
        EXPECT_EQ(scheduled, 1);
    }
}

TEST_P(Conformance, OnALostDeviceThreeFramesInFlightAndOneBeingShownHaveTheirDrawables) {
    const auto layer = makeLayer({4, 4});
    std::vector<std::shared_ptr<gpu::Drawable>> drawables{layer->nextDrawable()};
    GetParam().loseDevice(*backend, *device);
    while (drawables.size() < 4) {
        drawables.push_back(layer->nextDrawable());
    }
    EXPECT_EQ(std::count(drawables.begin(), drawables.end(), nullptr), 0);
    const auto buffer = queue->commandBuffer();
    ASSERT_NE(buffer, nullptr);
    if (auto* const encoder = buffer->blitCommandEncoder()) {
        encoder->copyTextureToTexture(drawables[0]->texture(), wholeOf(*drawables[0]->texture()),
                                      drawables[3]->texture(), {0, 0});
    }
    commit(buffer);
    finish();
    EXPECT_EQ(buffer->status(), gpu::CommandBufferStatus::Error);
}
