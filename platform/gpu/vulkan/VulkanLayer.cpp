#include "platform/gpu/vulkan/VulkanLayer.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/vulkan/DrawableRing.hpp"
#include "platform/gpu/vulkan/VulkanBuffer.hpp"
#include "platform/gpu/vulkan/VulkanPresenter.hpp"

#include <exception>
#include <string>
#include <utility>

namespace gpu::vulkan {
namespace {

constexpr std::size_t readBytesPerPixel = 4;

void recordReadBack(const vk::raii::CommandBuffer& commands, const VulkanTexture& texture, const VulkanBuffer& buffer) {
    const vk::BufferImageCopy whole{.imageSubresource = colorLayers(),
                                    .imageExtent = {texture.extent().width, texture.extent().height, 1}};
    const vk::MemoryBarrier2 forTheHost{.srcStageMask = vk::PipelineStageFlagBits2::eAllTransfer,
                                        .srcAccessMask = vk::AccessFlagBits2::eTransferWrite,
                                        .dstStageMask = vk::PipelineStageFlagBits2::eHost,
                                        .dstAccessMask = vk::AccessFlagBits2::eHostRead};
    commands.copyImageToBuffer(texture.image(), use::copySource.layout, buffer.buffer(), whole);
    commands.pipelineBarrier2({.memoryBarrierCount = 1, .pMemoryBarriers = &forTheHost});
}

}  // namespace

VulkanLayer::VulkanLayer() = default;

VulkanLayer::~VulkanLayer() = default;

std::shared_ptr<Drawable> VulkanLayer::makeDrawable(const Configuration& configuration) {
    try {
        chooseRing(configuration);
        return _ring != nullptr ? takeDrawable() : nullptr;
    } catch (const std::exception& error) {
        platform::systemLog(std::string("gpu: no drawable: ") + error.what());
        return nullptr;
    }
}

/// Takes up the wanted size and format. On a lost device frames fail anyway: there the former images go on serving, or
/// stand-ins where there are none, so that the frame loop keeps its slots.
void VulkanLayer::chooseRing(const Configuration& configuration) {
    if (_ring != nullptr && _ring->holds(*configuration.device, configuration.pixelFormat, configuration.drawableSize,
                                         configuration.framebufferOnly)) {
        return;
    }
    const auto device = std::dynamic_pointer_cast<VulkanDevice>(configuration.device);
    if (device == nullptr) {
        _ring.reset();
    } else if (_ring == nullptr || !device->isLost()) {
        _ring = std::make_shared<DrawableRing>(device, configuration.pixelFormat, configuration.drawableSize,
                                               configuration.framebufferOnly);
    }
}

std::shared_ptr<Drawable> VulkanLayer::takeDrawable() {
    std::shared_ptr<Drawable> drawable;
    const auto takeOne = [&] {
        drawable = _ring->take(weak_from_this(), _nextIdentifier);
        return drawable != nullptr;
    };
    const bool taken = takeOne() || (_ring->grow(DrawableRing::usualImages) && takeOne()) ||
                       (waitUntilOneIsShown() && takeOne()) || (dropWaitingFrame() && takeOne()) ||
                       (_ring->grow(DrawableRing::maximumImages) && takeOne());
    _nextIdentifier += taken ? 1 : 0;
    return drawable;
}

bool VulkanLayer::waitUntilOneIsShown() {
    {
        const std::lock_guard lock(_presenterMutex);
        if (_presenter == nullptr || !_presenter->hasWaitingFrames()) {
            return false;
        }
    }
    return _ring->waitForFreeImage(roomPatience);
}

/// A frame that nobody has begun to show makes room for the next one.
bool VulkanLayer::dropWaitingFrame() {
    const std::lock_guard lock(_presenterMutex);
    return _presenter != nullptr && _presenter->dropWaitingFrame();
}

void VulkanLayer::presentFinished(std::shared_ptr<Drawable> drawable) {
    const std::lock_guard lock(_presenterMutex);
    if (_presenter != nullptr && _showsFrames) {
        _presenter->show(std::move(drawable));
    }
}

void VulkanLayer::changePresentationTarget(PresentationTarget target) {
    const std::lock_guard changing(_targetMutex);
    std::unique_ptr<VulkanPresenter> presenter;
    {
        const std::lock_guard lock(_presenterMutex);
        presenter.swap(_presenter);
    }
    presenter.reset();
    presenter = VulkanPresenter::start(std::move(target));
    const std::lock_guard lock(_presenterMutex);
    presenter.swap(_presenter);
    if (_presenter != nullptr) {
        _presenter->setOverlay(_overlay);
    }
}

void VulkanLayer::changeShowsFrames(bool showsFrames) {
    const std::lock_guard changing(_targetMutex);  // the presenter stays
    VulkanPresenter* presenter = nullptr;
    {
        const std::lock_guard lock(_presenterMutex);
        _showsFrames = showsFrames;
        presenter = _presenter.get();
    }
    if (!showsFrames && presenter != nullptr) {
        presenter->withhold();
    }
}

void VulkanLayer::changeOverlay(std::shared_ptr<const Overlay> overlay) {
    const std::lock_guard lock(_presenterMutex);
    if (_presenter != nullptr) {
        _presenter->setOverlay(overlay);
    }
    _overlay.swap(overlay);
}

std::vector<std::byte> VulkanLayer::copyPixels(const Drawable& drawable) {
    const auto texture = std::dynamic_pointer_cast<VulkanTexture>(drawable.texture());
    if (texture == nullptr || bytesPerPixel(texture->pixelFormat()) != readBytesPerPixel) {
        return {};
    }
    VulkanDevice& device = texture->vulkanDevice();
    if (device.isLost()) {
        return {};
    }
    return device.attempt("a frame could not be read back", [&] {
        VulkanBuffer buffer(device.self(), texture->width() * texture->height() * readBytesPerPixel);
        device.runAndWait([&](const vk::raii::CommandBuffer& commands) { recordReadBack(commands, *texture, buffer); });
        return std::vector<std::byte>(buffer.contents(), buffer.contents() + buffer.length());
    });
}

}  // namespace gpu::vulkan
