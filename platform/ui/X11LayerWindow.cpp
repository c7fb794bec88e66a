#include "platform/ui/X11LayerWindow.hpp"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>

namespace platform {
namespace {

xcb_connection_t* toXcb(void* connection) {
    return static_cast<xcb_connection_t*>(connection);
}

/// X11 knows no empty windows.
PixelRect atLeastOnePixel(PixelRect place) {
    place.width = std::max(place.width, 1);
    place.height = std::max(place.height, 1);
    return place;
}

}  // namespace

X11LayerWindow::X11LayerWindow(void* connection, std::uint32_t parent, const PixelRect& place)
    : _connection(connection), _window(xcb_generate_id(toXcb(connection))), _place(atLeastOnePixel(place)) {
    // No background: the server then leaves the old picture until a new one comes, instead of flashing.
    const std::array<std::uint32_t, 1> values{XCB_BACK_PIXMAP_NONE};
    xcb_create_window(toXcb(connection), XCB_COPY_FROM_PARENT, _window, parent, static_cast<std::int16_t>(_place.x),
                      static_cast<std::int16_t>(_place.y), static_cast<std::uint16_t>(_place.width),
                      static_cast<std::uint16_t>(_place.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXMAP, values.data());
    xcb_flush(toXcb(connection));
}

X11LayerWindow::~X11LayerWindow() {
    xcb_destroy_window(toXcb(_connection), _window);
    xcb_flush(toXcb(_connection));
}

void X11LayerWindow::setPlace(const PixelRect& place) {
    const PixelRect wanted = atLeastOnePixel(place);
    if (wanted == _place) {
        return;
    }
    _place = wanted;
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(wanted.x), static_cast<std::uint32_t>(wanted.y),
        static_cast<std::uint32_t>(wanted.width), static_cast<std::uint32_t>(wanted.height)};
    xcb_configure_window(toXcb(_connection), _window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    xcb_flush(toXcb(_connection));
}

gpu::PresentationTarget X11LayerWindow::presentationTarget() const {
    gpu::PresentationTarget target;
    target.window = gpu::XcbWindow{_connection, _window};
    target.willPresentFirstFrame = [connection = toXcb(_connection), window = _window] {
        xcb_map_window(connection, window);
        xcb_flush(connection);
    };
    return target;
}

}  // namespace platform
