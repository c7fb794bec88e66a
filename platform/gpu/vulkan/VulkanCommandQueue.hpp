#pragma once

#include "platform/gpu/CommandBuffer.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"
#include "platform/gpu/vulkan/VulkanSubmissions.hpp"

#include <memory>
#include <thread>

namespace gpu::vulkan {

/// Orders command buffers, and completes them on a thread of its own. Going away it waits until all that was committed
/// has completed; let go of by one of its own handlers it leaves that to its thread.
class VulkanCommandQueue final : public CommandQueue {
public:
    /// Throws, also when no thread can be had.
    explicit VulkanCommandQueue(const std::shared_ptr<VulkanDevice>& device);
    ~VulkanCommandQueue() override;

private:
    std::shared_ptr<CommandBuffer> makeCommandBuffer() override;
    void labelDidChange() override;

    std::shared_ptr<VulkanSubmissions> _submissions;
    std::thread _completionThread;
};

}  // namespace gpu::vulkan
