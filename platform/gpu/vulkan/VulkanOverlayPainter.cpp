#include "platform/gpu/vulkan/VulkanOverlayPainter.hpp"

#include "platform/gpu/vulkan/VulkanPipelineCache.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <utility>

namespace gpu::vulkan {
namespace {

#include "overlayFragmentShader.inc"
#include "overlayVertexShader.inc"

/// What the fragment shader is told: the overlay's corner in the window.
using Corner = std::array<std::int32_t, 2>;

vk::raii::ShaderModule makeModule(const VulkanDevice& device, std::span<const std::uint32_t> words) {
    return {device.handle(), vk::ShaderModuleCreateInfo{.codeSize = words.size_bytes(), .pCode = words.data()}};
}

/// The colours already are multiplied by alpha.
vk::PipelineColorBlendAttachmentState blendingOver() {
    using Component = vk::ColorComponentFlagBits;
    return {.blendEnable = VK_TRUE,
            .srcColorBlendFactor = vk::BlendFactor::eOne,
            .dstColorBlendFactor = vk::BlendFactor::eOneMinusSrcAlpha,
            .colorBlendOp = vk::BlendOp::eAdd,
            .srcAlphaBlendFactor = vk::BlendFactor::eOne,
            .dstAlphaBlendFactor = vk::BlendFactor::eOneMinusSrcAlpha,
            .alphaBlendOp = vk::BlendOp::eAdd,
            .colorWriteMask = Component::eR | Component::eG | Component::eB | Component::eA};
}

/// From where to where it reaches inside the window, along one axis.
struct Reach {
    std::int32_t begin = 0;
    std::uint32_t length = 0;
};

Reach inside(std::int64_t begin, std::size_t length, std::uint32_t windowLength) {
    const std::int64_t first = std::max<std::int64_t>(begin, 0);
    const std::int64_t end = std::min(begin + static_cast<std::int64_t>(length), std::int64_t{windowLength});
    return end > first ? Reach{static_cast<std::int32_t>(first), static_cast<std::uint32_t>(end - first)} : Reach{};
}

}  // namespace

bool VulkanOverlayPainter::canPaintOn(const VulkanDevice& device, vk::Format format) {
    const auto features = device.physicalDevice().getFormatProperties(format).optimalTilingFeatures;
    return static_cast<bool>(features & vk::FormatFeatureFlagBits::eColorAttachmentBlend);
}

void VulkanOverlayPainter::prepare(std::shared_ptr<const Overlay> overlay, vk::Format format) {
    if (!_set) {
        makeLayouts();
    }
    if (_format != format) {
        makePipeline(format);
    }
    if (_overlay != overlay) {
        upload(*overlay);
        _overlay = std::move(overlay);
    }
}

void VulkanOverlayPainter::makeLayouts() {
    const vk::DescriptorSetLayoutBinding binding{.binding = 0,
                                                 .descriptorType = vk::DescriptorType::eSampledImage,
                                                 .descriptorCount = 1,
                                                 .stageFlags = vk::ShaderStageFlagBits::eFragment};
    _setLayout = vk::raii::DescriptorSetLayout(
        _device.handle(), vk::DescriptorSetLayoutCreateInfo{.bindingCount = 1, .pBindings = &binding});
    const vk::DescriptorSetLayout setLayout = *_setLayout;
    const vk::PushConstantRange corner{.stageFlags = vk::ShaderStageFlagBits::eFragment, .size = sizeof(Corner)};
    _pipelineLayout =
        vk::raii::PipelineLayout(_device.handle(), vk::PipelineLayoutCreateInfo{.setLayoutCount = 1,
                                                                                .pSetLayouts = &setLayout,
                                                                                .pushConstantRangeCount = 1,
                                                                                .pPushConstantRanges = &corner});
    const vk::DescriptorPoolSize room{.type = vk::DescriptorType::eSampledImage, .descriptorCount = 1};
    _pool = vk::raii::DescriptorPool(
        _device.handle(), vk::DescriptorPoolCreateInfo{.maxSets = 1, .poolSizeCount = 1, .pPoolSizes = &room});
    const vk::DescriptorSetAllocateInfo one{
        .descriptorPool = *_pool, .descriptorSetCount = 1, .pSetLayouts = &setLayout};
    _set = (*_device.handle()).allocateDescriptorSets(one, *_device.handle().getDispatcher()).front();
}

void VulkanOverlayPainter::makePipeline(vk::Format format) {
    const vk::raii::ShaderModule vertex = makeModule(_device, overlayVertexShader);
    const vk::raii::ShaderModule fragment = makeModule(_device, overlayFragmentShader);
    const std::array stages{vk::PipelineShaderStageCreateInfo{
                                .stage = vk::ShaderStageFlagBits::eVertex, .module = *vertex, .pName = "main"},
                            vk::PipelineShaderStageCreateInfo{
                                .stage = vk::ShaderStageFlagBits::eFragment, .module = *fragment, .pName = "main"}};
    const vk::PipelineVertexInputStateCreateInfo vertexInput;
    const vk::PipelineInputAssemblyStateCreateInfo inputAssembly{.topology = vk::PrimitiveTopology::eTriangleList};
    const vk::PipelineViewportStateCreateInfo viewport{.viewportCount = 1, .scissorCount = 1};
    const vk::PipelineRasterizationStateCreateInfo rasterization{.lineWidth = 1.0F};
    const vk::PipelineMultisampleStateCreateInfo multisampling;
    const vk::PipelineColorBlendAttachmentState blending = blendingOver();
    const vk::PipelineColorBlendStateCreateInfo colorBlending{.attachmentCount = 1, .pAttachments = &blending};
    const std::array dynamicStates{vk::DynamicState::eViewport, vk::DynamicState::eScissor};
    const vk::PipelineDynamicStateCreateInfo dynamic{
        .dynamicStateCount = static_cast<std::uint32_t>(dynamicStates.size()), .pDynamicStates = dynamicStates.data()};
    const vk::PipelineRenderingCreateInfo rendering{.colorAttachmentCount = 1, .pColorAttachmentFormats = &format};
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
                                              .layout = *_pipelineLayout};
    _pipeline = vk::raii::Pipeline(_device.handle(), _device.pipelineCache().handle(), info);
    _format = format;
}

void VulkanOverlayPainter::upload(const Overlay& overlay) {
    _overlay.reset();
    if (_texture == nullptr || _texture->size() != overlay.size) {
        makeTexture(overlay.size);
    }
    constexpr std::size_t bytesPerPixel = 4;
    if (!_texture->replaceRegion({.origin = {}, .size = overlay.size}, overlay.pixels,
                                 overlay.size.width * bytesPerPixel)) {
        throw vk::OutOfDeviceMemoryError("its picture could not be uploaded");
    }
}

void VulkanOverlayPainter::makeTexture(Extent size) {
    _texture.reset();
    const TextureDescriptor descriptor{.pixelFormat = PixelFormat::BGRA8Unorm,
                                       .width = size.width,
                                       .height = size.height,
                                       .usage = TextureUsage::ShaderRead,
                                       .storageMode = StorageMode::Managed};
    _texture = std::make_shared<VulkanTexture>(_device.self(), descriptor, TexturePurpose::Ordinary, false);
    const vk::DescriptorImageInfo image{.imageView = _texture->view(), .imageLayout = _texture->rest().layout};
    const vk::WriteDescriptorSet write{.dstSet = _set,
                                       .dstBinding = 0,
                                       .descriptorCount = 1,
                                       .descriptorType = vk::DescriptorType::eSampledImage,
                                       .pImageInfo = &image};
    _device.handle().updateDescriptorSets(write, nullptr);
}

void VulkanOverlayPainter::record(const vk::raii::CommandBuffer& commands, vk::ImageView view,
                                  vk::Extent2D size) const {
    const Reach across = inside(_overlay->x, _overlay->size.width, size.width);
    const Reach down = inside(_overlay->y, _overlay->size.height, size.height);
    if (across.length == 0 || down.length == 0) {
        return;
    }
    const vk::Rect2D visible{{across.begin, down.begin}, {across.length, down.length}};
    const vk::RenderingAttachmentInfo target{.imageView = view,
                                             .imageLayout = use::colorTarget.layout,
                                             .loadOp = vk::AttachmentLoadOp::eLoad,
                                             .storeOp = vk::AttachmentStoreOp::eStore};
    commands.beginRendering(
        {.renderArea = visible, .layerCount = 1, .colorAttachmentCount = 1, .pColorAttachments = &target});
    commands.bindPipeline(vk::PipelineBindPoint::eGraphics, *_pipeline);
    commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, *_pipelineLayout, 0, _set, nullptr);
    commands.pushConstants<std::int32_t>(*_pipelineLayout, vk::ShaderStageFlagBits::eFragment, 0,
                                         Corner{_overlay->x, _overlay->y});
    commands.setViewport(
        0, vk::Viewport{.width = static_cast<float>(size.width), .height = static_cast<float>(size.height)});
    commands.setScissor(0, visible);
    constexpr std::uint32_t corners = 3;
    commands.draw(corners, 1, 0, 0);
    commands.endRendering();
}

}  // namespace gpu::vulkan
