#pragma once

#include "platform/gpu/CommandEncoder.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"

#include <array>
#include <cstdint>
#include <vector>

namespace gpu::vulkan {

/// The one binding layout that all pipelines share: set 0 holds uniform buffers, set 1 sampled images, set 2 a
/// repeating linear, a clamping linear and a clamping nearest sampler, set 3 storage images; vertex bytes are push
/// constants. One per device.
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
    vk::raii::Sampler _nearest;
    std::vector<vk::raii::DescriptorSetLayout> _setLayouts;
    vk::raii::PipelineLayout _pipelineLayout;
    vk::raii::DescriptorPool _samplerPool;
    vk::raii::DescriptorSets _samplerSets;
};

/// What a descriptor set holds, binding by binding. Resources are told apart by serial numbers, as handles come again.
struct DescriptorContents {
    struct Binding {
        std::uint64_t resource = 0;  ///< its serial number; 0 for an empty binding
        std::uint64_t offset = 0;
        bool operator==(const Binding&) const = default;
    };
    std::array<Binding, RenderCommandEncoder::maximumBindings> bindings{};
    bool operator==(const DescriptorContents&) const = default;
};

/// The descriptor sets of the passes of one command buffer. Frames that bind what earlier ones have bound get their
/// sets as they were written then. One thread at a time.
class DescriptorSets {
public:
    DescriptorSets(const vk::raii::Device& device, const VulkanBindings& bindings);

    struct Found {
        vk::DescriptorSet handle;
        bool isWritten = false;  ///< otherwise the caller writes it
    };
    /// The set of that kind and contents; valid until `recycle`. Throws.
    Found find(VulkanBindings::Set kind, const DescriptorContents& contents);
    /// Gives up the sets, or keeps them for coming passes while they are few. The GPU must have finished with them all.
    void recycle();

private:
    struct Entry {
        VulkanBindings::Set kind;
        DescriptorContents contents;
        vk::DescriptorSet handle;
    };

    vk::DescriptorSet allocate(VulkanBindings::Set kind);

    const vk::raii::Device& _device;
    const VulkanBindings& _bindings;
    std::vector<vk::raii::DescriptorPool> _pools;
    std::vector<Entry> _entries;
};

}  // namespace gpu::vulkan
