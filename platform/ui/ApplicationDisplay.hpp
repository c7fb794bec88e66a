#pragma once

#include "platform/gpu/vulkan/VulkanBackend.hpp"

struct wl_display;
struct xcb_connection_t;

namespace platform {

// The window system that this application's windows are on. Main thread, with the application object made.

/// Null unless the windows are on an X server.
xcb_connection_t* applicationX11Connection();
/// Null unless the windows are on a Wayland compositor.
wl_display* applicationWaylandDisplay();

/// What a device must be able to present to so that this application's widgets can show its frames. Where windows are
/// on neither of the two, it is something that no device can present to.
gpu::vulkan::PresentationServer applicationPresentationServer();

}  // namespace platform
