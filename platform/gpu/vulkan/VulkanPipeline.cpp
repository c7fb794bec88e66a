#include "platform/gpu/vulkan/VulkanPipeline.hpp"

#include "platform/gpu/vulkan/VulkanBindings.hpp"
#include "platform/gpu/vulkan/VulkanFormats.hpp"
#include "platform/gpu/vulkan/VulkanLibrary.hpp"
#include "platform/gpu/vulkan/VulkanPipelineCache.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace gpu::vulkan {
namespace {

/// Specialisation constant 0 tells shaders what kind of device they run on, in Vulkan's numbers: 0 other, 1 integrated,
/// 2 discrete, 3 virtual, 4 CPU.
class DeviceKind {
public:
    explicit DeviceKind(const VulkanDevice& device)
        : _kind(static_cast<std::uint32_t>(device.properties().deviceType)) {}
    DeviceKind(const DeviceKind&) = delete;
    DeviceKind& operator=(const DeviceKind&) = delete;

    const vk::SpecializationInfo* info() const { return &_info; }

private:
    std::uint32_t _kind;
    vk::SpecializationMapEntry _entry{.constantID = 0, .offset = 0, .size = sizeof(_kind)};
    vk::SpecializationInfo _info{
        .mapEntryCount = 1, .pMapEntries = &_entry, .dataSize = sizeof(_kind), .pData = &_kind};
};

vk::PipelineShaderStageCreateInfo stage(const Function& function, vk::ShaderStageFlagBits bit, const DeviceKind& kind) {
    return {.stage = bit,
            .module = static_cast<const VulkanFunction&>(function).module(),
            .pName = function.name().c_str(),
            .pSpecializationInfo = kind.info()};
}

vk::PipelineColorBlendAttachmentState overwriting() {
    using Component = vk::ColorComponentFlagBits;
    return {.colorWriteMask = Component::eR | Component::eG | Component::eB | Component::eA};
}

}  // namespace

VulkanRenderPipelineState::VulkanRenderPipelineState(const std::shared_ptr<VulkanDevice>& device,
                                                     const RenderPipelineDescriptor& descriptor)
    : RenderPipelineState(device), _colorAttachmentFormats(descriptor.colorAttachmentFormats) {
    const DeviceKind kind(*device);
    const std::array stages{stage(*descriptor.vertexFunction, vk::ShaderStageFlagBits::eVertex, kind),
                            stage(*descriptor.fragmentFunction, vk::ShaderStageFlagBits::eFragment, kind)};
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
    const DeviceKind kind(*device);
    const vk::ComputePipelineCreateInfo info{.stage = stage(*function, vk::ShaderStageFlagBits::eCompute, kind),
                                             .layout = device->bindings().pipelineLayout()};
    _pipeline = vk::raii::Pipeline(device->handle(), device->pipelineCache().handle(), info);
    device->pipelineCache().save();  // now, as nobody knows how the process will end
}

void VulkanComputePipelineState::labelDidChange() {
    static_cast<VulkanDevice&>(*device()).setName(pipeline(), label());
}

}  // namespace gpu::vulkan
