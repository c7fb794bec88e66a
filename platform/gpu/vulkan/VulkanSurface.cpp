#include "platform/gpu/vulkan/VulkanSurface.hpp"

#include <algorithm>
#include <limits>

namespace gpu::vulkan {
namespace {

/// What Wayland says of a surface's size: that the choice is ours.
constexpr std::uint32_t anySize = std::numeric_limits<std::uint32_t>::max();

/// Makes the surface, by kind of window.
struct MakeSurface {
    const VulkanInstance& instance;

    vk::raii::SurfaceKHR operator()(std::monostate) const { throw vk::SurfaceLostKHRError("there is no window"); }
    vk::raii::SurfaceKHR operator()(const XcbWindow& window) const {
        requireSurfaces(instance.hasXcbSurfaces());
        return {instance.handle(),
                vk::XcbSurfaceCreateInfoKHR{.connection = static_cast<xcb_connection_t*>(window.connection),
                                            .window = window.window}};
    }
    vk::raii::SurfaceKHR operator()(const WaylandWindow& window) const {
        requireSurfaces(instance.hasWaylandSurfaces());
        return {instance.handle(),
                vk::WaylandSurfaceCreateInfoKHR{.display = static_cast<wl_display*>(window.surface->display()),
                                                .surface = static_cast<wl_surface*>(window.surface->surface())}};
    }

private:
    static void requireSurfaces(bool areThere) {
        if (!areThere) {
            throw vk::SurfaceLostKHRError("there are no surfaces for windows of this kind");
        }
    }
};

std::uint32_t within(std::size_t length, std::uint32_t least, std::uint32_t most) {
    return static_cast<std::uint32_t>(std::clamp<std::size_t>(length, least, most));
}

}  // namespace

bool isWindow(const PresentationWindow& window) noexcept {
    if (const auto* onX11 = std::get_if<XcbWindow>(&window)) {
        return onX11->connection != nullptr && onX11->window != 0;
    }
    const auto* onWayland = std::get_if<WaylandWindow>(&window);
    return onWayland != nullptr && onWayland->surface != nullptr;
}

vk::raii::SurfaceKHR makeSurface(const VulkanDevice& device, const PresentationWindow& window) {
    if (!device.hasSwapchain()) {
        throw vk::SurfaceLostKHRError("the device has no window surfaces");
    }
    vk::raii::SurfaceKHR surface = std::visit(MakeSurface{device.instance()}, window);
    if (device.physicalDevice().getSurfaceSupportKHR(device.queueFamily(), *surface) != VK_TRUE) {
        throw vk::SurfaceLostKHRError("the device cannot show pictures in this window");
    }
    return surface;
}

vk::Extent2D windowSize(const PresentationWindow& window, const vk::SurfaceCapabilitiesKHR& capabilities) {
    const auto* onWayland = std::get_if<WaylandWindow>(&window);
    if (onWayland == nullptr || capabilities.currentExtent.width != anySize) {
        return capabilities.currentExtent;
    }
    const Extent wanted = onWayland->surface->size();
    if (wanted.width == 0 || wanted.height == 0) {
        return {};
    }
    const vk::Extent2D least = capabilities.minImageExtent;
    const vk::Extent2D most = capabilities.maxImageExtent;
    return {within(wanted.width, least.width, most.width), within(wanted.height, least.height, most.height)};
}

void noteShownFrame(const PresentationWindow& window) {
    if (const auto* onWayland = std::get_if<WaylandWindow>(&window)) {
        onWayland->surface->countShownFrame();
    }
}

}  // namespace gpu::vulkan
