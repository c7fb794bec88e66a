#include "platform/ui/WaylandLayerWindow.hpp"

#include "platform/ui/WaylandConnection.hpp"

#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformwindow.h>
#include <viewporter-client-protocol.h>
#include <wayland-client.h>

#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>
#include <algorithm>
#include <utility>

namespace platform {
namespace {

/// How many of the compositor's units a point is: 1 unless the application itself scales its windows.
double unitsPerPoint(const QWindow& window) {
    return window.handle() != nullptr ? window.devicePixelRatio() / window.handle()->devicePixelRatio() : 1.0;
}

QSize atLeastOne(const QSizeF& size) {
    return size.toSize().expandedTo(QSize(1, 1));
}

}  // namespace

/// The surface that frames are shown in. Its end may come on the presenter's thread.
class WaylandLayerWindow::Surface final : public gpu::WaylandSurface {
public:
    explicit Surface(const WaylandConnection& connection)
        : _display(connection.display()), _surface(wl_compositor_create_surface(connection.compositor())) {
        wl_region* const nowhere = wl_compositor_create_region(connection.compositor());
        wl_surface_set_input_region(_surface, nowhere);
        wl_region_destroy(nowhere);
    }
    ~Surface() override { wl_surface_destroy(_surface); }

    void* display() const override { return _display; }
    void* surface() const override { return _surface; }
    wl_surface* handle() const { return _surface; }

private:
    wl_display* _display;
    wl_surface* _surface;
};

std::unique_ptr<LayerWindow> WaylandLayerWindow::create(QWidget& widget, VisibilityHandler handler) {
    const WaylandConnection* const connection = WaylandConnection::ofApplication();
    QWindow* const window = widget.window()->windowHandle();
    if (connection == nullptr || window == nullptr || window->handle() == nullptr) {
        return nullptr;
    }
    void* const parent = QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", window);
    if (parent == nullptr) {
        return nullptr;
    }
    return std::unique_ptr<LayerWindow>(new WaylandLayerWindow(*connection, parent, widget, std::move(handler)));
}

WaylandLayerWindow::WaylandLayerWindow(const WaylandConnection& connection, void* parent, QWidget& widget,
                                       VisibilityHandler handler)
    : _widget(widget),
      _surface(std::make_shared<Surface>(connection)),
      _subsurface(wl_subcompositor_get_subsurface(connection.subcompositor(), _surface->handle(),
                                                  static_cast<wl_surface*>(parent))),
      _viewport(wp_viewporter_get_viewport(connection.viewporter(), _surface->handle())),
      _visibility(_surface, [this, tell = std::move(handler)](bool isVisible) {
          if (!isVisible) {
              commitPlace();  // in case that this is all it lacks
          }
          tell(isVisible);
      }) {
    wl_subsurface_set_desync(_subsurface);
    follow();
}

WaylandLayerWindow::~WaylandLayerWindow() {
    wp_viewport_destroy(_viewport);
    wl_subsurface_destroy(_subsurface);
}

void WaylandLayerWindow::follow() {
    const Place wanted = wantedPlace();
    if (_place == wanted) {
        return;
    }
    _place = wanted;
    wl_subsurface_set_position(_subsurface, wanted.rect.x(), wanted.rect.y());
    // In force from the next frame on, which the presenter commits.
    wp_viewport_set_destination(_viewport, wanted.rect.width(), wanted.rect.height());
    _surface->setSize(
        {static_cast<std::size_t>(wanted.pixels.width()), static_cast<std::size_t>(wanted.pixels.height())});
    commitPlace();
}

/// The place is the top-level window's to commit, which it does when it has painted something.
void WaylandLayerWindow::commitPlace() {
    _widget.update();  // not the top-level widget, which may be covered by this one and then has nothing to paint
}

WaylandLayerWindow::Place WaylandLayerWindow::wantedPlace() const {
    const QWindow& window = *_widget.window()->windowHandle();
    const QMargins frame = window.frameMargins();
    const QPoint corner = _widget.mapTo(_widget.window(), QPoint(0, 0)) + QPoint(frame.left(), frame.top());
    const double scale = unitsPerPoint(window);
    return {QRect((QPointF(corner) * scale).toPoint(), atLeastOne(QSizeF(_widget.size()) * scale)),
            atLeastOne(QSizeF(_widget.size()) * _widget.devicePixelRatioF())};
}

gpu::PresentationTarget WaylandLayerWindow::presentationTarget() const {
    return {.window = gpu::WaylandWindow{_surface}, .willPresentFirstFrame = {}};
}

}  // namespace platform
