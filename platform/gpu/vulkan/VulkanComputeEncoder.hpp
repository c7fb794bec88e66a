#pragma once

#include "platform/gpu/CommandEncoder.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanBindingTable.hpp"

#include <cstddef>
#include <memory>
#include <string_view>

namespace gpu::vulkan {

class VulkanCommandBuffer;

/// Compute dispatches, each of which sees what those before it wrote.
class VulkanComputeEncoder final : public ComputeCommandEncoder {
public:
    explicit VulkanComputeEncoder(VulkanCommandBuffer& commandBuffer);

    void begin();

private:
    void encodeLabel(std::string_view label) override;
    void encodeEnd() override;
    void encodePipelineState(const std::shared_ptr<ComputePipelineState>& state) override;
    void encodeBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset, std::size_t index) override;
    void encodeTexture(const std::shared_ptr<Texture>& texture, std::size_t index) override;
    void encodeDispatch(std::size_t columns, std::size_t rows) override;

    VulkanCommandBuffer& _buffer;
    VulkanBindingTable _bindings;
};

}  // namespace gpu::vulkan
