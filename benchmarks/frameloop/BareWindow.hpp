#pragma once

#include "benchmarks/frameloop/BareRenderer.hpp"

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace bench {

/// An X11 window and its swapchain, whose images are drawn in directly. It keeps the size that it was made with, and is
/// of no more use once somebody else has resized or closed it: then what it is asked for throws.
class BareWindow {
public:
    BareWindow(const BareDevice& device, Size size);

    /// The image to draw in next; at most as many at once as there are slots.
    BarePicture take();
    /// Shows the image that was taken last.
    void show();

private:
    struct Closer {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    struct Image {
        vk::Image image;
        vk::raii::ImageView view = nullptr;
        vk::raii::Semaphore drawn = nullptr;
    };

    const BareDevice& _device;
    std::unique_ptr<xcb_connection_t, Closer> _connection;
    vk::raii::SurfaceKHR _surface;
    vk::raii::SwapchainKHR _swapchain;
    std::vector<Image> _images;
    std::array<vk::raii::Semaphore, slots> _given;
    std::size_t _taken = 0;
    std::uint32_t _current = 0;
};

/// Shows the clouds in such a window at `nominalRate`, until the process is ended.
[[noreturn]] void runBareWindow(const std::string& deviceName, const std::filesystem::path& shaderLibrary, Size size);

}  // namespace bench
