#pragma once

#include "platform/gpu/CommandEncoder.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanBindings.hpp"

#include <array>
#include <cstddef>

namespace gpu::vulkan {

class VulkanBuffer;
class VulkanCommandBuffer;
class VulkanTexture;

/// What one pass has bound so far. Writes and binds descriptor sets only where something changed since the last draw.
class VulkanBindingTable {
public:
    VulkanBindingTable(VulkanCommandBuffer& commandBuffer, vk::PipelineBindPoint bindPoint)
        : _commandBuffer(commandBuffer), _bindPoint(bindPoint) {}

    /// Forgets all, at the start of a pass.
    void clear();
    void setBuffer(const VulkanBuffer& buffer, std::size_t offset, std::size_t index);
    void setTexture(const VulkanTexture& texture, std::size_t index);
    void setStorageTexture(const VulkanTexture& texture, std::size_t index);

    /// Before each draw or dispatch. Throws.
    void bind();

private:
    static constexpr std::size_t count = RenderCommandEncoder::maximumBindings;

    template <typename Info>
    struct Slots {
        std::array<Info, count> infos{};
        DescriptorContents contents;
        bool changed = false;

        void set(std::size_t index, const Info& info, DescriptorContents::Binding binding);
    };

    template <typename Info>
    void chooseSet(Slots<Info>& slots, VulkanBindings::Set kind, vk::DescriptorType type);
    template <typename Info>
    void write(vk::DescriptorSet set, const Slots<Info>& slots, vk::DescriptorType type) const;
    void chooseSet(VulkanBindings::Set kind, vk::DescriptorSet set);
    void bindChosen();

    VulkanCommandBuffer& _commandBuffer;
    vk::PipelineBindPoint _bindPoint;
    Slots<vk::DescriptorBufferInfo> _buffers;
    Slots<vk::DescriptorImageInfo> _textures;
    Slots<vk::DescriptorImageInfo> _storageTextures;
    bool _samplersChosen = false;
    std::array<vk::DescriptorSet, VulkanBindings::setCount> _sets;
    std::array<bool, VulkanBindings::setCount> _chosen{};  ///< and not yet bound
};

}  // namespace gpu::vulkan
