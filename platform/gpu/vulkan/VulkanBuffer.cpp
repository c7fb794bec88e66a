#include "platform/gpu/vulkan/VulkanBuffer.hpp"

#include <cstring>

namespace gpu::vulkan {

VulkanBuffer::VulkanBuffer(const std::shared_ptr<VulkanDevice>& device, std::size_t length) : Buffer(device, length) {
    using Usage = vk::BufferUsageFlagBits;
    using Property = vk::MemoryPropertyFlagBits;
    _buffer =
        vk::raii::Buffer(device->handle(), vk::BufferCreateInfo{.size = length,
                                                                .usage = Usage::eUniformBuffer | Usage::eStorageBuffer |
                                                                         Usage::eTransferSrc | Usage::eTransferDst});
    // Cached, because screenshots are read through it, byte by byte.
    _memory = device->allocate(_buffer.getMemoryRequirements(), Property::eHostVisible | Property::eHostCoherent,
                               Property::eHostCached);
    _buffer.bindMemory(*_memory, 0);
    setContents(static_cast<std::byte*>(_memory.mapMemory(0, length)));
    std::memset(contents(), 0, length);
}

void VulkanBuffer::labelDidChange() {
    static_cast<VulkanDevice&>(*device()).setName(buffer(), label());
}

}  // namespace gpu::vulkan
