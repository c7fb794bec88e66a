#include "platform/gpu/vulkan/VulkanSwapchain.hpp"

#include "platform/gpu/vulkan/VulkanSurface.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace gpu::vulkan {
namespace {

constexpr ImageUse shownInWindow{
    .layout = vk::ImageLayout::ePresentSrcKHR, .stages = vk::PipelineStageFlagBits2::eNone, .access = {}};

/// Mailbox never blocks and never tears. Fifo is what every device has.
vk::PresentModeKHR choosePresentMode(const VulkanDevice& device, const vk::raii::SurfaceKHR& surface) {
    const auto offered = device.physicalDevice().getSurfacePresentModesKHR(*surface);
    const bool hasMailbox = std::ranges::find(offered, vk::PresentModeKHR::eMailbox) != offered.end();
    return hasMailbox ? vk::PresentModeKHR::eMailbox : vk::PresentModeKHR::eFifo;
}

/// The picture's own format where there is one; else one that a blit converts to without touching the values.
vk::SurfaceFormatKHR chooseFormat(const VulkanDevice& device, const vk::raii::SurfaceKHR& surface, vk::Format picture) {
    const std::array wanted{picture,
                            vk::Format::eB8G8R8A8Unorm,
                            vk::Format::eR8G8B8A8Unorm,
                            vk::Format::eA8B8G8R8UnormPack32,
                            vk::Format::eA2R10G10B10UnormPack32,
                            vk::Format::eA2B10G10R10UnormPack32,
                            vk::Format::eR5G6B5UnormPack16};
    const auto offered = device.physicalDevice().getSurfaceFormatsKHR(*surface);
    for (const vk::Format format : wanted) {
        const auto found = std::ranges::find(offered, format, &vk::SurfaceFormatKHR::format);
        if (found != offered.end()) {
            return *found;
        }
    }
    return offered.at(0);
}

vk::CompositeAlphaFlagBitsKHR chooseAlpha(const vk::SurfaceCapabilitiesKHR& capabilities) {
    using Alpha = vk::CompositeAlphaFlagBitsKHR;
    return capabilities.supportedCompositeAlpha & Alpha::eOpaque ? Alpha::eOpaque : Alpha::eInherit;
}

std::uint32_t chooseImageCount(const vk::SurfaceCapabilitiesKHR& capabilities) {
    const std::uint32_t wanted = std::max(3U, capabilities.minImageCount + 1);
    return capabilities.maxImageCount == 0 ? wanted : std::min(wanted, capabilities.maxImageCount);
}

std::array<vk::Offset3D, 2> corners(vk::Extent2D size) {
    return {vk::Offset3D{},
            vk::Offset3D{static_cast<std::int32_t>(size.width), static_cast<std::int32_t>(size.height), 1}};
}

}  // namespace

VulkanSwapchain::VulkanSwapchain(std::shared_ptr<VulkanDevice> device, PresentationWindow window)
    : _device(std::move(device)),
      _window(std::move(window)),
      _surface(makeSurface(*_device, _window)),
      _commands(_device->makeCommands()),
      _acquired(_device->handle(), vk::FenceCreateInfo{}),
      _copied(_device->handle(), vk::FenceCreateInfo{}),
      _presentMode(choosePresentMode(*_device, _surface)),
      _painter(*_device) {}

ShowResult VulkanSwapchain::show(const VulkanTexture& picture, const std::shared_ptr<const Overlay>& overlay,
                                 const std::function<bool()>& isStillWanted, const std::function<void()>& willPresent) {
    if (overlay != nullptr && !std::exchange(_wantsOverlays, true)) {
        _outdated = true;
    }
    std::optional<std::uint32_t> index = followWindow(picture) ? acquire() : std::nullopt;
    if (!index.has_value() && _outdated && followWindow(picture)) {
        index = acquire();
    }
    if (!index.has_value()) {
        return ShowResult::Skipped;
    }
    if (!isStillWanted()) {
        _outdated = true;  // the image that was acquired goes with its swapchain
        return ShowResult::Skipped;
    }
    draw(picture, prepareOverlay(overlay), *index);
    willPresent();
    return present(*index);
}

/// False when there is nothing to draw on.
bool VulkanSwapchain::followWindow(const VulkanTexture& picture) {
    const auto capabilities = _device->physicalDevice().getSurfaceCapabilitiesKHR(*_surface);
    const vk::Extent2D size = windowSize(_window, capabilities);
    if (size.width == 0 || size.height == 0) {
        return false;
    }
    if (_outdated || size != _size) {
        build(capabilities, size, picture.format());
    }
    return true;
}

void VulkanSwapchain::build(const vk::SurfaceCapabilitiesKHR& capabilities, vk::Extent2D size,
                            vk::Format pictureFormat) {
    _views.clear();
    const vk::raii::SwapchainKHR former = std::exchange(_swapchain, nullptr);
    _outdated = true;  // until it has come through
    _format = chooseFormat(*_device, _surface, pictureFormat);
    const bool paintable = _wantsOverlays && VulkanOverlayPainter::canPaintOn(*_device, _format.format);
    const vk::ImageUsageFlags painting = paintable ? vk::ImageUsageFlagBits::eColorAttachment : vk::ImageUsageFlags();
    _swapchain = vk::raii::SwapchainKHR(
        _device->handle(), vk::SwapchainCreateInfoKHR{.surface = *_surface,
                                                      .minImageCount = chooseImageCount(capabilities),
                                                      .imageFormat = _format.format,
                                                      .imageColorSpace = _format.colorSpace,
                                                      .imageExtent = size,
                                                      .imageArrayLayers = 1,
                                                      .imageUsage = vk::ImageUsageFlagBits::eTransferDst | painting,
                                                      .imageSharingMode = vk::SharingMode::eExclusive,
                                                      .preTransform = capabilities.currentTransform,
                                                      .compositeAlpha = chooseAlpha(capabilities),
                                                      .presentMode = _presentMode,
                                                      .clipped = VK_TRUE,
                                                      .oldSwapchain = *former});
    _images.clear();
    for (const VkImage image : _swapchain.getImages()) {
        _images.emplace_back(image);
    }
    if (paintable && !_device->attempt("no overlays can be shown in a window", [this] { return makeViews(); })) {
        _views.clear();
    }
    _size = size;
    _outdated = false;
    _hasPresented = false;
}

bool VulkanSwapchain::makeViews() {
    for (const vk::Image image : _images) {
        _views.emplace_back(_device->handle(), vk::ImageViewCreateInfo{.image = image,
                                                                       .viewType = vk::ImageViewType::e2D,
                                                                       .format = _format.format,
                                                                       .subresourceRange = wholeColorImage});
    }
    return true;
}

bool VulkanSwapchain::prepareOverlay(const std::shared_ptr<const Overlay>& overlay) {
    if (overlay == nullptr || _views.empty() || overlay == _unpaintable) {
        return false;
    }
    const bool isReady = _device->attempt("an overlay could not be shown", [&] {
        _painter.prepare(overlay, _format.format);
        return true;
    });
    _unpaintable = isReady ? nullptr : overlay;
    return isReady;
}

/// Nothing when the window system has no image to give just now.
std::optional<std::uint32_t> VulkanSwapchain::acquire() {
    // Not the member function of the bindings: that throws where a window has merely changed its size.
    const auto& functions = *_device->handle().getDispatcher();
    std::uint32_t index = 0;
    const std::chrono::nanoseconds timeout = acquireTimeout;
    const vk::Result result{functions.vkAcquireNextImageKHR(
        static_cast<VkDevice>(*_device->handle()), static_cast<VkSwapchainKHR>(*_swapchain),
        static_cast<std::uint64_t>(timeout.count()), VK_NULL_HANDLE, static_cast<VkFence>(*_acquired), &index)};
    switch (result) {
        case vk::Result::eSuboptimalKHR: noteSuboptimal(); [[fallthrough]];
        case vk::Result::eSuccess: waitAndReset(_acquired); return index;
        case vk::Result::eTimeout:
        case vk::Result::eNotReady: return std::nullopt;
        case vk::Result::eErrorOutOfDateKHR: _outdated = true; return std::nullopt;
        default: vk::throwResultException(result, "vkAcquireNextImageKHR");
    }
}

/// All that happens to a picture on its way into the window.
void VulkanSwapchain::draw(const VulkanTexture& picture, bool paintsOverlay, std::uint32_t index) {
    const vk::Image image = _images[index];
    _commands.pool.reset();
    _commands.buffer.begin({.flags = vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
    recordBarriers(_commands.buffer, imageBarrier(image, use::undefined, use::copyDestination));
    recordCopy(picture, image);
    if (paintsOverlay) {
        recordBarriers(_commands.buffer, imageBarrier(image, use::copyDestination, use::colorTarget));
        _painter.record(_commands.buffer, *_views[index], _size);
    }
    recordBarriers(_commands.buffer,
                   imageBarrier(image, paintsOverlay ? use::colorTarget : use::copyDestination, shownInWindow));
    _commands.buffer.end();
    const vk::CommandBufferSubmitInfo commands{.commandBuffer = *_commands.buffer};
    _device->submit({.commandBufferInfoCount = 1, .pCommandBufferInfos = &commands}, *_copied);
    waitAndReset(_copied);
}

void VulkanSwapchain::recordCopy(const VulkanTexture& picture, vk::Image destination) const {
    constexpr vk::ImageLayout from = vk::ImageLayout::eTransferSrcOptimal;
    constexpr vk::ImageLayout to = vk::ImageLayout::eTransferDstOptimal;
    const vk::raii::CommandBuffer& commands = _commands.buffer;
    if (picture.extent() == _size && picture.format() == _format.format) {
        const vk::ImageCopy whole{
            .srcSubresource = colorLayers(), .dstSubresource = colorLayers(), .extent = {_size.width, _size.height, 1}};
        commands.copyImage(picture.image(), from, destination, to, whole);
    } else {
        const vk::ImageBlit stretched{.srcSubresource = colorLayers(),
                                      .srcOffsets = corners(picture.extent()),
                                      .dstSubresource = colorLayers(),
                                      .dstOffsets = corners(_size)};
        commands.blitImage(picture.image(), from, destination, to, stretched, vk::Filter::eLinear);
    }
}

ShowResult VulkanSwapchain::present(std::uint32_t index) {
    // Without semaphores: the copy is done.
    const vk::SwapchainKHR swapchain = *_swapchain;
    const vk::Result result =
        _device->present({.swapchainCount = 1, .pSwapchains = &swapchain, .pImageIndices = &index});
    switch (result) {
        case vk::Result::eSuboptimalKHR: noteSuboptimal(); [[fallthrough]];
        case vk::Result::eSuccess:
            _hasPresented = true;
            noteShownFrame(_window);
            return ShowResult::Shown;
        case vk::Result::eErrorOutOfDateKHR: _outdated = true; return ShowResult::Skipped;
        case vk::Result::eErrorSurfaceLostKHR: return ShowResult::WindowGone;
        default: return ShowResult::Failed;
    }
}

/// A new swapchain may help, unless the present one was so from its first picture.
void VulkanSwapchain::noteSuboptimal() {
    _outdated = _outdated || _hasPresented;
}

void VulkanSwapchain::waitAndReset(const vk::raii::Fence& fence) const {
    _device->waitFor(*fence);
    _device->handle().resetFences(*fence);
}

}  // namespace gpu::vulkan
