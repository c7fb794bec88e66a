#include "platform/gpu/vulkan/VulkanComputeEncoder.hpp"

#include "platform/gpu/vulkan/VulkanBuffer.hpp"
#include "platform/gpu/vulkan/VulkanCommandBuffer.hpp"
#include "platform/gpu/vulkan/VulkanPipeline.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <cstdint>

namespace gpu::vulkan {
namespace {

/// Makes all later shaders see what earlier ones wrote into storage images, and wait until earlier ones have read.
void recordStorageBarrier(const vk::raii::CommandBuffer& commands) {
    const vk::MemoryBarrier2 barrier{.srcStageMask = use::stored.stages,
                                     .srcAccessMask = vk::AccessFlagBits2::eShaderStorageWrite,
                                     .dstStageMask = use::stored.stages,
                                     .dstAccessMask = use::stored.access};
    commands.pipelineBarrier2({.memoryBarrierCount = 1, .pMemoryBarriers = &barrier});
}

}  // namespace

VulkanComputeEncoder::VulkanComputeEncoder(VulkanCommandBuffer& commandBuffer)
    : ComputeCommandEncoder(commandBuffer),
      _buffer(commandBuffer),
      _bindings(commandBuffer, vk::PipelineBindPoint::eCompute) {}

void VulkanComputeEncoder::begin() {
    _bindings.clear();
}

void VulkanComputeEncoder::encodeLabel(std::string_view label) {
    _buffer.beginLabel(label);
}

void VulkanComputeEncoder::encodeEnd() {
    recordStorageBarrier(_buffer.commands());
    _buffer.endLabel();
}

void VulkanComputeEncoder::encodePipelineState(const std::shared_ptr<ComputePipelineState>& state) {
    _buffer.commands().bindPipeline(vk::PipelineBindPoint::eCompute,
                                    static_cast<const VulkanComputePipelineState&>(*state).pipeline());
}

void VulkanComputeEncoder::encodeBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset, std::size_t index) {
    if (check(offset % _buffer.device().properties().limits.minUniformBufferOffsetAlignment == 0,
              "a buffer at an offset that the device cannot address")) {
        _bindings.setBuffer(static_cast<const VulkanBuffer&>(*buffer), offset, index);
    }
}

void VulkanComputeEncoder::encodeTexture(const std::shared_ptr<Texture>& texture, std::size_t index) {
    const auto& used = static_cast<const VulkanTexture&>(*texture);
    if (contains(texture->usage(), TextureUsage::ShaderWrite)) {
        _bindings.setStorageTexture(used, index);
    } else {
        _bindings.setTexture(used, index);
    }
}

void VulkanComputeEncoder::encodeDispatch(std::size_t columns, std::size_t rows) {
    const auto& limits = _buffer.device().properties().limits.maxComputeWorkGroupCount;
    if (!check(columns <= limits[0] && rows <= limits[1], "more threadgroups than the device can run")) {
        return;
    }
    _buffer.device().attempt("a dispatch could not be encoded", [&] {
        recordStorageBarrier(_buffer.commands());
        _bindings.bind();
        _buffer.commands().dispatch(static_cast<std::uint32_t>(columns), static_cast<std::uint32_t>(rows), 1);
        return true;
    });
}

}  // namespace gpu::vulkan
