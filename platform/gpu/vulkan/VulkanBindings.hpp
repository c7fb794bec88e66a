#pragma once

#include "platform/gpu/vulkan/Vulkan.hpp"

#include <array>
#include <cstdint>
#include <vector>

namespace gpu::vulkan {

/// The one binding layout that all pipelines share: set 0 holds uniform buffers, set 1 sampled images, set 2 the
/// repeating and the clamping linear sampler, set 3 storage images; vertex bytes are push constants. One per device.
class VulkanBindings {
public:
    enum Set : std::uint32_t { buffers = 0, textures = 1, samplers = 2, storageTextures = 3 };
    static constexpr std::uint32_t setCount = 4;

    /// Throws.
    explicit VulkanBindings(const vk::raii::Device& device);

    vk::PipelineLayout pipelineLayout() const { return *_pipelineLayout; }
    vk::DescriptorSetLayout setLayout(Set set) const { return *_setLayouts[set]; }
    /// The samplers, bound once per pass.
    vk::DescriptorSet samplerSet() const { return *_samplerSets.front(); }

private:
    vk::raii::Sampler _repeating;
    vk::raii::Sampler _clamping;
    std::vector<vk::raii::DescriptorSetLayout> _setLayouts;
    vk::raii::PipelineLayout _pipelineLayout;
    vk::raii::DescriptorPool _samplerPool;
    vk::raii::DescriptorSets _samplerSets;
};

/// Hands out descriptor sets for the passes of one command buffer and takes all back at once. One thread at a time.
class DescriptorAllocator {
public:
    DescriptorAllocator(const vk::raii::Device& device, const VulkanBindings& bindings);

    /// A set to be written. Valid until `reset`. Throws.
    vk::DescriptorSet allocate(VulkanBindings::Set set);
    /// The GPU must have finished with all sets. The memory stays.
    void reset();

private:
    const vk::raii::Device& _device;
    const VulkanBindings& _bindings;
    std::vector<vk::raii::DescriptorPool> _pools;
    std::size_t _poolInUse = 0;
    std::uint32_t _setsLeft = 0;
};

}  // namespace gpu::vulkan
