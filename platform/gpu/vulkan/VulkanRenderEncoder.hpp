#pragma once

#include "platform/gpu/CommandEncoder.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanBindingTable.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace gpu::vulkan {

class VulkanCommandBuffer;
class VulkanRenderPipelineState;
class VulkanTexture;

/// A render pass by dynamic rendering. Targets come from rest at its start and go back at its end, so that the next
/// pass finds them ready for sampling.
class VulkanRenderEncoder final : public RenderCommandEncoder {
public:
    explicit VulkanRenderEncoder(VulkanCommandBuffer& commandBuffer);

    /// The targets have passed the checks of `CommandBuffer`.
    void begin(const RenderPassDescriptor& descriptor);

private:
    void encodeLabel(std::string_view label) override;
    void encodeEnd() override;
    void encodePipelineState(const std::shared_ptr<RenderPipelineState>& state) override;
    void encodeVertexBytes(std::span<const std::byte> bytes, std::size_t index) override;
    void encodeFragmentBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset, std::size_t index) override;
    void encodeFragmentTexture(const std::shared_ptr<Texture>& texture, std::size_t index) override;
    void encodeDraw(PrimitiveType type, std::size_t vertexStart, std::size_t vertexCount) override;

    void takeTargets(const RenderPassDescriptor& descriptor);
    void bringTargetsFromRest(const RenderPassDescriptor& descriptor);
    void beginRendering(const RenderPassDescriptor& descriptor);
    bool isTarget(const VulkanTexture& texture) const;
    bool fits(const VulkanRenderPipelineState& pipeline) const;
    std::span<const VulkanTexture* const> targets() const { return std::span(_targets).first(_targetCount); }

    VulkanCommandBuffer& _buffer;
    VulkanBindingTable _bindings;
    std::array<const VulkanTexture*, RenderPassDescriptor::maximumColorAttachments> _targets{};
    std::size_t _targetCount = 0;
    bool _pipelineFits = false;
};

}  // namespace gpu::vulkan
