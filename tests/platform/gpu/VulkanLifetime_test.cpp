#include "platform/gpu/Backend.hpp"
#include "tests/platform/gpu/Conformance.hpp"
#include "tests/platform/gpu/VulkanBackendUnderTest.hpp"
#include "tests/support/KeptLibraries.hpp"

#include <future>
#include <utility>

namespace {

struct Opened {
    std::shared_ptr<gpu::Backend> backend;
    std::shared_ptr<gpu::Device> device;
    std::shared_ptr<gpu::CommandQueue> queue;
};

/// A device whose instance holds the token.
Opened openDevice(const std::shared_ptr<int>& token) {
    Opened opened;
    opened.backend = gpu::vulkan::makeVulkanBackend(validatedOptions([token](const std::string&) {}));
    opened.device = opened.backend->systemDefaultDevice();
    fake::keepLoadedLibraries();
    opened.queue = opened.device->newCommandQueue();
    return opened;
}

}  // namespace

TEST(VulkanLifetime, ADeviceEndsWithItsLastReferenceAndTakesItsInstanceAlong) {
    auto token = std::make_shared<int>(0);
    const std::weak_ptr<int> instance = token;
    {
        const Opened opened = openDevice(std::exchange(token, nullptr));
        ASSERT_NE(opened.queue, nullptr);
        EXPECT_FALSE(instance.expired());
    }
    EXPECT_TRUE(instance.expired());
}

TEST(VulkanLifetime, ADeviceLetGoOfByItsCompletionThreadIsLeftOpen) {
    auto token = std::make_shared<int>(0);
    const std::weak_ptr<int> instance = token;
    Opened opened = openDevice(std::exchange(token, nullptr));
    const std::weak_ptr<gpu::Device> device = opened.device;
    std::promise<void> letGo;  // by this thread, so that the other one is the last
    auto buffer = opened.queue->commandBuffer();
    buffer->addCompletedHandler(
        [own = std::move(opened), letGo = letGo.get_future()](gpu::CommandBuffer&) { letGo.wait(); });
    std::exchange(buffer, nullptr)->commit();
    letGo.set_value();
    EXPECT_TRUE(eventually([&device] { return device.expired(); }));
    EXPECT_FALSE(instance.expired()) << "the driver went while its thread was still there";
}
