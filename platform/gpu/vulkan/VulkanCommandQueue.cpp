#include "platform/gpu/vulkan/VulkanCommandQueue.hpp"

#include "platform/gpu/vulkan/VulkanCommandBuffer.hpp"

namespace gpu::vulkan {

VulkanCommandQueue::VulkanCommandQueue(const std::shared_ptr<VulkanDevice>& device)
    : CommandQueue(device),
      _submissions(std::make_shared<VulkanSubmissions>(device)),
      _completionThread([submissions = _submissions] {
          // Detached below, it may be the last to hold the device.
          VulkanDevice::leaveOpenOnThisThread();
          submissions->completeUntilClosed();
      }) {}

VulkanCommandQueue::~VulkanCommandQueue() {
    _submissions->close();
    if (_completionThread.get_id() == std::this_thread::get_id()) {
        _completionThread.detach();
    } else {
        _completionThread.join();
    }
}

std::shared_ptr<CommandBuffer> VulkanCommandQueue::makeCommandBuffer() {
    return static_cast<VulkanDevice&>(*device()).attempt(
        "a command buffer could not be made", [this]() -> std::shared_ptr<CommandBuffer> {
            std::shared_ptr<VulkanCommandBuffer> buffer = _submissions->unusedCommandBuffer();
            buffer->begin();
            return buffer;
        });
}

void VulkanCommandQueue::labelDidChange() {
    _submissions->setLabel(label());
}

}  // namespace gpu::vulkan
