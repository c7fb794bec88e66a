#pragma once

#include "platform/ui/LayerWindow.hpp"
#include "platform/ui/WaylandVisibility.hpp"

#include <QtCore/QRect>
#include <optional>

struct wl_subsurface;
struct wp_viewport;

namespace platform {

class WaylandConnection;

/// On Wayland: a surface of our own as a subsurface of the top-level window's, which shows frames as they come,
/// whatever the top-level does, and takes no input. The compositor stretches what is in it over the widget's place, so
/// that a picture of a former size or scale does no harm.
class WaylandLayerWindow final : public LayerWindow {
public:
    static std::unique_ptr<LayerWindow> create(QWidget& widget, VisibilityHandler handler);
    ~WaylandLayerWindow() override;

    void follow() override;
    gpu::PresentationTarget presentationTarget() const override;

private:
    class Surface;
    /// In the compositor's units, and the widget's size in pixels.
    struct Place {
        QRect rect;
        QSize pixels;
        bool operator==(const Place&) const = default;
    };

    WaylandLayerWindow(const WaylandConnection& connection, void* parent, QWidget& widget, VisibilityHandler handler);
    Place wantedPlace() const;
    void commitPlace();

    QWidget& _widget;
    std::shared_ptr<Surface> _surface;
    wl_subsurface* _subsurface;
    wp_viewport* _viewport;
    std::optional<Place> _place;
    WaylandVisibility _visibility;
};

}  // namespace platform
