#include "benchmarks/frameloop/BareRenderer.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace bench {
namespace {

constexpr vk::ImageSubresourceLayers colorLayers{.aspectMask = vk::ImageAspectFlagBits::eColor, .layerCount = 1};

/// The clouds are composed at about so many pixels, but at least at a third of the picture's width and height.
constexpr double idealPixels = 400000.0;
constexpr double maximumScale = 3.0;

Size intermediateSize(Size size) {
    const double pixels = static_cast<double>(size.width) * size.height;
    const double scale = std::clamp(std::sqrt(pixels / idealPixels), 1.0, maximumScale);
    return {static_cast<std::uint32_t>(size.width / scale + 0.5),
            static_cast<std::uint32_t>(size.height / scale + 0.5)};
}

vk::raii::DescriptorPool makeDescriptorPool(const BareDevice& device) {
    constexpr auto sets = static_cast<std::uint32_t>(slots * 6);
    const std::array sizes{vk::DescriptorPoolSize{.type = vk::DescriptorType::eUniformBuffer, .descriptorCount = sets},
                           vk::DescriptorPoolSize{.type = vk::DescriptorType::eSampledImage, .descriptorCount = sets},
                           vk::DescriptorPoolSize{.type = vk::DescriptorType::eSampler, .descriptorCount = sets}};
    return {device.handle(), vk::DescriptorPoolCreateInfo{.maxSets = sets,
                                                          .poolSizeCount = static_cast<std::uint32_t>(sizes.size()),
                                                          .pPoolSizes = sizes.data()}};
}

vk::raii::Semaphore makeTimeline(const BareDevice& device) {
    const vk::SemaphoreTypeCreateInfo timeline{.semaphoreType = vk::SemaphoreType::eTimeline};
    return {device.handle(), vk::SemaphoreCreateInfo{.pNext = &timeline}};
}

vk::RenderingAttachmentInfo target(vk::ImageView view) {
    return {.imageView = view,
            .imageLayout = colorTarget.layout,
            .loadOp = vk::AttachmentLoadOp::eDontCare,
            .storeOp = vk::AttachmentStoreOp::eStore};
}

template <std::size_t count>
void recordBarriers(const vk::raii::CommandBuffer& commands, const std::array<vk::ImageMemoryBarrier2, count>& all) {
    commands.pipelineBarrier2({.imageMemoryBarrierCount = count, .pImageMemoryBarriers = all.data()});
}

void beginPass(const vk::raii::CommandBuffer& commands, Size size,
               vk::ArrayProxy<const vk::RenderingAttachmentInfo> targets) {
    const vk::Rect2D area{.extent = {size.width, size.height}};
    commands.beginRendering({.renderArea = area,
                             .layerCount = 1,
                             .colorAttachmentCount = targets.size(),
                             .pColorAttachments = targets.data()});
    const auto height = static_cast<float>(size.height);
    commands.setViewport(
        0, vk::Viewport{.y = height, .width = static_cast<float>(size.width), .height = -height, .maxDepth = 1.0F});
    commands.setScissor(0, area);
}

}  // namespace

BareRenderer::BareRenderer(const BareDevice& device, const std::filesystem::path& shaderLibrary, Size size)
    : _size(size),
      _intermediate(intermediateSize(size)),
      _device(device),
      _pipelines(_device, shaderLibrary, _intermediate.height),
      _descriptorPool(makeDescriptorPool(_device)),
      _timeline(makeTimeline(_device)) {
    makeNoise(BareSky(_intermediate.width, _intermediate.height).noise());
    for (Slot& slot : _slots) {
        makeSlot(slot);
        writeSets(slot);
    }
}

BareRenderer::~BareRenderer() {
    _device.queue().waitIdle();
}

void BareRenderer::makeNoise(const std::vector<std::byte>& bytes) {
    constexpr std::uint32_t side = BareSky::noiseSide;
    _noise = _device.makeImage(vk::Format::eR8Snorm, {side, side},
                               vk::ImageUsageFlagBits::eSampled | vk::ImageUsageFlagBits::eTransferDst);
    const BareBuffer staging = _device.makeBuffer(bytes.size(), vk::BufferUsageFlagBits::eTransferSrc);
    std::memcpy(staging.contents, bytes.data(), bytes.size());
    _device.runAndWait([&](const vk::raii::CommandBuffer& commands) {
        recordBarriers(commands, std::array{barrier(*_noise.image, nothing, copyDestination)});
        commands.copyBufferToImage(
            *staging.buffer, *_noise.image, copyDestination.layout,
            vk::BufferImageCopy{.imageSubresource = colorLayers, .imageExtent = {side, side, 1}});
        recordBarriers(commands, std::array{barrier(*_noise.image, copyDestination, sampledByShaders)});
    });
}

void BareRenderer::makeSlot(Slot& slot) {
    slot.pool = vk::raii::CommandPool(_device.handle(), {.queueFamilyIndex = _device.queueFamily()});
    slot.commands = std::move(vk::raii::CommandBuffers(_device.handle(), {.commandPool = *slot.pool,
                                                                          .level = vk::CommandBufferLevel::ePrimary,
                                                                          .commandBufferCount = 1})
                                  .front());
    const vk::ImageUsageFlags drawn = vk::ImageUsageFlagBits::eColorAttachment;
    slot.color = _device.makeImage(BarePipelines::colorFormat, _intermediate, drawn | vk::ImageUsageFlagBits::eSampled);
    slot.height =
        _device.makeImage(BarePipelines::heightFormat, _intermediate, drawn | vk::ImageUsageFlagBits::eSampled);
    slot.colorStyle = _device.makeBuffer(sizeof(SkyFrame::colorStyle), vk::BufferUsageFlagBits::eUniformBuffer);
    slot.lightStyle = _device.makeBuffer(sizeof(SkyFrame::lightStyle), vk::BufferUsageFlagBits::eUniformBuffer);
}

void BareRenderer::writeSets(Slot& slot) {
    std::vector<vk::DescriptorSetLayout> layouts;
    for (const auto& layout : _pipelines.setLayouts()) {
        layouts.push_back(*layout);
    }
    const vk::DescriptorSetAllocateInfo info{.descriptorPool = *_descriptorPool,
                                             .descriptorSetCount = static_cast<std::uint32_t>(layouts.size()),
                                             .pSetLayouts = layouts.data()};
    const auto write = [&](std::array<vk::DescriptorSet, 3>& sets, const BareBuffer& style, const BareImage& first,
                           const BareImage& second) {
        vk::resultCheck(
            (*_device.handle()).allocateDescriptorSets(&info, sets.data(), *_device.handle().getDispatcher()),
            "vkAllocateDescriptorSets");
        const vk::DescriptorBufferInfo buffer{.buffer = *style.buffer, .range = VK_WHOLE_SIZE};
        const std::array textures{
            vk::DescriptorImageInfo{.imageView = *first.view, .imageLayout = sampledByShaders.layout},
            vk::DescriptorImageInfo{.imageView = *second.view, .imageLayout = sampledByShaders.layout}};
        const vk::WriteDescriptorSet buffers{.dstSet = sets[0],
                                             .descriptorCount = 1,
                                             .descriptorType = vk::DescriptorType::eUniformBuffer,
                                             .pBufferInfo = &buffer};
        const vk::WriteDescriptorSet images{.dstSet = sets[1],
                                            .descriptorCount = static_cast<std::uint32_t>(textures.size()),
                                            .descriptorType = vk::DescriptorType::eSampledImage,
                                            .pImageInfo = textures.data()};
        _device.handle().updateDescriptorSets({buffers, images}, {});
    };
    write(slot.colorSets, slot.colorStyle, _noise, _noise);
    write(slot.lightSets, slot.lightStyle, slot.color, slot.height);
}

void BareRenderer::draw(const SkyFrame& frame, const BarePicture& picture, BarePasses passes) {
    Slot& slot = _slots[_submitted % slots];
    std::memcpy(slot.colorStyle.contents, frame.colorStyle.data(), sizeof(frame.colorStyle));
    std::memcpy(slot.lightStyle.contents, frame.lightStyle.data(), sizeof(frame.lightStyle));
    slot.pool.reset();
    slot.commands.begin({.flags = vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
    if (_timer != nullptr) {
        _timer->reset(slot.commands, firstMark(_submitted), marksPerFrame);
    }
    mark(slot, 0);
    if (passes != BarePasses::Light) {
        recordColorPass(slot, frame);
    }
    mark(slot, 1);
    const auto colorDrawn = barrier(*slot.color.image, colorTarget, sampledByShaders);
    const auto heightDrawn = barrier(*slot.height.image, colorTarget, sampledByShaders);
    const auto pictureTaken = barrier(picture.image, nothing, colorTarget);
    switch (passes) {
        case BarePasses::Both: recordBarriers(slot.commands, std::array{colorDrawn, heightDrawn, pictureTaken}); break;
        case BarePasses::Color: recordBarriers(slot.commands, std::array{colorDrawn, heightDrawn}); break;
        case BarePasses::Light: recordBarriers(slot.commands, std::array{pictureTaken}); break;
    }
    if (passes != BarePasses::Color) {
        recordLightPass(slot, picture);
    }
    mark(slot, 2);
    slot.commands.end();
    submit(slot, picture);
}

void BareRenderer::mark(const Slot& slot, std::uint32_t mark) const {
    if (_timer != nullptr) {
        _timer->mark(slot.commands, firstMark(_submitted) + mark);
    }
}

void BareRenderer::recordColorPass(const Slot& slot, const SkyFrame& frame) {
    const vk::raii::CommandBuffer& commands = slot.commands;
    recordBarriers(commands, std::array{barrier(*slot.color.image, nothing, colorTarget),
                                        barrier(*slot.height.image, nothing, colorTarget)});
    beginPass(commands, _intermediate, {target(*slot.color.view), target(*slot.height.view)});
    commands.bindPipeline(vk::PipelineBindPoint::eGraphics, _pipelines.colorPass());
    commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, _pipelines.layout(), 0, slot.colorSets, {});
    commands.pushConstants<float>(_pipelines.layout(), vk::ShaderStageFlagBits::eVertex, 0, frame.colorQuad);
    commands.draw(4, 1, 0, 0);
    commands.endRendering();
}

void BareRenderer::recordLightPass(const Slot& slot, const BarePicture& picture) {
    const vk::raii::CommandBuffer& commands = slot.commands;
    const auto u = 1.0F - 1.0F / static_cast<float>(_intermediate.width);
    const auto v = 1.0F - 1.0F / static_cast<float>(_intermediate.height);
    const std::array<float, 16> quad{-1, -1, 0, v, 1, -1, u, v, -1, 1, 0, 0, 1, 1, u, 0};
    beginPass(commands, _size, target(picture.view));
    commands.bindPipeline(vk::PipelineBindPoint::eGraphics, _pipelines.lightPass());
    commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, _pipelines.layout(), 0, slot.lightSets, {});
    commands.pushConstants<float>(_pipelines.layout(), vk::ShaderStageFlagBits::eVertex, 0, quad);
    commands.draw(4, 1, 0, 0);
    commands.endRendering();
    recordBarriers(commands, std::array{barrier(picture.image, colorTarget, picture.next)});
}

void BareRenderer::submit(const Slot& slot, const BarePicture& picture) {
    ++_submitted;
    const vk::CommandBufferSubmitInfo commands{.commandBuffer = *slot.commands};
    const vk::SemaphoreSubmitInfo given{.semaphore = picture.given, .stageMask = colorTarget.stages};
    const std::array finished{
        vk::SemaphoreSubmitInfo{
            .semaphore = *_timeline, .value = _submitted, .stageMask = vk::PipelineStageFlagBits2::eAllCommands},
        vk::SemaphoreSubmitInfo{.semaphore = picture.drawn, .stageMask = vk::PipelineStageFlagBits2::eAllCommands}};
    _device.queue().submit2(vk::SubmitInfo2{.waitSemaphoreInfoCount = picture.given ? 1U : 0U,
                                            .pWaitSemaphoreInfos = &given,
                                            .commandBufferInfoCount = 1,
                                            .pCommandBufferInfos = &commands,
                                            .signalSemaphoreInfoCount = picture.drawn ? 2U : 1U,
                                            .pSignalSemaphoreInfos = finished.data()});
}

void BareRenderer::waitFor(std::uint64_t frames) const {
    const vk::Semaphore timeline = *_timeline;
    const auto result = _device.handle().waitSemaphores(
        {.semaphoreCount = 1, .pSemaphores = &timeline, .pValues = &frames}, std::numeric_limits<std::uint64_t>::max());
    vk::resultCheck(result, "vkWaitSemaphores");
}

}  // namespace bench
