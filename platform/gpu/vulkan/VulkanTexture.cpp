#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include "platform/gpu/vulkan/VulkanBuffer.hpp"
#include "platform/gpu/vulkan/VulkanFormats.hpp"

#include <array>
#include <cstring>

namespace gpu::vulkan {
namespace use {

using Stage = vk::PipelineStageFlagBits2;
using Access = vk::AccessFlagBits2;

const ImageUse undefined{.layout = vk::ImageLayout::eUndefined, .stages = {}, .access = {}};
const vk::PipelineStageFlags2 shaders = Stage::eVertexShader | Stage::eFragmentShader | Stage::eComputeShader;
const ImageUse sampled{
    .layout = vk::ImageLayout::eShaderReadOnlyOptimal, .stages = shaders, .access = Access::eShaderSampledRead};
const ImageUse stored{.layout = vk::ImageLayout::eGeneral,
                      .stages = shaders,
                      .access = Access::eShaderSampledRead | Access::eShaderStorageRead | Access::eShaderStorageWrite};
const ImageUse colorTarget{.layout = vk::ImageLayout::eColorAttachmentOptimal,
                           .stages = Stage::eColorAttachmentOutput,
                           .access = Access::eColorAttachmentRead | Access::eColorAttachmentWrite};
const ImageUse copySource{
    .layout = vk::ImageLayout::eTransferSrcOptimal, .stages = Stage::eAllTransfer, .access = Access::eTransferRead};
const ImageUse copyDestination{
    .layout = vk::ImageLayout::eTransferDstOptimal, .stages = Stage::eAllTransfer, .access = Access::eTransferWrite};

}  // namespace use

namespace {

constexpr vk::AccessFlags2 writes = vk::AccessFlagBits2::eShaderStorageWrite |
                                    vk::AccessFlagBits2::eColorAttachmentWrite | vk::AccessFlagBits2::eTransferWrite;

vk::ImageUsageFlags imageUsage(TextureUsage usage) {
    // Every texture is cleared when it is made, and any may be read back.
    vk::ImageUsageFlags flags = vk::ImageUsageFlagBits::eTransferSrc | vk::ImageUsageFlagBits::eTransferDst;
    if (contains(usage, TextureUsage::ShaderRead)) {
        flags |= vk::ImageUsageFlagBits::eSampled;
    }
    if (contains(usage, TextureUsage::ShaderWrite)) {
        flags |= vk::ImageUsageFlagBits::eStorage;
    }
    if (contains(usage, TextureUsage::RenderTarget)) {
        flags |= vk::ImageUsageFlagBits::eColorAttachment;
    }
    return flags;
}

const ImageUse& restFor(const TextureDescriptor& descriptor, TexturePurpose purpose) {
    if (purpose != TexturePurpose::Ordinary) {
        return use::copySource;
    }
    return contains(descriptor.usage, TextureUsage::ShaderWrite)  ? use::stored
           : contains(descriptor.usage, TextureUsage::ShaderRead) ? use::sampled
                                                                  : use::copySource;
}

}  // namespace

VulkanTexture::VulkanTexture(const std::shared_ptr<VulkanDevice>& device, const TextureDescriptor& descriptor,
                             TexturePurpose purpose, bool framebufferOnly)
    : Texture(device, descriptor, framebufferOnly),
      _format(toVulkan(descriptor.pixelFormat)),
      _rest(restFor(descriptor, purpose)) {
    if (purpose == TexturePurpose::StandIn) {
        return;
    }
    const vk::ImageCreateInfo info{.imageType = vk::ImageType::e2D,
                                   .format = _format,
                                   .extent = {extent().width, extent().height, 1},
                                   .mipLevels = 1,
                                   .arrayLayers = 1,
                                   .samples = vk::SampleCountFlagBits::e1,
                                   .tiling = vk::ImageTiling::eOptimal,
                                   .usage = imageUsage(descriptor.usage)};
    const vk::ImageFormatProperties limits =
        device->physicalDevice().getImageFormatProperties(_format, info.imageType, info.tiling, info.usage, info.flags);
    if (info.extent.width > limits.maxExtent.width || info.extent.height > limits.maxExtent.height) {
        throw vk::OutOfDeviceMemoryError("an image of this format cannot be so large");
    }
    _image = vk::raii::Image(device->handle(), info);
    _memory = device->allocate(_image.getMemoryRequirements(), {}, vk::MemoryPropertyFlagBits::eDeviceLocal);
    _image.bindMemory(*_memory, 0);
    const vk::ImageUsageFlags viewable =
        vk::ImageUsageFlagBits::eSampled | vk::ImageUsageFlagBits::eStorage | vk::ImageUsageFlagBits::eColorAttachment;
    if (info.usage & viewable) {
        _view = vk::raii::ImageView(device->handle(), vk::ImageViewCreateInfo{.image = *_image,
                                                                              .viewType = vk::ImageViewType::e2D,
                                                                              .format = _format,
                                                                              .subresourceRange = wholeColorImage});
    }
    clear();
}

void VulkanTexture::clear() {
    vulkanDevice().runAndWait([this](const vk::raii::CommandBuffer& commands) {
        recordBarriers(commands, imageBarrier(image(), use::undefined, use::copyDestination));
        commands.clearColorImage(image(), use::copyDestination.layout, vk::ClearColorValue(), wholeColorImage);
        recordBarriers(commands, imageBarrier(image(), use::copyDestination, _rest));
    });
}

bool VulkanTexture::writeRegion(const Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow) {
    if (vulkanDevice().isLost()) {
        return false;
    }
    return vulkanDevice().attempt("a texture could not be filled", [&] {
        const std::size_t rowBytes = region.size.width * bytesPerPixel(pixelFormat());
        VulkanBuffer staging(vulkanDevice().self(), rowBytes * region.size.height);
        for (std::size_t row = 0; row < region.size.height; ++row) {
            std::memcpy(staging.contents() + row * rowBytes, bytes.data() + row * bytesPerRow, rowBytes);
        }
        const vk::BufferImageCopy copy{.imageSubresource = colorLayers(),
                                       .imageOffset = toOffset(region.origin),
                                       .imageExtent = toExtent(region.size)};
        vulkanDevice().runAndWait([&](const vk::raii::CommandBuffer& commands) {
            recordBarriers(commands, imageBarrier(image(), _rest, use::copyDestination));
            commands.copyBufferToImage(staging.buffer(), image(), use::copyDestination.layout, copy);
            recordBarriers(commands, imageBarrier(image(), use::copyDestination, _rest));
        });
        return true;
    });
}

void VulkanTexture::labelDidChange() {
    if (*_image) {
        vulkanDevice().setName(image(), label());
    }
}

vk::ImageMemoryBarrier2 imageBarrier(vk::Image image, const ImageUse& from, const ImageUse& to) {
    return {.srcStageMask = from.stages,
            .srcAccessMask = from.access & writes,
            .dstStageMask = to.stages,
            .dstAccessMask = to.access,
            .oldLayout = from.layout,
            .newLayout = to.layout,
            .srcQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED,
            .dstQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED,
            .image = image,
            .subresourceRange = wholeColorImage};
}

vk::ImageSubresourceLayers colorLayers() {
    return {.aspectMask = vk::ImageAspectFlagBits::eColor, .layerCount = 1};
}

vk::Offset3D toOffset(Origin origin) {
    return {.x = static_cast<std::int32_t>(origin.x), .y = static_cast<std::int32_t>(origin.y)};
}

vk::Extent3D toExtent(Extent size) {
    return {static_cast<std::uint32_t>(size.width), static_cast<std::uint32_t>(size.height), 1};
}

void recordBarriers(const vk::raii::CommandBuffer& commands, vk::ArrayProxy<const vk::ImageMemoryBarrier2> barriers) {
    commands.pipelineBarrier2({.imageMemoryBarrierCount = barriers.size(), .pImageMemoryBarriers = barriers.data()});
}

}  // namespace gpu::vulkan
