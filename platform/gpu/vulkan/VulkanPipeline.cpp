#include "platform/gpu/vulkan/VulkanPipeline.hpp"

#include "platform/gpu/vulkan/VulkanBindings.hpp"
#include "platform/gpu/vulkan/VulkanFormats.hpp"
#include "platform/gpu/vulkan/VulkanLibrary.hpp"
#include "platform/gpu/vulkan/VulkanPipelineCache.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <vector>

namespace gpu::vulkan {
namespace {

/// Specialisation constant 0 tells shaders what kind of device they run on, in Vulkan's numbers: 0 other, 1 integrated,
/// 2 discrete, 3 virtual, 4 CPU. The others are the caller's.
class Constants {
public:
    explicit Constants(const VulkanDevice& device, const std::vector<std::uint32_t>& others = {})
        : _values{static_cast<std::uint32_t>(device.properties().deviceType)} {
        _values.insert(_values.end(), others.begin(), others.end());
        for (std::uint32_t id = 0; id < _values.size(); ++id) {
            _entries.push_back({.constantID = id,
                                .offset = id * static_cast<std::uint32_t>(sizeof(std::uint32_t)),
                                .size = sizeof(std::uint32_t)});
        }
        _info = {.mapEntryCount = static_cast<std::uint32_t>(_entries.size()),
                 .pMapEntries = _entries.data(),
                 .dataSize = _values.size() * sizeof(std::uint32_t),
                 .pData = _values.data()};
    }
    Constants(const Constants&) = delete;
    Constants& operator=(const Constants&) = delete;

    const vk::SpecializationInfo* info() const { return &_info; }

private:
    std::vector<std::uint32_t> _values;
    std::vector<vk::SpecializationMapEntry> _entries;
    vk::SpecializationInfo _info;
};

vk::PipelineShaderStageCreateInfo stage(const Function& function, vk::ShaderStageFlagBits bit,
                                        const Constants& constants) {
    return {.stage = bit,
            .module = static_cast<const VulkanFunction&>(function).module(),
            .pName = function.name().c_str(),
            .pSpecializationInfo = constants.info()};
}

vk::PipelineColorBlendAttachmentState overwriting() {
    using Component = vk::ColorComponentFlagBits;
    return {.colorWriteMask = Component::eR | Component::eG | Component::eB | Component::eA};
}

}  // namespace

VulkanRenderPipelineState::VulkanRenderPipelineState(const std::shared_ptr<VulkanDevice>& device,
                                                     const RenderPipelineDescriptor& descriptor)
    : RenderPipelineState(device), _colorAttachmentFormats(descriptor.colorAttachmentFormats) {
    const Constants constants(*device, descriptor.constants);
    const std::array stages{stage(*descriptor.vertexFunction, vk::ShaderStageFlagBits::eVertex, constants),
                            stage(*descriptor.fragmentFunction, vk::ShaderStageFlagBits::eFragment, constants)};
    const vk::PipelineVertexInputStateCreateInfo vertexInput;
    const vk::PipelineInputAssemblyStateCreateInfo inputAssembly{.topology = vk::PrimitiveTopology::eTriangleStrip};
    const vk::PipelineViewportStateCreateInfo viewport{.viewportCount = 1, .scissorCount = 1};
    const vk::PipelineRasterizationStateCreateInfo rasterization{.lineWidth = 1.0F};
    const vk::PipelineMultisampleStateCreateInfo multisampling;
    const std::vector<vk::PipelineColorBlendAttachmentState> blending(_colorAttachmentFormats.size(), overwriting());
    const vk::PipelineColorBlendStateCreateInfo colorBlending{
        .attachmentCount = static_cast<std::uint32_t>(blending.size()), .pAttachments = blending.data()};
    const std::array dynamicStates{vk::DynamicState::eViewport, vk::DynamicState::eScissor,
                                   vk::DynamicState::ePrimitiveTopology};
    const vk::PipelineDynamicStateCreateInfo dynamic{
        .dynamicStateCount = static_cast<std::uint32_t>(dynamicStates.size()), .pDynamicStates = dynamicStates.data()};
    std::vector<vk::Format> formats;
    std::transform(_colorAttachmentFormats.begin(), _colorAttachmentFormats.end(), std::back_inserter(formats),
                   [](PixelFormat format) { return toVulkan(format); });
    const vk::PipelineRenderingCreateInfo rendering{.colorAttachmentCount = static_cast<std::uint32_t>(formats.size()),
                                                    .pColorAttachmentFormats = formats.data()};
    const vk::GraphicsPipelineCreateInfo info{.pNext = &rendering,
                                              .stageCount = static_cast<std::uint32_t>(stages.size()),
                                              .pStages = stages.data(),
                                              .pVertexInputState = &vertexInput,
                                              .pInputAssemblyState = &inputAssembly,
                                              .pViewportState = &viewport,
                                              .pRasterizationState = &rasterization,
                                              .pMultisampleState = &multisampling,
                                              .pColorBlendState = &colorBlending,
                                              .pDynamicState = &dynamic,
                                              .layout = device->bindings().pipelineLayout()};
    _pipeline = vk::raii::Pipeline(device->handle(), device->pipelineCache().handle(), info);
    device->pipelineCache().save();  // now, as nobody knows how the process will end
}

void VulkanRenderPipelineState::labelDidChange() {
    static_cast<VulkanDevice&>(*device()).setName(pipeline(), label());
}

VulkanComputePipelineState::VulkanComputePipelineState(const std::shared_ptr<VulkanDevice>& device,
                                                       const std::shared_ptr<Function>& function)
    : ComputePipelineState(device) {
    const Constants constants(*device);
    const vk::ComputePipelineCreateInfo info{.stage = stage(*function, vk::ShaderStageFlagBits::eCompute, constants),
                                             .layout = device->bindings().pipelineLayout()};
    _pipeline = vk::raii::Pipeline(device->handle(), device->pipelineCache().handle(), info);
    device->pipelineCache().save();  // now, as nobody knows how the process will end
}

void VulkanComputePipelineState::labelDidChange() {
    static_cast<VulkanDevice&>(*device()).setName(pipeline(), label());
}

}  // namespace gpu::vulkan
