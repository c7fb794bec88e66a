#include "platform/gpu/vulkan/VulkanBindingTable.hpp"

#include "platform/gpu/vulkan/VulkanBuffer.hpp"
#include "platform/gpu/vulkan/VulkanCommandBuffer.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace gpu::vulkan {

template <typename Info>
void VulkanBindingTable::Slots<Info>::set(std::size_t index, const Info& info, DescriptorContents::Binding binding) {
    infos[index] = info;
    contents.bindings[index] = binding;
    changed = true;
}

void VulkanBindingTable::clear() {
    _buffers = {};
    _textures = {};
    _storageTextures = {};
    _samplersChosen = false;
    _chosen = {};
}

void VulkanBindingTable::setBuffer(const VulkanBuffer& buffer, std::size_t offset, std::size_t index) {
    const vk::DeviceSize limit = _commandBuffer.device().properties().limits.maxUniformBufferRange;
    const vk::DeviceSize range = std::min<vk::DeviceSize>(buffer.length() - offset, limit);
    _buffers.set(index, {.buffer = buffer.buffer(), .offset = offset, .range = range}, {buffer.serial(), offset});
}

void VulkanBindingTable::setTexture(const VulkanTexture& texture, std::size_t index) {
    _textures.set(index, {.imageView = texture.view(), .imageLayout = texture.rest().layout}, {texture.serial()});
}

void VulkanBindingTable::setStorageTexture(const VulkanTexture& texture, std::size_t index) {
    _storageTextures.set(index, {.imageView = texture.view(), .imageLayout = texture.rest().layout},
                         {texture.serial()});
}

void VulkanBindingTable::bind() {
    chooseSet(_buffers, VulkanBindings::buffers, vk::DescriptorType::eUniformBuffer);
    chooseSet(_textures, VulkanBindings::textures, vk::DescriptorType::eSampledImage);
    chooseSet(_storageTextures, VulkanBindings::storageTextures, vk::DescriptorType::eStorageImage);
    if (!std::exchange(_samplersChosen, true)) {
        chooseSet(VulkanBindings::samplers, _commandBuffer.device().bindings().samplerSet());
    }
    bindChosen();
}

template <typename Info>
void VulkanBindingTable::chooseSet(Slots<Info>& slots, VulkanBindings::Set kind, vk::DescriptorType type) {
    if (!slots.changed) {
        return;
    }
    const DescriptorSets::Found found = _commandBuffer.descriptors().find(kind, slots.contents);
    if (!found.isWritten) {
        write(found.handle, slots, type);
    }
    chooseSet(kind, found.handle);
    slots.changed = false;
}

template <typename Info>
void VulkanBindingTable::write(vk::DescriptorSet set, const Slots<Info>& slots, vk::DescriptorType type) const {
    std::array<vk::WriteDescriptorSet, count> writes;
    std::uint32_t written = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (slots.contents.bindings[i].resource != 0) {
            vk::WriteDescriptorSet& write = writes[written++];
            write = {.dstSet = set, .dstBinding = i, .descriptorCount = 1, .descriptorType = type};
            if constexpr (std::is_same_v<Info, vk::DescriptorBufferInfo>) {
                write.pBufferInfo = &slots.infos[i];
            } else {
                write.pImageInfo = &slots.infos[i];
            }
        }
    }
    _commandBuffer.device().handle().updateDescriptorSets(vk::ArrayProxy(written, writes.data()), {});
}

void VulkanBindingTable::chooseSet(VulkanBindings::Set kind, vk::DescriptorSet set) {
    _sets[kind] = set;
    _chosen[kind] = true;
}

/// Neighbours go in one call.
void VulkanBindingTable::bindChosen() {
    const auto end = _chosen.end();
    for (auto first = std::find(_chosen.begin(), end, true); first != end; first = std::find(first, end, true)) {
        const auto last = std::find(first, end, false);
        const auto set = static_cast<std::uint32_t>(first - _chosen.begin());
        _commandBuffer.commands().bindDescriptorSets(
            _bindPoint, _commandBuffer.device().bindings().pipelineLayout(), set,
            vk::ArrayProxy<const vk::DescriptorSet>(static_cast<std::uint32_t>(last - first), &_sets[set]), {});
        std::fill(first, last, false);
    }
}

}  // namespace gpu::vulkan
