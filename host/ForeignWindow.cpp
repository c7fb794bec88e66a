#include "host/ForeignWindow.hpp"

#include <xcb/xcb.h>

#include <QtGui/QGuiApplication>
#include <cstdlib>
#include <memory>

namespace host {
namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }  // NOLINT: xcb hands out memory of malloc
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

xcb_connection_t* connection() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

Reply<xcb_get_geometry_reply_t> geometryOf(std::uint32_t window) {
    return Reply<xcb_get_geometry_reply_t>(
        xcb_get_geometry_reply(connection(), xcb_get_geometry(connection(), window), nullptr));
}

Reply<xcb_get_window_attributes_reply_t> attributesOf(std::uint32_t window) {
    return Reply<xcb_get_window_attributes_reply_t>(
        xcb_get_window_attributes_reply(connection(), xcb_get_window_attributes(connection(), window), nullptr));
}

/// Our own part of what a window's events go to.
std::uint32_t selectedEvents(std::uint32_t window) {
    const auto attributes = attributesOf(window);
    return attributes != nullptr ? attributes->your_event_mask : 0;
}

void selectEvents(std::uint32_t window, std::uint32_t events) {
    xcb_change_window_attributes(connection(), window, XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection());
}

}  // namespace

ForeignWindow::ForeignWindow(std::uint32_t window) : _window(window) {
    if (size()) {
        selectEvents(_window, selectedEvents(_window) | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    }
    QGuiApplication::instance()->installNativeEventFilter(this);
}

ForeignWindow::~ForeignWindow() {
    QGuiApplication::instance()->removeNativeEventFilter(this);
}

std::optional<QSize> ForeignWindow::size() const {
    const auto geometry = geometryOf(_window);
    const auto attributes = attributesOf(_window);
    const bool canBeDrawnIn = attributes != nullptr && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
    return geometry != nullptr && canBeDrawnIn ? std::optional(QSize(geometry->width, geometry->height)) : std::nullopt;
}

bool ForeignWindow::isMapped() const {
    const auto attributes = attributesOf(_window);
    return attributes != nullptr && attributes->map_state != XCB_MAP_STATE_UNMAPPED;
}

QRect ForeignWindow::placeOnDesktop() const {
    const auto geometry = geometryOf(_window);
    if (geometry == nullptr) {
        return {};
    }
    const Reply<xcb_translate_coordinates_reply_t> corner(xcb_translate_coordinates_reply(
        connection(), xcb_translate_coordinates(connection(), _window, geometry->root, 0, 0), nullptr));
    const QPoint topLeft = corner != nullptr ? QPoint(corner->dst_x, corner->dst_y) : QPoint();
    return {topLeft, QSize(geometry->width, geometry->height)};
}

bool ForeignWindow::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    constexpr unsigned sentBySomebody = 0x80;
    switch (event->response_type & ~sentBySomebody) {
        case XCB_CONFIGURE_NOTIFY: {
            const auto* configured = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
            if (configured->window == _window && _resized) {
                _resized(QSize(configured->width, configured->height));
            }
            break;
        }
        case XCB_MAP_NOTIFY:
            if (reinterpret_cast<const xcb_map_notify_event_t*>(event)->window == _window && _mapped) {
                _mapped(true);
            }
            break;
        case XCB_UNMAP_NOTIFY:
            if (reinterpret_cast<const xcb_unmap_notify_event_t*>(event)->window == _window && _mapped) {
                _mapped(false);
            }
            break;
        case XCB_DESTROY_NOTIFY:
            if (reinterpret_cast<const xcb_destroy_notify_event_t*>(event)->window == _window && _destroyed) {
                _destroyed();
            }
            break;
        default: break;
    }
    return false;
}

void ignoreInput(std::uint32_t window) {
    constexpr std::uint32_t input = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                                    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                    XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW |
                                    XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_MOTION;
    selectEvents(window, selectedEvents(window) & ~input);
}

}  // namespace host
