#include "benchmarks/frameloop/BareLoop.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <thread>
#include <utility>

namespace bench {
namespace {

using std::chrono::steady_clock;

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

vk::RenderingAttachmentInfo target(const BareImage& image) {
    return {.imageView = *image.view,
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

BareLoop::BareLoop(const std::string& deviceName, const std::filesystem::path& shaderLibrary, Size size)
    : _size(size),
      _intermediate(intermediateSize(size)),
      _device(deviceName),
      _pipelines(_device, shaderLibrary),
      _descriptorPool(makeDescriptorPool(_device)),
      _timeline(makeTimeline(_device)) {
    makeNoise(BareSky(_intermediate.width, _intermediate.height).noise());
    for (Slot& slot : _slots) {
        makeSlot(slot);
        writeSets(slot);
    }
}

BareLoop::~BareLoop() {
    _device.queue().waitIdle();
}

void BareLoop::makeNoise(const std::vector<std::byte>& bytes) {
    constexpr std::uint32_t side = BareSky::noiseSide;
    _noise = _device.makeImage(vk::Format::eR8Snorm, {side, side},
                               vk::ImageUsageFlagBits::eSampled | vk::ImageUsageFlagBits::eTransferDst);
    const BareBuffer staging = _device.makeBuffer(bytes.size(), vk::BufferUsageFlagBits::eTransferSrc);
    std::memcpy(staging.contents, bytes.data(), bytes.size());
    _device.runAndWait([&](const vk::raii::CommandBuffer& commands) {
        recordBarriers(commands, std::array{barrier(_noise, nothing, copyDestination)});
        commands.copyBufferToImage(
            *staging.buffer, *_noise.image, copyDestination.layout,
            vk::BufferImageCopy{.imageSubresource = colorLayers, .imageExtent = {side, side, 1}});
        recordBarriers(commands, std::array{barrier(_noise, copyDestination, sampledByFragments)});
    });
}

void BareLoop::makeSlot(Slot& slot) {
    slot.pool = vk::raii::CommandPool(_device.handle(), {.queueFamilyIndex = _device.queueFamily()});
    slot.commands = std::move(vk::raii::CommandBuffers(_device.handle(), {.commandPool = *slot.pool,
                                                                          .level = vk::CommandBufferLevel::ePrimary,
                                                                          .commandBufferCount = 1})
                                  .front());
    const vk::ImageUsageFlags drawn = vk::ImageUsageFlagBits::eColorAttachment;
    slot.color = _device.makeImage(BarePipelines::colorFormat, _intermediate, drawn | vk::ImageUsageFlagBits::eSampled);
    slot.height =
        _device.makeImage(BarePipelines::heightFormat, _intermediate, drawn | vk::ImageUsageFlagBits::eSampled);
    slot.picture = _device.makeImage(BarePipelines::pictureFormat, _size, drawn | vk::ImageUsageFlagBits::eTransferSrc);
    slot.colorStyle = _device.makeBuffer(sizeof(SkyFrame::colorStyle), vk::BufferUsageFlagBits::eUniformBuffer);
    slot.lightStyle = _device.makeBuffer(sizeof(SkyFrame::lightStyle), vk::BufferUsageFlagBits::eUniformBuffer);
}

void BareLoop::writeSets(Slot& slot) {
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
            vk::DescriptorImageInfo{.imageView = *first.view, .imageLayout = sampledByFragments.layout},
            vk::DescriptorImageInfo{.imageView = *second.view, .imageLayout = sampledByFragments.layout}};
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

Run BareLoop::run(std::size_t frames, Pace pace, LastPicture lastPicture) {
    BareSky sky(_intermediate.width, _intermediate.height);
    Run result;
    result.cpuMicroseconds.reserve(frames);
    const std::uint64_t before = _submitted;
    const std::size_t atOnce = pace == Pace::SlotIsFree ? slots - 1 : slots;
    steady_clock::time_point firstCompleted;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        if (frame >= atOnce) {
            waitFor(before + frame - atOnce + 1);
            if (frame == atOnce) {
                firstCompleted = steady_clock::now();
                if (frameHooks().firstCompleted != nullptr) {
                    frameHooks().firstCompleted();
                }
            }
            if (pace == Pace::SlotIsFree) {
                std::this_thread::sleep_for(settling);
            }
        }
        if (frameHooks().begin != nullptr) {
            frameHooks().begin(frame);
        }
        const double start = threadCpuMicroseconds();
        drawFrame(_slots[frame % slots], sky.next());
        result.cpuMicroseconds.push_back(threadCpuMicroseconds() - start);
        if (frameHooks().end != nullptr) {
            frameHooks().end();
        }
    }
    waitFor(_submitted);
    const std::chrono::duration<double> taken = steady_clock::now() - firstCompleted;
    result.framesPerSecond = static_cast<double>(frames - 1) / taken.count();
    if (lastPicture == LastPicture::Read) {
        result.lastPicture = readPicture(_slots[(frames - 1) % slots]);
    }
    return result;
}

void BareLoop::drawFrame(Slot& slot, const SkyFrame& frame) {
    std::memcpy(slot.colorStyle.contents, frame.colorStyle.data(), sizeof(frame.colorStyle));
    std::memcpy(slot.lightStyle.contents, frame.lightStyle.data(), sizeof(frame.lightStyle));
    slot.pool.reset();
    slot.commands.begin({.flags = vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
    recordColorPass(slot, frame);
    recordLightPass(slot);
    slot.commands.end();
    submit(slot);
}

void BareLoop::recordColorPass(const Slot& slot, const SkyFrame& frame) {
    const vk::raii::CommandBuffer& commands = slot.commands;
    recordBarriers(commands,
                   std::array{barrier(slot.color, nothing, colorTarget), barrier(slot.height, nothing, colorTarget)});
    beginPass(commands, _intermediate, {target(slot.color), target(slot.height)});
    commands.bindPipeline(vk::PipelineBindPoint::eGraphics, _pipelines.colorPass());
    commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, _pipelines.layout(), 0, slot.colorSets, {});
    commands.pushConstants<float>(_pipelines.layout(), vk::ShaderStageFlagBits::eVertex, 0, frame.colorQuad);
    commands.draw(4, 1, 0, 0);
    commands.endRendering();
}

void BareLoop::recordLightPass(const Slot& slot) {
    const vk::raii::CommandBuffer& commands = slot.commands;
    recordBarriers(commands, std::array{barrier(slot.color, colorTarget, sampledByFragments),
                                        barrier(slot.height, colorTarget, sampledByFragments),
                                        barrier(slot.picture, nothing, colorTarget)});
    const auto u = 1.0F - 1.0F / static_cast<float>(_intermediate.width);
    const auto v = 1.0F - 1.0F / static_cast<float>(_intermediate.height);
    const std::array<float, 16> quad{-1, -1, 0, v, 1, -1, u, v, -1, 1, 0, 0, 1, 1, u, 0};
    beginPass(commands, _size, target(slot.picture));
    commands.bindPipeline(vk::PipelineBindPoint::eGraphics, _pipelines.lightPass());
    commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, _pipelines.layout(), 0, slot.lightSets, {});
    commands.pushConstants<float>(_pipelines.layout(), vk::ShaderStageFlagBits::eVertex, 0, quad);
    commands.draw(4, 1, 0, 0);
    commands.endRendering();
    recordBarriers(commands, std::array{barrier(slot.picture, colorTarget, copySource)});
}

void BareLoop::submit(const Slot& slot) {
    ++_submitted;
    const vk::CommandBufferSubmitInfo commands{.commandBuffer = *slot.commands};
    const vk::SemaphoreSubmitInfo finished{
        .semaphore = *_timeline, .value = _submitted, .stageMask = vk::PipelineStageFlagBits2::eAllCommands};
    _device.queue().submit2(vk::SubmitInfo2{.commandBufferInfoCount = 1,
                                            .pCommandBufferInfos = &commands,
                                            .signalSemaphoreInfoCount = 1,
                                            .pSignalSemaphoreInfos = &finished});
}

void BareLoop::waitFor(std::uint64_t value) const {
    const vk::Semaphore timeline = *_timeline;
    const auto result = _device.handle().waitSemaphores(
        {.semaphoreCount = 1, .pSemaphores = &timeline, .pValues = &value}, std::numeric_limits<std::uint64_t>::max());
    vk::resultCheck(result, "vkWaitSemaphores");
}

std::vector<std::byte> BareLoop::readPicture(const Slot& slot) const {
    const std::size_t length = std::size_t{4} * _size.width * _size.height;
    const BareBuffer copy = _device.makeBuffer(length, vk::BufferUsageFlagBits::eTransferDst);
    _device.runAndWait([&](const vk::raii::CommandBuffer& commands) {
        commands.copyImageToBuffer(
            *slot.picture.image, copySource.layout, *copy.buffer,
            vk::BufferImageCopy{.imageSubresource = colorLayers, .imageExtent = {_size.width, _size.height, 1}});
    });
    return {copy.contents, copy.contents + length};
}

}  // namespace bench
