#pragma once

#include "platform/ui/LayerWindow.hpp"
#include "platform/ui/X11Visibility.hpp"

#include <QtCore/QRect>
#include <cstdint>

struct xcb_connection_t;

namespace platform {

/// On X11: a child of the top-level window that asks for no input, so that all of it reaches the parent. It is mapped
/// when the first frame is there. The connection must outlive it.
class X11LayerWindow final : public LayerWindow {
public:
    X11LayerWindow(xcb_connection_t* connection, const QWidget& widget, VisibilityHandler handler);
    ~X11LayerWindow() override;

    void follow() override;
    gpu::PresentationTarget presentationTarget() const override;

private:
    QRect wantedPlace() const;

    xcb_connection_t* _connection;
    const QWidget& _widget;
    std::uint32_t _window;
    QRect _place;  ///< in the top-level window's pixels
    X11Visibility _visibility;
};

}  // namespace platform
