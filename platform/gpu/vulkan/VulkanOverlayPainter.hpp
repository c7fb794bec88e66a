#pragma once

#include "platform/gpu/Layer.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <memory>

namespace gpu::vulkan {

/// Blends a layer's overlay over pictures in a window's images. Makes what it needs when it meets its first overlay,
/// and keeps the overlay's texture until another overlay comes. Belongs to one thread, the presenter's; what it
/// recorded must have been carried out before the next `prepare`.
class VulkanOverlayPainter {
public:
    explicit VulkanOverlayPainter(VulkanDevice& device) : _device(device) {}

    /// From now on `record` paints this overlay on images of this format. Throws.
    void prepare(std::shared_ptr<const Overlay> overlay, vk::Format format);
    /// Paints on the image behind the view, which is in use as colour target.
    void record(const vk::raii::CommandBuffer& commands, vk::ImageView view, vk::Extent2D size) const;

    /// True for formats that can be blended into.
    static bool canPaintOn(const VulkanDevice& device, vk::Format format);

private:
    void makeLayouts();
    void makePipeline(vk::Format format);
    void upload(const Overlay& overlay);
    void makeTexture(Extent size);

    VulkanDevice& _device;
    vk::raii::DescriptorSetLayout _setLayout = nullptr;
    vk::raii::PipelineLayout _pipelineLayout = nullptr;
    vk::raii::DescriptorPool _pool = nullptr;
    vk::DescriptorSet _set;
    vk::raii::Pipeline _pipeline = nullptr;
    vk::Format _format = vk::Format::eUndefined;
    std::shared_ptr<VulkanTexture> _texture;
    std::shared_ptr<const Overlay> _overlay;
};

}  // namespace gpu::vulkan
