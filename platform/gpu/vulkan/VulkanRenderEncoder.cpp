#include "platform/gpu/vulkan/VulkanRenderEncoder.hpp"

#include "platform/gpu/vulkan/VulkanBuffer.hpp"
#include "platform/gpu/vulkan/VulkanCommandBuffer.hpp"
#include "platform/gpu/vulkan/VulkanFormats.hpp"
#include "platform/gpu/vulkan/VulkanPipeline.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <algorithm>
#include <cstdint>

namespace gpu::vulkan {
namespace {

constexpr std::size_t maximumTargets = RenderPassDescriptor::maximumColorAttachments;

/// Where a target comes from: nowhere, when its former pixels are not wanted.
ImageUse origin(const VulkanTexture& target, LoadAction loadAction) {
    ImageUse from = target.rest();
    if (loadAction != LoadAction::Load) {
        from.layout = vk::ImageLayout::eUndefined;
    }
    return from;
}

vk::RenderingAttachmentInfo attachmentInfo(const VulkanTexture& target, const ColorAttachment& attachment) {
    return {.imageView = target.view(),
            .imageLayout = use::colorTarget.layout,
            .loadOp = toVulkan(attachment.loadAction),
            .storeOp = toVulkan(attachment.storeAction),
            .clearValue = clearValue(target.pixelFormat(), attachment.clearColor)};
}

}  // namespace

VulkanRenderEncoder::VulkanRenderEncoder(VulkanCommandBuffer& commandBuffer)
    : RenderCommandEncoder(commandBuffer),
      _buffer(commandBuffer),
      _bindings(commandBuffer, vk::PipelineBindPoint::eGraphics) {}

void VulkanRenderEncoder::begin(const RenderPassDescriptor& descriptor) {
    _bindings.clear();
    _pipelineFits = false;
    takeTargets(descriptor);
    bringTargetsFromRest(descriptor);
    beginRendering(descriptor);
}

void VulkanRenderEncoder::takeTargets(const RenderPassDescriptor& descriptor) {
    _targetCount = 0;
    for (const ColorAttachment& attachment : descriptor.colorAttachments) {
        if (attachment.texture == nullptr) {
            break;
        }
        _targets[_targetCount++] = static_cast<const VulkanTexture*>(attachment.texture.get());
    }
}

void VulkanRenderEncoder::bringTargetsFromRest(const RenderPassDescriptor& descriptor) {
    for (std::size_t i = 0; i < _targetCount; ++i) {
        const ImageUse from = origin(*_targets[i], descriptor.colorAttachments[i].loadAction);
        _buffer.barriers().add(imageBarrier(_targets[i]->image(), from, use::colorTarget));
    }
    _buffer.barriers().record();
}

void VulkanRenderEncoder::beginRendering(const RenderPassDescriptor& descriptor) {
    std::array<vk::RenderingAttachmentInfo, maximumTargets> attachments;
    vk::Extent2D extent = _targets.front()->extent();
    for (std::size_t i = 0; i < _targetCount; ++i) {
        attachments[i] = attachmentInfo(*_targets[i], descriptor.colorAttachments[i]);
        extent.width = std::min(extent.width, _targets[i]->extent().width);
        extent.height = std::min(extent.height, _targets[i]->extent().height);
    }
    const vk::Rect2D area{.extent = extent};
    const vk::raii::CommandBuffer& commands = _buffer.commands();
    commands.beginRendering({.renderArea = area,
                             .layerCount = 1,
                             .colorAttachmentCount = static_cast<std::uint32_t>(_targetCount),
                             .pColorAttachments = attachments.data()});
    const auto width = static_cast<float>(extent.width);
    const auto height = static_cast<float>(extent.height);
    // Upside down, because clip space grows upward here and downward in Vulkan.
    commands.setViewport(0, vk::Viewport{.y = height, .width = width, .height = -height, .maxDepth = 1.0F});
    commands.setScissor(0, area);
}

void VulkanRenderEncoder::encodeEnd() {
    _buffer.endLabel();
    _buffer.commands().endRendering();
    for (const VulkanTexture* const target : targets()) {
        _buffer.barriers().add(imageBarrier(target->image(), use::colorTarget, target->rest()));
    }
}

void VulkanRenderEncoder::encodeLabel(std::string_view label) {
    _buffer.beginLabel(label);
}

void VulkanRenderEncoder::encodePipelineState(const std::shared_ptr<RenderPipelineState>& state) {
    const auto& pipeline = static_cast<const VulkanRenderPipelineState&>(*state);
    _pipelineFits = check(fits(pipeline), "a pipeline state made for other attachments");
    if (_pipelineFits) {
        _buffer.commands().bindPipeline(vk::PipelineBindPoint::eGraphics, pipeline.pipeline());
    }
}

void VulkanRenderEncoder::encodeVertexBytes(std::span<const std::byte> bytes, std::size_t) {
    _buffer.commands().pushConstants<std::byte>(_buffer.device().bindings().pipelineLayout(),
                                                vk::ShaderStageFlagBits::eVertex, 0,
                                                {static_cast<std::uint32_t>(bytes.size()), bytes.data()});
}

void VulkanRenderEncoder::encodeFragmentBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset,
                                               std::size_t index) {
    if (check(offset % _buffer.device().properties().limits.minUniformBufferOffsetAlignment == 0,
              "a fragment buffer at an offset that the device cannot address")) {
        _bindings.setBuffer(static_cast<const VulkanBuffer&>(*buffer), offset, index);
    }
}

void VulkanRenderEncoder::encodeFragmentTexture(const std::shared_ptr<Texture>& texture, std::size_t index) {
    const auto& sampled = static_cast<const VulkanTexture&>(*texture);
    if (check(!isTarget(sampled), "a fragment texture that the pass draws into")) {
        _bindings.setTexture(sampled, index);
    }
}

void VulkanRenderEncoder::encodeDraw(PrimitiveType type, std::size_t vertexStart, std::size_t vertexCount) {
    if (!_pipelineFits) {
        return;
    }
    _buffer.device().attempt("a draw could not be encoded", [&] {
        _bindings.bind();
        _buffer.setTopology(toVulkan(type));
        _buffer.commands().draw(static_cast<std::uint32_t>(vertexCount), 1, static_cast<std::uint32_t>(vertexStart), 0);
        return true;
    });
}

bool VulkanRenderEncoder::isTarget(const VulkanTexture& texture) const {
    return std::find(targets().begin(), targets().end(), &texture) != targets().end();
}

bool VulkanRenderEncoder::fits(const VulkanRenderPipelineState& pipeline) const {
    return std::equal(targets().begin(), targets().end(), pipeline.colorAttachmentFormats().begin(),
                      pipeline.colorAttachmentFormats().end(),
                      [](const VulkanTexture* target, PixelFormat format) { return target->pixelFormat() == format; });
}

}  // namespace gpu::vulkan
