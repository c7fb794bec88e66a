#include "platform/ui/ApplicationDisplay.hpp"

#include <qpa/qplatformnativeinterface.h>
#include <xcb/xcb.h>

#include <QtGui/QGuiApplication>

namespace platform {

xcb_connection_t* applicationX11Connection() {
    // Other platforms have the interface too, and no connection or a bad one behind it.
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        return nullptr;
    }
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

wl_display* applicationWaylandDisplay() {
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
        return nullptr;
    }
    return static_cast<wl_display*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
}

gpu::vulkan::PresentationServer applicationPresentationServer() {
    if (wl_display* display = applicationWaylandDisplay()) {
        return gpu::vulkan::WaylandServer{display};
    }
    if (xcb_connection_t* connection = applicationX11Connection()) {
        return gpu::vulkan::XcbServer{connection,
                                      xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root_visual};
    }
    return gpu::vulkan::XcbServer{};
}

}  // namespace platform
