#pragma once

#include "platform/HostView.hpp"
#include "platform/ui/X11LayerWindow.hpp"

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>
#include <functional>
#include <memory>

namespace gpu {
class Layer;
}

namespace platform {

/// A plain widget that can show a GPU layer's frames: they lie in a native child window that covers it while it is
/// visible. Main thread. Before it is destroyed, whatever draws into its layer must have been stopped.
class LayerWidget : public QWidget {
public:
    /// How long a size must stand still before it counts.
    static constexpr int sizeSettlingMilliseconds = 300;

    explicit LayerWidget(QWidget* parent = nullptr);
    ~LayerWidget() override;

    /// What renderers are attached to: this widget, empty (0 x 0) once it has gone, or a stand-in.
    std::shared_ptr<HostView> hostView() const;
    /// Renderers attached from now on meet this one instead of the widget: for runs that show no window, and for tests.
    void setHostView(std::shared_ptr<HostView> standIn) { _standIn = std::move(standIn); }

    /// Shows this layer's frames, or none. Returns when the former layer's frames are no longer shown.
    void setLayer(std::shared_ptr<gpu::Layer> layer);

    /// Called from the event loop when the platform says that nobody can see the frames any more, because other windows
    /// cover them or the monitor is off, or that they can be seen again.
    void setSurfaceVisibilityHandler(std::function<void(bool isVisible)> handler) { _visibility = std::move(handler); }

    void addOverlay(QWidget*) {}
    void removeOverlay(QWidget*) {}
    void updateOverlays() {}

protected:
    /// The widget has been resized, also by being shown first, and has then stood still for a while. Meanwhile the
    /// picture was stretched.
    virtual void sizeSettled() {}

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class View;

    PixelRect placeInWindow() const;
    void showLayer();
    void hideLayer();
    void placeLayer();

    std::shared_ptr<View> _view;
    std::shared_ptr<HostView> _standIn;
    std::shared_ptr<gpu::Layer> _layer;
    std::unique_ptr<X11LayerWindow> _layerWindow;
    std::function<void(bool)> _visibility;
    QTimer _settling;
};

/// What a Vulkan device must be able to present to in this application: null without an X11 connection.
struct X11Server {
    void* connection = nullptr;
    std::uint32_t visual = 0;
};
X11Server applicationX11Server();

}  // namespace platform
