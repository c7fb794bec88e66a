#pragma once

#include "platform/gpu/Resources.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace gpu::vulkan {

/// A layout of an image together with the stages and accesses that go with it.
struct ImageUse {
    vk::ImageLayout layout = vk::ImageLayout::eUndefined;
    vk::PipelineStageFlags2 stages;
    vk::AccessFlags2 access;
};

/// Every use that the backend makes of images. `sampled`, `stored` and `copySource` also serve as resting places.
namespace use {
extern const ImageUse undefined;
extern const ImageUse sampled;
extern const ImageUse stored;  ///< written as a storage image, and sampled
extern const ImageUse colorTarget;
extern const ImageUse copySource;  ///< copies and blits
extern const ImageUse copyDestination;
}  // namespace use

/// A stand-in is without memory: it is what frames of a lost device are given, which never touch it.
enum class TexturePurpose { Ordinary, LayerImage, StandIn };

/// An image with its view and memory. Between passes it rests in the one layout that its purpose makes likeliest: layer
/// images as copy source, those that shaders write in GENERAL, all others ready for sampling. Whoever uses it
/// otherwise brings it from rest and back with `barrier`.
class VulkanTexture final : public Texture {
public:
    /// Cleared to zero and at rest. Throws.
    VulkanTexture(const std::shared_ptr<VulkanDevice>& device, const TextureDescriptor& descriptor,
                  TexturePurpose purpose, bool framebufferOnly);

    /// Never that of another resource of the process.
    std::uint64_t serial() const { return _serial; }
    vk::Image image() const { return *_image; }
    vk::ImageView view() const { return *_view; }
    vk::Format format() const { return _format; }
    vk::Extent2D extent() const { return {static_cast<std::uint32_t>(width()), static_cast<std::uint32_t>(height())}; }
    const ImageUse& rest() const { return _rest; }

    VulkanDevice& vulkanDevice() const { return static_cast<VulkanDevice&>(*device()); }

private:
    bool writeRegion(const Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow) override;
    void labelDidChange() override;
    void clear();

    const std::uint64_t _serial = nextResourceSerial();
    vk::Format _format;
    const ImageUse& _rest;
    vk::raii::DeviceMemory _memory = nullptr;
    vk::raii::Image _image = nullptr;
    vk::raii::ImageView _view = nullptr;
};

/// The one level and slice that images have here.
inline constexpr vk::ImageSubresourceRange wholeColorImage{
    .aspectMask = vk::ImageAspectFlagBits::eColor, .levelCount = 1, .layerCount = 1};

/// What makes `to` wait for `from` and moves the one level of `image` between their layouts. With `from` undefined in
/// layout the former pixels are dropped.
vk::ImageMemoryBarrier2 imageBarrier(vk::Image image, const ImageUse& from, const ImageUse& to);

/// Level 0, slice 0, colour.
vk::ImageSubresourceLayers colorLayers();
vk::Offset3D toOffset(Origin origin);
vk::Extent3D toExtent(Extent size);

void recordBarriers(const vk::raii::CommandBuffer& commands, vk::ArrayProxy<const vk::ImageMemoryBarrier2> barriers);

}  // namespace gpu::vulkan
