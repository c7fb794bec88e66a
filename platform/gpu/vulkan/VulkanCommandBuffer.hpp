#pragma once

#include "platform/gpu/CommandBuffer.hpp"
#include "platform/gpu/vulkan/PendingBarriers.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanBindings.hpp"
#include "platform/gpu/vulkan/VulkanBlitEncoder.hpp"
#include "platform/gpu/vulkan/VulkanComputeEncoder.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"
#include "platform/gpu/vulkan/VulkanRenderEncoder.hpp"
#include "platform/gpu/vulkan/VulkanSubmissions.hpp"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace gpu::vulkan {

/// A command buffer with the memory it is recorded into. Its queue uses it again once the GPU and all its holders have
/// finished with it, so that a steady stream of frames allocates nothing.
class VulkanCommandBuffer final : public CommandBuffer, public std::enable_shared_from_this<VulkanCommandBuffer> {
public:
    /// Throws.
    VulkanCommandBuffer(std::shared_ptr<VulkanDevice> device, std::weak_ptr<VulkanSubmissions> submissions);

    /// Makes it as new and starts recording. Throws.
    void begin();

    VulkanDevice& device() const { return *_device; }
    const vk::raii::CommandBuffer& commands() const { return _commands.buffer; }
    DescriptorSets& descriptors() { return _descriptors; }
    PendingBarriers& barriers() { return _barriers; }
    /// Draws from now on in that way.
    void setTopology(vk::PrimitiveTopology topology);

    /// Names what is recorded until `endLabel`. A second label replaces the first.
    void beginLabel(std::string_view label);
    void endLabel();

private:
    friend class VulkanSubmissions;
    RenderCommandEncoder* beginRenderPass(const RenderPassDescriptor& descriptor) override;
    ComputeCommandEncoder* beginComputePass() override;
    BlitCommandEncoder* beginBlitPass() override;
    void submit() override;
    void waitForGpu() override;

    /// On the completion thread, when all buffers before it have completed.
    void complete(VulkanSubmissions& submissions);

    const std::shared_ptr<VulkanDevice> _device;
    const std::weak_ptr<VulkanSubmissions> _submissions;
    VulkanCommands _commands;
    DescriptorSets _descriptors;
    PendingBarriers _barriers;
    std::optional<vk::PrimitiveTopology> _topology;
    VulkanRenderEncoder _renderEncoder;
    VulkanComputeEncoder _computeEncoder;
    VulkanBlitEncoder _blitEncoder;
    std::string _label;
    bool _hasLabel = false;

    /// What the queue's timeline reaches when the GPU has finished; 0 when the GPU was never given the buffer.
    std::atomic<std::uint64_t> _timelineValue{0};
    std::shared_ptr<VulkanCommandBuffer> _next;  ///< in the line for completion
};

}  // namespace gpu::vulkan
