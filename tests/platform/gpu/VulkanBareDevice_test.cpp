#include "tests/platform/gpu/Conformance.hpp"
#include "tests/platform/gpu/VulkanBackendUnderTest.hpp"

#include <atomic>

namespace {

/// A device that has no feature that drawing needs.
class VulkanBareDevice : public Conformance {};

TestedBackend bareVulkanBackend() {
    return {.name = "BareVulkan",
            .make =
                [](std::function<void(std::string)> complain) {
                    return gpu::vulkan::makeBareVulkanBackend(validatedOptions(std::move(complain)));
                },
            .step = [](gpu::Backend&) {},
            .loseDevice = [](gpu::Backend&, gpu::Device& device) { gpu::vulkan::loseDevice(device); }};
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Vulkan, VulkanBareDevice, testing::Values(bareVulkanBackend()));

TEST_P(VulkanBareDevice, TellsItsNameAndWhatItLacks) {
    EXPECT_FALSE(device->supportsFeatureSet(gpu::FeatureSet::MacOsGpuFamily1V3));
    EXPECT_FALSE(device->name().empty());
    EXPECT_GT(device->maximumTextureSize(), 0u);
    EXPECT_FALSE(device->isLost());
}

TEST_P(VulkanBareDevice, CanBeAttachedTo) {
    const auto layer = makeLayer({4, 4});
    const auto ownQueue = device->newCommandQueue();
    ASSERT_NE(ownQueue, nullptr);
    ownQueue->setLabel("CommandQueue");
    EXPECT_EQ(layer->device(), device);
    EXPECT_EQ(layer->nextDrawable(), nullptr);
}

TEST_P(VulkanBareDevice, BuffersFailInTheOrderCommitted) {
    std::mutex mutex;
    std::vector<int> scheduled;
    std::vector<int> failed;
    for (int index = 0; index < 3; ++index) {
        const auto buffer = queue->commandBuffer();
        ASSERT_NE(buffer, nullptr);
        buffer->addScheduledHandler([&, index](gpu::CommandBuffer&) {
            const std::lock_guard lock(mutex);
            scheduled.push_back(index);
        });
        buffer->addCompletedHandler([&, index](gpu::CommandBuffer& completed) {
            EXPECT_EQ(completed.status(), gpu::CommandBufferStatus::Error);
            const std::lock_guard lock(mutex);
            failed.push_back(index);
        });
        commit(buffer);
        buffer->waitUntilCompleted();
    }
    finish();
    EXPECT_EQ(scheduled, (std::vector{0, 1, 2}));
    EXPECT_EQ(failed, (std::vector{0, 1, 2}));
}

TEST_P(VulkanBareDevice, NothingCanBeMadeOrDrawn) {
    EXPECT_EQ(makeTexture(gpu::PixelFormat::RGBA8Unorm, {4, 4}, gpu::TextureUsage::ShaderRead), nullptr);
    EXPECT_EQ(device->newBuffer(4), nullptr);
    EXPECT_EQ(device->newLibrary(TEST_SHADER_LIBRARY), nullptr);
    const auto buffer = queue->commandBuffer();
    EXPECT_EQ(buffer->renderCommandEncoder({}), nullptr);
    EXPECT_EQ(buffer->computeCommandEncoder(), nullptr);
    if (auto* const encoder = buffer->blitCommandEncoder()) {
        encoder->setLabel("nothing");
        encoder->endEncoding();
    }
    commit(buffer);
}

TEST_P(VulkanBareDevice, HasNoMoreQueuesOnceLost) {
    GetParam().loseDevice(*backend, *device);
    EXPECT_EQ(device->newCommandQueue(), nullptr);
}
