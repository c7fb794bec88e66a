#include "platform/ui/LayerWindow.hpp"

#include "platform/ui/ApplicationDisplay.hpp"
#include "platform/ui/WaylandLayerWindow.hpp"
#include "platform/ui/X11LayerWindow.hpp"

#include <QtWidgets/QWidget>
#include <utility>

namespace platform {

std::unique_ptr<LayerWindow> makeLayerWindow(QWidget& widget, LayerWindow::VisibilityHandler handler) {
    if (xcb_connection_t* connection = applicationX11Connection()) {
        return std::make_unique<X11LayerWindow>(connection, widget, std::move(handler));
    }
    return WaylandLayerWindow::create(widget, std::move(handler));
}

}  // namespace platform
