#pragma once

#include "platform/gpu/Types.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"

namespace gpu::vulkan {

/// Vulkan's name of a pixel format; undefined for `Invalid`.
vk::Format toVulkan(PixelFormat format);
vk::AttachmentLoadOp toVulkan(LoadAction action);
vk::AttachmentStoreOp toVulkan(StoreAction action);
vk::PrimitiveTopology toVulkan(PrimitiveType type);

/// The clear value in the terms of the format's components: whole numbers for integer formats.
vk::ClearValue clearValue(PixelFormat format, const ClearColor& color);

}  // namespace gpu::vulkan
