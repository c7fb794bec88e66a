#include "platform/ui/X11LayerWindow.hpp"

#include <xcb/xcb.h>

#include <QtWidgets/QWidget>
#include <array>
#include <utility>

namespace platform {

X11LayerWindow::X11LayerWindow(xcb_connection_t* connection, const QWidget& widget, VisibilityHandler handler)
    : _connection(connection),
      _widget(widget),
      _window(xcb_generate_id(connection)),
      _place(wantedPlace()),
      _visibility(connection, _window, std::move(handler)) {
    // No background: the server then leaves the old picture until a new one comes, instead of flashing.
    const std::array<std::uint32_t, 2> values{XCB_BACK_PIXMAP_NONE, XCB_EVENT_MASK_VISIBILITY_CHANGE};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, _window, static_cast<std::uint32_t>(widget.window()->winId()),
                      static_cast<std::int16_t>(_place.x()), static_cast<std::int16_t>(_place.y()),
                      static_cast<std::uint16_t>(_place.width()), static_cast<std::uint16_t>(_place.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP | XCB_CW_EVENT_MASK,
                      values.data());
    xcb_flush(connection);
}

X11LayerWindow::~X11LayerWindow() {
    xcb_destroy_window(_connection, _window);
    xcb_flush(_connection);
}

void X11LayerWindow::follow() {
    const QRect wanted = wantedPlace();
    if (std::exchange(_place, wanted) == wanted) {
        return;
    }
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(wanted.x()), static_cast<std::uint32_t>(wanted.y()),
        static_cast<std::uint32_t>(wanted.width()), static_cast<std::uint32_t>(wanted.height())};
    xcb_configure_window(_connection, _window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    xcb_flush(_connection);
}

QRect X11LayerWindow::wantedPlace() const {
    const double scale = _widget.devicePixelRatioF();
    const QPoint corner = _widget.mapTo(_widget.window(), QPoint(0, 0));
    const QSize size = (QSizeF(_widget.size()) * scale).toSize();
    return {(QPointF(corner) * scale).toPoint(), size.expandedTo(QSize(1, 1))};  // X11 knows no empty windows
}

gpu::PresentationTarget X11LayerWindow::presentationTarget() const {
    gpu::PresentationTarget target;
    target.window = gpu::XcbWindow{_connection, _window};
    target.willPresentFirstFrame = [connection = _connection, window = _window] {
        xcb_map_window(connection, window);
        xcb_flush(connection);
    };
    return target;
}

}  // namespace platform
