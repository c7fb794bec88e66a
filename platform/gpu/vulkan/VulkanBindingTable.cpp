#include "platform/gpu/vulkan/VulkanBindingTable.hpp"

#include "platform/gpu/vulkan/VulkanBuffer.hpp"
#include "platform/gpu/vulkan/VulkanCommandBuffer.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace gpu::vulkan {

template <typename Info>
void VulkanBindingTable::Slots<Info>::set(std::size_t index, const Info& info) {
    infos[index] = info;
    used[index] = true;
    changed = true;
}

void VulkanBindingTable::clear() {
    _buffers = {};
    _textures = {};
    _storageTextures = {};
    _samplersBound = false;
}

void VulkanBindingTable::setBuffer(const VulkanBuffer& buffer, std::size_t offset, std::size_t index) {
    const vk::DeviceSize limit = _commandBuffer.device().properties().limits.maxUniformBufferRange;
    _buffers.set(index, {.buffer = buffer.buffer(),
                         .offset = offset,
                         .range = std::min<vk::DeviceSize>(buffer.length() - offset, limit)});
}

void VulkanBindingTable::setTexture(const VulkanTexture& texture, std::size_t index) {
    _textures.set(index, {.imageView = texture.view(), .imageLayout = texture.rest().layout});
}

void VulkanBindingTable::setStorageTexture(const VulkanTexture& texture, std::size_t index) {
    _storageTextures.set(index, {.imageView = texture.view(), .imageLayout = texture.rest().layout});
}

void VulkanBindingTable::bind() {
    if (!_samplersBound) {
        bindSet(VulkanBindings::samplers, _commandBuffer.device().bindings().samplerSet());
        _samplersBound = true;
    }
    bindChanged(_buffers, VulkanBindings::buffers, vk::DescriptorType::eUniformBuffer);
    bindChanged(_textures, VulkanBindings::textures, vk::DescriptorType::eSampledImage);
    bindChanged(_storageTextures, VulkanBindings::storageTextures, vk::DescriptorType::eStorageImage);
}

template <typename Info>
void VulkanBindingTable::bindChanged(Slots<Info>& slots, VulkanBindings::Set set, vk::DescriptorType type) {
    if (!slots.changed) {
        return;
    }
    const vk::DescriptorSet descriptors = _commandBuffer.descriptors().allocate(set);
    std::array<vk::WriteDescriptorSet, count> writes;
    std::uint32_t written = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (slots.used[i]) {
            vk::WriteDescriptorSet& write = writes[written++];
            write = {.dstSet = descriptors, .dstBinding = i, .descriptorCount = 1, .descriptorType = type};
            if constexpr (std::is_same_v<Info, vk::DescriptorBufferInfo>) {
                write.pBufferInfo = &slots.infos[i];
            } else {
                write.pImageInfo = &slots.infos[i];
            }
        }
    }
    _commandBuffer.device().handle().updateDescriptorSets(vk::ArrayProxy(written, writes.data()), {});
    bindSet(set, descriptors);
    slots.changed = false;
}

void VulkanBindingTable::bindSet(VulkanBindings::Set set, vk::DescriptorSet descriptors) {
    _commandBuffer.commands().bindDescriptorSets(_bindPoint, _commandBuffer.device().bindings().pipelineLayout(), set,
                                                 descriptors, {});
}

}  // namespace gpu::vulkan
