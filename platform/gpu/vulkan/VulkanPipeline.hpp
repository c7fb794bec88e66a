#pragma once

#include "platform/gpu/Resources.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"

#include <memory>
#include <vector>

namespace gpu::vulkan {

/// Draws without vertex buffers, blending or depth; viewport, scissor and topology are set while encoding.
class VulkanRenderPipelineState final : public RenderPipelineState {
public:
    /// Throws.
    VulkanRenderPipelineState(const std::shared_ptr<VulkanDevice>& device, const RenderPipelineDescriptor& descriptor);

    vk::Pipeline pipeline() const { return *_pipeline; }
    const std::vector<PixelFormat>& colorAttachmentFormats() const { return _colorAttachmentFormats; }

private:
    void labelDidChange() override;

    std::vector<PixelFormat> _colorAttachmentFormats;
    vk::raii::Pipeline _pipeline = nullptr;
};

class VulkanComputePipelineState final : public ComputePipelineState {
public:
    /// Throws.
    VulkanComputePipelineState(const std::shared_ptr<VulkanDevice>& device, const std::shared_ptr<Function>& function);

    vk::Pipeline pipeline() const { return *_pipeline; }

private:
    void labelDidChange() override;

    vk::raii::Pipeline _pipeline = nullptr;
};

}  // namespace gpu::vulkan
