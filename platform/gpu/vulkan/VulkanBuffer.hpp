#pragma once

#include "platform/gpu/Resources.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"

#include <cstddef>
#include <memory>

namespace gpu::vulkan {

/// Memory mapped for as long as it lives; coherent, so that nothing needs flushing.
class VulkanBuffer final : public Buffer {
public:
    /// Filled with zeros. Throws.
    VulkanBuffer(const std::shared_ptr<VulkanDevice>& device, std::size_t length);

    vk::Buffer buffer() const { return *_buffer; }

private:
    void labelDidChange() override;

    vk::raii::DeviceMemory _memory = nullptr;
    vk::raii::Buffer _buffer = nullptr;
};

}  // namespace gpu::vulkan
