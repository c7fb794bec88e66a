#pragma once

#include "platform/gpu/Layer.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"
#include "platform/gpu/vulkan/VulkanOverlayPainter.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace gpu::vulkan {

enum class ShowResult {
    Failed,      ///< what the default is; the swapchain is of no more use
    Shown,       ///< handed to the window
    Skipped,     ///< the window had no room for a picture just now
    WindowGone,  ///< destroyed, or of a kind that the device cannot show in
};

/// A window's surface and swapchain on one device, and what copying a picture there needs. It follows the window's size
/// by itself and stretches pictures of another size. Belongs to one thread, the presenter's.
///
/// The GPU never waits for the window here: the CPU does, on this thread, so that a stuck window holds up nothing that
/// others have submitted. As the CPU also waits for the copy, a picture is free again when `show` returns.
class VulkanSwapchain {
public:
    /// Throws; `vk::SurfaceLostKHRError` when the window has gone.
    VulkanSwapchain(std::shared_ptr<VulkanDevice> device, PresentationWindow window);
    VulkanSwapchain(const VulkanSwapchain&) = delete;
    VulkanSwapchain& operator=(const VulkanSwapchain&) = delete;

    const VulkanDevice& device() const { return *_device; }

    /// Copies the picture, which is at rest, paints the overlay, if any, over the copy, and presents it, calling
    /// `willPresent` before. An overlay that cannot be painted is left out. Getting an image from the window may take a
    /// while; a picture that is not wanted any more then is skipped, before anything is submitted. Throws like the
    /// constructor.
    ShowResult show(const VulkanTexture& picture, const std::shared_ptr<const Overlay>& overlay,
                    const std::function<bool()>& isStillWanted, const std::function<void()>& willPresent);

private:
    /// X11 does not heed it; there the windows' own speed is the limit.
    static constexpr std::chrono::milliseconds acquireTimeout{100};

    bool followWindow(const VulkanTexture& picture);
    void build(const vk::SurfaceCapabilitiesKHR& capabilities, vk::Extent2D size, vk::Format pictureFormat);
    bool makeViews();
    bool prepareOverlay(const std::shared_ptr<const Overlay>& overlay);
    std::optional<std::uint32_t> acquire();
    void draw(const VulkanTexture& picture, bool paintsOverlay, std::uint32_t index);
    void recordCopy(const VulkanTexture& picture, vk::Image destination) const;
    ShowResult present(std::uint32_t index);
    void noteSuboptimal();
    void waitAndReset(const vk::raii::Fence& fence) const;

    std::shared_ptr<VulkanDevice> _device;
    PresentationWindow _window;
    vk::raii::SurfaceKHR _surface;
    VulkanCommands _commands;
    vk::raii::Fence _acquired;
    vk::raii::Fence _copied;
    vk::PresentModeKHR _presentMode;

    vk::raii::SwapchainKHR _swapchain = nullptr;
    std::vector<vk::Image> _images;
    std::vector<vk::raii::ImageView> _views;  ///< none where no overlay can be painted
    vk::Extent2D _size;
    vk::SurfaceFormatKHR _format;
    bool _outdated = true;
    bool _wantsOverlays = false;  ///< until then images are merely copied to
    bool _hasPresented = false;

    VulkanOverlayPainter _painter;
    std::shared_ptr<const Overlay> _unpaintable;  ///< that failed, so as not to try again for every frame
};

}  // namespace gpu::vulkan
