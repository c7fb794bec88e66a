#include "platform/gpu/vulkan/VulkanBindings.hpp"

namespace gpu::vulkan {
namespace {

constexpr std::uint32_t bindingsPerSet = RenderCommandEncoder::maximumBindings;
constexpr std::uint32_t setsPerPool = 64;
constexpr std::size_t keptSets = 48;  // frames in flight times passes times kinds of sets, with room

using Samplers = std::array<vk::Sampler, 3>;

vk::raii::Sampler makeSampler(const vk::raii::Device& device, vk::Filter filter, vk::SamplerAddressMode addressMode) {
    return {device, vk::SamplerCreateInfo{.magFilter = filter,
                                          .minFilter = filter,
                                          .addressModeU = addressMode,
                                          .addressModeV = addressMode,
                                          .addressModeW = addressMode}};
}

vk::ShaderStageFlags stagesThatSee(vk::DescriptorType type) {
    using Stage = vk::ShaderStageFlagBits;
    return type == vk::DescriptorType::eStorageImage ? Stage::eCompute
                                                     : Stage::eVertex | Stage::eFragment | Stage::eCompute;
}

vk::raii::DescriptorSetLayout makeSetLayout(const vk::raii::Device& device, vk::DescriptorType type) {
    std::array<vk::DescriptorSetLayoutBinding, bindingsPerSet> bindings;
    for (std::uint32_t i = 0; i < bindingsPerSet; ++i) {
        bindings[i] = {.binding = i, .descriptorType = type, .descriptorCount = 1, .stageFlags = stagesThatSee(type)};
    }
    return {device, vk::DescriptorSetLayoutCreateInfo{.bindingCount = bindingsPerSet, .pBindings = bindings.data()}};
}

vk::raii::DescriptorSetLayout makeSamplerLayout(const vk::raii::Device& device, const Samplers& samplers) {
    std::array<vk::DescriptorSetLayoutBinding, std::tuple_size_v<Samplers>> bindings;
    for (std::uint32_t i = 0; i < samplers.size(); ++i) {
        bindings[i] = {.binding = i,
                       .descriptorType = vk::DescriptorType::eSampler,
                       .descriptorCount = 1,
                       .stageFlags = stagesThatSee(vk::DescriptorType::eSampler),
                       .pImmutableSamplers = &samplers[i]};
    }
    return {device, vk::DescriptorSetLayoutCreateInfo{.bindingCount = static_cast<std::uint32_t>(bindings.size()),
                                                      .pBindings = bindings.data()}};
}

std::vector<vk::raii::DescriptorSetLayout> makeSetLayouts(const vk::raii::Device& device, const Samplers& samplers) {
    std::vector<vk::raii::DescriptorSetLayout> layouts;
    layouts.push_back(makeSetLayout(device, vk::DescriptorType::eUniformBuffer));
    layouts.push_back(makeSetLayout(device, vk::DescriptorType::eSampledImage));
    layouts.push_back(makeSamplerLayout(device, samplers));
    layouts.push_back(makeSetLayout(device, vk::DescriptorType::eStorageImage));
    return layouts;
}

vk::raii::PipelineLayout makePipelineLayout(const vk::raii::Device& device,
                                            const std::vector<vk::raii::DescriptorSetLayout>& setLayouts) {
    std::array<vk::DescriptorSetLayout, VulkanBindings::setCount> layouts;
    for (std::size_t i = 0; i < layouts.size(); ++i) {
        layouts[i] = *setLayouts[i];
    }
    const vk::PushConstantRange vertexBytes{.stageFlags = vk::ShaderStageFlagBits::eVertex,
                                            .size = RenderCommandEncoder::maximumVertexBytes};
    return {device, vk::PipelineLayoutCreateInfo{.setLayoutCount = static_cast<std::uint32_t>(layouts.size()),
                                                 .pSetLayouts = layouts.data(),
                                                 .pushConstantRangeCount = 1,
                                                 .pPushConstantRanges = &vertexBytes}};
}

vk::raii::DescriptorPool makeSamplerPool(const vk::raii::Device& device) {
    const vk::DescriptorPoolSize size{.type = vk::DescriptorType::eSampler,
                                      .descriptorCount = std::tuple_size_v<Samplers>};
    return {device, vk::DescriptorPoolCreateInfo{.flags = vk::DescriptorPoolCreateFlagBits::eFreeDescriptorSet,
                                                 .maxSets = 1,
                                                 .poolSizeCount = 1,
                                                 .pPoolSizes = &size}};
}

vk::raii::DescriptorSets makeSamplerSets(const vk::raii::Device& device, const vk::raii::DescriptorPool& pool,
                                         const vk::raii::DescriptorSetLayout& layout) {
    const vk::DescriptorSetLayout samplerLayout = *layout;
    return {device, vk::DescriptorSetAllocateInfo{
                        .descriptorPool = *pool, .descriptorSetCount = 1, .pSetLayouts = &samplerLayout}};
}

vk::raii::DescriptorPool makePassPool(const vk::raii::Device& device) {
    std::array<vk::DescriptorPoolSize, 3> sizes;
    sizes[0] = {.type = vk::DescriptorType::eUniformBuffer, .descriptorCount = setsPerPool * bindingsPerSet};
    sizes[1] = {.type = vk::DescriptorType::eSampledImage, .descriptorCount = setsPerPool * bindingsPerSet};
    sizes[2] = {.type = vk::DescriptorType::eStorageImage, .descriptorCount = setsPerPool * bindingsPerSet};
    return {device, vk::DescriptorPoolCreateInfo{.maxSets = setsPerPool,
                                                 .poolSizeCount = static_cast<std::uint32_t>(sizes.size()),
                                                 .pPoolSizes = sizes.data()}};
}

}  // namespace

VulkanBindings::VulkanBindings(const vk::raii::Device& device)
    : _repeating(makeSampler(device, vk::Filter::eLinear, vk::SamplerAddressMode::eRepeat)),
      _clamping(makeSampler(device, vk::Filter::eLinear, vk::SamplerAddressMode::eClampToEdge)),
      _nearest(makeSampler(device, vk::Filter::eNearest, vk::SamplerAddressMode::eClampToEdge)),
      _setLayouts(makeSetLayouts(device, {*_repeating, *_clamping, *_nearest})),
      _pipelineLayout(makePipelineLayout(device, _setLayouts)),
      _samplerPool(makeSamplerPool(device)),
      _samplerSets(makeSamplerSets(device, _samplerPool, _setLayouts[samplers])) {}

DescriptorSets::DescriptorSets(const vk::raii::Device& device, const VulkanBindings& bindings)
    : _device(device), _bindings(bindings) {
    _entries.reserve(setsPerPool);
}

DescriptorSets::Found DescriptorSets::find(VulkanBindings::Set kind, const DescriptorContents& contents) {
    for (const Entry& entry : _entries) {
        if (entry.kind == kind && entry.contents == contents) {
            return {entry.handle, true};
        }
    }
    _entries.push_back({kind, contents, allocate(kind)});
    return {_entries.back().handle, false};
}

vk::DescriptorSet DescriptorSets::allocate(VulkanBindings::Set kind) {
    if (_entries.size() == _pools.size() * setsPerPool) {
        _pools.push_back(makePassPool(_device));
    }
    const vk::DescriptorSetLayout layout = _bindings.setLayout(kind);
    const vk::DescriptorSetAllocateInfo info{
        .descriptorPool = *_pools[_entries.size() / setsPerPool], .descriptorSetCount = 1, .pSetLayouts = &layout};
    vk::DescriptorSet allocated;
    vk::resultCheck((*_device).allocateDescriptorSets(&info, &allocated, *_device.getDispatcher()),
                    "vkAllocateDescriptorSets");
    return allocated;
}

void DescriptorSets::recycle() {
    if (_entries.size() <= keptSets) {
        return;
    }
    for (const vk::raii::DescriptorPool& pool : _pools) {
        pool.reset();
    }
    _entries.clear();
}

}  // namespace gpu::vulkan
