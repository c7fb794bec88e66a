#include "platform/gpu/vulkan/VulkanFormats.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace gpu::vulkan {

vk::Format toVulkan(PixelFormat format) {
    switch (format) {
        case PixelFormat::Invalid: return vk::Format::eUndefined;
        case PixelFormat::R8Unorm: return vk::Format::eR8Unorm;
        case PixelFormat::R8Snorm: return vk::Format::eR8Snorm;
        case PixelFormat::R16Unorm: return vk::Format::eR16Unorm;
        case PixelFormat::RGBA8Unorm: return vk::Format::eR8G8B8A8Unorm;
        case PixelFormat::RGBA8UnormSrgb: return vk::Format::eR8G8B8A8Srgb;
        case PixelFormat::RGBA8Uint: return vk::Format::eR8G8B8A8Uint;
        case PixelFormat::BGRA8Unorm: return vk::Format::eB8G8R8A8Unorm;
        case PixelFormat::BGRA8UnormSrgb: return vk::Format::eB8G8R8A8Srgb;
        case PixelFormat::RGB10A2Unorm: return vk::Format::eA2B10G10R10UnormPack32;  // red in the lowest bits
        case PixelFormat::RGBA16Float: return vk::Format::eR16G16B16A16Sfloat;
    }
    return vk::Format::eUndefined;
}

vk::AttachmentLoadOp toVulkan(LoadAction action) {
    switch (action) {
        case LoadAction::DontCare: return vk::AttachmentLoadOp::eDontCare;
        case LoadAction::Load: return vk::AttachmentLoadOp::eLoad;
        case LoadAction::Clear: return vk::AttachmentLoadOp::eClear;
    }
    return vk::AttachmentLoadOp::eDontCare;
}

vk::AttachmentStoreOp toVulkan(StoreAction action) {
    return action == StoreAction::Store ? vk::AttachmentStoreOp::eStore : vk::AttachmentStoreOp::eDontCare;
}

vk::PrimitiveTopology toVulkan(PrimitiveType type) {
    return type == PrimitiveType::Triangle ? vk::PrimitiveTopology::eTriangleList
                                           : vk::PrimitiveTopology::eTriangleStrip;
}

vk::ClearValue clearValue(PixelFormat format, const ClearColor& color) {
    const std::array<double, 4> components{color.red, color.green, color.blue, color.alpha};
    if (format == PixelFormat::RGBA8Uint) {
        std::array<std::uint32_t, 4> whole{};
        std::transform(components.begin(), components.end(), whole.begin(), [](double component) {
            return component > 0.0 ? static_cast<std::uint32_t>(std::min(component, 255.0)) : 0;  // not a number: 0
        });
        return vk::ClearColorValue(whole);
    }
    std::array<float, 4> real{};
    std::transform(components.begin(), components.end(), real.begin(),
                   [](double component) { return static_cast<float>(component); });
    return vk::ClearColorValue(real);
}

}  // namespace gpu::vulkan
