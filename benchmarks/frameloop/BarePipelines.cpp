#include "benchmarks/frameloop/BarePipelines.hpp"

#include <array>
#include <fstream>
#include <iterator>
#include <string>

namespace bench {
namespace {

vk::raii::Sampler makeSampler(const BareDevice& device, vk::Filter filter, vk::SamplerAddressMode mode) {
    return {device.handle(), vk::SamplerCreateInfo{.magFilter = filter,
                                                   .minFilter = filter,
                                                   .addressModeU = mode,
                                                   .addressModeV = mode,
                                                   .addressModeW = mode}};
}

vk::raii::DescriptorSetLayout makeSetLayout(const BareDevice& device, vk::DescriptorType type,
                                            const std::vector<const vk::Sampler*>& bindings) {
    std::vector<vk::DescriptorSetLayoutBinding> described;
    for (const vk::Sampler* sampler : bindings) {
        described.push_back({.binding = static_cast<std::uint32_t>(described.size()),
                             .descriptorType = type,
                             .descriptorCount = 1,
                             .stageFlags = vk::ShaderStageFlagBits::eVertex | vk::ShaderStageFlagBits::eFragment,
                             .pImmutableSamplers = sampler});
    }
    return {device.handle(),
            vk::DescriptorSetLayoutCreateInfo{.bindingCount = static_cast<std::uint32_t>(described.size()),
                                              .pBindings = described.data()}};
}

std::vector<vk::raii::DescriptorSetLayout> makeSetLayouts(const BareDevice& device, vk::Sampler repeating,
                                                          vk::Sampler clamping, vk::Sampler nearest) {
    std::vector<vk::raii::DescriptorSetLayout> layouts;
    layouts.push_back(makeSetLayout(device, vk::DescriptorType::eUniformBuffer, {nullptr}));
    layouts.push_back(makeSetLayout(device, vk::DescriptorType::eSampledImage, {nullptr, nullptr}));
    layouts.push_back(makeSetLayout(device, vk::DescriptorType::eSampler, {&repeating, &clamping, &nearest}));
    return layouts;
}

vk::raii::PipelineLayout makeLayout(const BareDevice& device,
                                    const std::vector<vk::raii::DescriptorSetLayout>& setLayouts) {
    std::vector<vk::DescriptorSetLayout> sets;
    for (const vk::raii::DescriptorSetLayout& layout : setLayouts) {
        sets.push_back(*layout);
    }
    const vk::PushConstantRange quad{.stageFlags = vk::ShaderStageFlagBits::eVertex, .size = 16 * sizeof(float)};
    return {device.handle(), vk::PipelineLayoutCreateInfo{.setLayoutCount = static_cast<std::uint32_t>(sets.size()),
                                                          .pSetLayouts = sets.data(),
                                                          .pushConstantRangeCount = 1,
                                                          .pPushConstantRanges = &quad}};
}

vk::raii::ShaderModule makeModule(const BareDevice& device, const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    std::vector<std::uint32_t> words(bytes.size() / sizeof(std::uint32_t));
    bytes.copy(reinterpret_cast<char*>(words.data()), words.size() * sizeof(std::uint32_t));
    return {device.handle(), vk::ShaderModuleCreateInfo{.codeSize = bytes.size(), .pCode = words.data()}};
}

/// Specialisation constant 0 is the device's kind; `rows`, of the intermediate images, becomes constant 1.
vk::raii::Pipeline makePipeline(const BareDevice& device, const BarePipelines& pipelines, vk::ShaderModule module,
                                const char* vertexFunction, const char* fragmentFunction,
                                const std::vector<vk::Format>& formats, std::uint32_t rows) {
    const std::array values{static_cast<std::uint32_t>(device.physicalDevice().getProperties().deviceType), rows};
    const std::array entries{
        vk::SpecializationMapEntry{.constantID = 0, .offset = 0, .size = sizeof(std::uint32_t)},
        vk::SpecializationMapEntry{.constantID = 1, .offset = sizeof(std::uint32_t), .size = sizeof(std::uint32_t)}};
    const vk::SpecializationInfo constants{.mapEntryCount = static_cast<std::uint32_t>(entries.size()),
                                           .pMapEntries = entries.data(),
                                           .dataSize = sizeof(values),
                                           .pData = values.data()};
    const auto stage = [&](vk::ShaderStageFlagBits bit, const char* function) {
        return vk::PipelineShaderStageCreateInfo{
            .stage = bit, .module = module, .pName = function, .pSpecializationInfo = &constants};
    };
    const std::array stages{stage(vk::ShaderStageFlagBits::eVertex, vertexFunction),
                            stage(vk::ShaderStageFlagBits::eFragment, fragmentFunction)};
    using Component = vk::ColorComponentFlagBits;
    const vk::PipelineVertexInputStateCreateInfo vertexInput;
    const vk::PipelineInputAssemblyStateCreateInfo assembly{.topology = vk::PrimitiveTopology::eTriangleStrip};
    const vk::PipelineViewportStateCreateInfo viewport{.viewportCount = 1, .scissorCount = 1};
    const vk::PipelineRasterizationStateCreateInfo rasterization{.lineWidth = 1.0F};
    const vk::PipelineMultisampleStateCreateInfo multisampling;
    const std::vector<vk::PipelineColorBlendAttachmentState> blends(
        formats.size(), {.colorWriteMask = Component::eR | Component::eG | Component::eB | Component::eA});
    const vk::PipelineColorBlendStateCreateInfo blending{.attachmentCount = static_cast<std::uint32_t>(blends.size()),
                                                         .pAttachments = blends.data()};
    const std::array dynamicStates{vk::DynamicState::eViewport, vk::DynamicState::eScissor};
    const vk::PipelineDynamicStateCreateInfo dynamic{
        .dynamicStateCount = static_cast<std::uint32_t>(dynamicStates.size()), .pDynamicStates = dynamicStates.data()};
    const vk::PipelineRenderingCreateInfo rendering{.colorAttachmentCount = static_cast<std::uint32_t>(formats.size()),
                                                    .pColorAttachmentFormats = formats.data()};
    return {device.handle(), nullptr,
            vk::GraphicsPipelineCreateInfo{.pNext = &rendering,
                                           .stageCount = static_cast<std::uint32_t>(stages.size()),
                                           .pStages = stages.data(),
                                           .pVertexInputState = &vertexInput,
                                           .pInputAssemblyState = &assembly,
                                           .pViewportState = &viewport,
                                           .pRasterizationState = &rasterization,
                                           .pMultisampleState = &multisampling,
                                           .pColorBlendState = &blending,
                                           .pDynamicState = &dynamic,
                                           .layout = pipelines.layout()}};
}

}  // namespace

BarePipelines::BarePipelines(const BareDevice& device, const std::filesystem::path& shaderLibrary, std::uint32_t rows)
    : _repeating(makeSampler(device, vk::Filter::eLinear, vk::SamplerAddressMode::eRepeat)),
      _clamping(makeSampler(device, vk::Filter::eLinear, vk::SamplerAddressMode::eClampToEdge)),
      _nearest(makeSampler(device, vk::Filter::eNearest, vk::SamplerAddressMode::eClampToEdge)),
      _setLayouts(makeSetLayouts(device, *_repeating, *_clamping, *_nearest)),
      _layout(makeLayout(device, _setLayouts)),
      _module(makeModule(device, shaderLibrary)),
      _colorPass(makePipeline(device, *this, *_module, "QZLColorVertexShader", "QZLColorFragmentShader",
                              {colorFormat, heightFormat}, rows)),
      _lightPass(makePipeline(device, *this, *_module, "QZLLightVertexShader", "QZLLightFragmentShader",
                              {pictureFormat}, rows)) {}

}  // namespace bench
