#include "platform/gpu/vulkan/VulkanBlitEncoder.hpp"

#include "platform/gpu/vulkan/VulkanBuffer.hpp"
#include "platform/gpu/vulkan/VulkanCommandBuffer.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <array>
#include <cstdint>

namespace gpu::vulkan {
namespace {

/// Lets the CPU, and whatever the GPU does next with the buffer, see the bytes copied into it.
void recordBufferBarrier(const vk::raii::CommandBuffer& commands, vk::Buffer buffer) {
    using Stage = vk::PipelineStageFlagBits2;
    using Access = vk::AccessFlagBits2;
    const vk::BufferMemoryBarrier2 barrier{
        .srcStageMask = use::copyDestination.stages,
        .srcAccessMask = use::copyDestination.access,
        .dstStageMask =
            Stage::eHost | Stage::eVertexShader | Stage::eFragmentShader | Stage::eComputeShader | Stage::eAllTransfer,
        .dstAccessMask = Access::eHostRead | Access::eUniformRead | Access::eTransferRead | Access::eTransferWrite,
        .srcQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED,
        .dstQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED,
        .buffer = buffer,
        .size = VK_WHOLE_SIZE};
    commands.pipelineBarrier2({.bufferMemoryBarrierCount = 1, .pBufferMemoryBarriers = &barrier});
}

}  // namespace

VulkanBlitEncoder::VulkanBlitEncoder(VulkanCommandBuffer& commandBuffer)
    : BlitCommandEncoder(commandBuffer), _buffer(commandBuffer) {}

void VulkanBlitEncoder::encodeLabel(std::string_view label) {
    _buffer.beginLabel(label);
}

void VulkanBlitEncoder::encodeEnd() {
    _buffer.endLabel();
}

void VulkanBlitEncoder::encodeTextureToTexture(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                                               const std::shared_ptr<Texture>& destination, Origin destinationOrigin) {
    const auto& from = static_cast<const VulkanTexture&>(*source);
    const auto& to = static_cast<const VulkanTexture&>(*destination);
    const vk::raii::CommandBuffer& commands = _buffer.commands();
    const vk::ImageCopy copy{.srcSubresource = colorLayers(),
                             .srcOffset = toOffset(sourceRegion.origin),
                             .dstSubresource = colorLayers(),
                             .dstOffset = toOffset(destinationOrigin),
                             .extent = toExtent(sourceRegion.size)};
    recordBarriers(commands, std::array{imageBarrier(from.image(), from.rest(), use::copySource),
                                        imageBarrier(to.image(), to.rest(), use::copyDestination)});
    commands.copyImage(from.image(), use::copySource.layout, to.image(), use::copyDestination.layout, copy);
    recordBarriers(commands, std::array{imageBarrier(from.image(), use::copySource, from.rest()),
                                        imageBarrier(to.image(), use::copyDestination, to.rest())});
}

void VulkanBlitEncoder::encodeTextureToBuffer(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                                              const std::shared_ptr<Buffer>& destination, std::size_t destinationOffset,
                                              std::size_t destinationBytesPerRow) {
    const auto& from = static_cast<const VulkanTexture&>(*source);
    const auto& to = static_cast<const VulkanBuffer&>(*destination);
    const std::size_t pixelBytes = bytesPerPixel(from.pixelFormat());
    const vk::raii::CommandBuffer& commands = _buffer.commands();
    const vk::BufferImageCopy copy{.bufferOffset = destinationOffset,
                                   .bufferRowLength = static_cast<std::uint32_t>(destinationBytesPerRow / pixelBytes),
                                   .imageSubresource = colorLayers(),
                                   .imageOffset = toOffset(sourceRegion.origin),
                                   .imageExtent = toExtent(sourceRegion.size)};
    recordBarriers(commands, imageBarrier(from.image(), from.rest(), use::copySource));
    commands.copyImageToBuffer(from.image(), use::copySource.layout, to.buffer(), copy);
    recordBarriers(commands, imageBarrier(from.image(), use::copySource, from.rest()));
    recordBufferBarrier(commands, to.buffer());
}

}  // namespace gpu::vulkan
