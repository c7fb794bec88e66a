#include "benchmarks/frameloop/BareWindow.hpp"

#include <algorithm>
#include <chrono>
#include <limits>
#include <stdexcept>
#include <thread>

namespace bench {
namespace {

using std::chrono::steady_clock;

xcb_connection_t* connect() {
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        throw std::runtime_error("no X display");
    }
    return connection;
}

xcb_window_t mapWindow(xcb_connection_t* connection, Size size) {
    const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0,
                      static_cast<std::uint16_t>(size.width), static_cast<std::uint16_t>(size.height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &screen->black_pixel);
    xcb_map_window(connection, window);
    xcb_flush(connection);
    return window;
}

vk::raii::SwapchainKHR makeSwapchain(const BareDevice& device, const vk::raii::SurfaceKHR& surface, Size size) {
    const vk::raii::PhysicalDevice& physicalDevice = device.physicalDevice();
    const auto modes = physicalDevice.getSurfacePresentModesKHR(*surface);
    const bool hasMailbox = std::ranges::find(modes, vk::PresentModeKHR::eMailbox) != modes.end();
    const auto capabilities = physicalDevice.getSurfaceCapabilitiesKHR(*surface);
    return {device.handle(), vk::SwapchainCreateInfoKHR{
                                 .surface = *surface,
                                 .minImageCount = std::max(3U, capabilities.minImageCount + 1),
                                 .imageFormat = BarePipelines::pictureFormat,
                                 .imageExtent = {size.width, size.height},
                                 .imageArrayLayers = 1,
                                 .imageUsage = vk::ImageUsageFlagBits::eColorAttachment,
                                 .preTransform = capabilities.currentTransform,
                                 .compositeAlpha = vk::CompositeAlphaFlagBitsKHR::eOpaque,
                                 .presentMode = hasMailbox ? vk::PresentModeKHR::eMailbox : vk::PresentModeKHR::eFifo,
                                 .clipped = VK_TRUE}};
}

vk::raii::Semaphore makeSemaphore(const BareDevice& device) {
    return {device.handle(), vk::SemaphoreCreateInfo{}};
}

/// The next of the moments that are whole periods apart; those that have passed are left out.
steady_clock::time_point nextTick() {
    constexpr std::chrono::nanoseconds period = std::chrono::nanoseconds(std::chrono::seconds(1)) / nominalRate;
    return steady_clock::time_point(period * (steady_clock::now().time_since_epoch() / period + 1));
}

}  // namespace

BareWindow::BareWindow(const BareDevice& device, Size size)
    : _device(device),
      _connection(connect()),
      _surface(device.instance(), vk::XcbSurfaceCreateInfoKHR{.connection = _connection.get(),
                                                              .window = mapWindow(_connection.get(), size)}),
      _swapchain(makeSwapchain(device, _surface, size)),
      _given{makeSemaphore(device), makeSemaphore(device), makeSemaphore(device)} {
    for (const vk::Image image : _swapchain.getImages()) {
        _images.push_back({image, device.makeView(image, BarePipelines::pictureFormat), makeSemaphore(device)});
    }
}

BarePicture BareWindow::take() {
    const vk::Semaphore given = *_given[_taken++ % slots];
    _current = _swapchain.acquireNextImage(std::numeric_limits<std::uint64_t>::max(), given).second;
    const Image& image = _images[_current];
    return {image.image, *image.view, shown, given, *image.drawn};
}

void BareWindow::show() {
    const vk::SwapchainKHR swapchain = *_swapchain;
    const vk::Semaphore drawn = *_images[_current].drawn;
    static_cast<void>(_device.queue().presentKHR({.waitSemaphoreCount = 1,
                                                  .pWaitSemaphores = &drawn,
                                                  .swapchainCount = 1,
                                                  .pSwapchains = &swapchain,
                                                  .pImageIndices = &_current}));
}

void runBareWindow(const std::string& deviceName, const std::filesystem::path& shaderLibrary, Size size) {
    const BareDevice device(deviceName, BareUseOfWindows::X11);
    BareWindow window(device, size);
    BareRenderer renderer(device, shaderLibrary, size);
    BareSky sky = renderer.makeSky();
    for (;;) {
        std::this_thread::sleep_until(nextTick());
        if (renderer.submitted() >= slots) {
            renderer.waitFor(renderer.submitted() + 1 - slots);
        }
        renderer.draw(sky.next(), window.take());
        window.show();
    }
}

}  // namespace bench
