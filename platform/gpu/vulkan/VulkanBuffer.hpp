#pragma once

#include "platform/gpu/Resources.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace gpu::vulkan {

/// Memory mapped for as long as it lives; coherent, so that nothing needs flushing.
class VulkanBuffer final : public Buffer {
public:
    /// Filled with zeros. Throws.
    VulkanBuffer(const std::shared_ptr<VulkanDevice>& device, std::size_t length);

    /// Never that of another resource of the process.
    std::uint64_t serial() const { return _serial; }
    vk::Buffer buffer() const { return *_buffer; }

private:
    void labelDidChange() override;

    const std::uint64_t _serial = nextResourceSerial();
    vk::raii::DeviceMemory _memory = nullptr;
    vk::raii::Buffer _buffer = nullptr;
};

}  // namespace gpu::vulkan
