#pragma once

#include "platform/HostView.hpp"
#include "platform/ui/LayerOverlays.hpp"
#include "platform/ui/LayerWindow.hpp"

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

    /// Whether finished frames are shown; false keeps the last picture, and nothing more is done for the window when it
    /// returns.
    void setShowsFrames(bool showsFrames);

    /// Shows this layer's frames, or none. Returns when the former layer's frames are no longer shown.
    void setLayer(std::shared_ptr<gpu::Layer> layer);

    /// Called from the event loop when the platform says that nobody can see the frames any more, because other windows
    /// cover them or the monitor is off, or that they can be seen again.
    void setSurfaceVisibilityHandler(std::function<void(bool isVisible)> handler) { _visibility = std::move(handler); }

    /// This child, to any depth, stays visible above the frames, at the cost of being painted into a picture whenever
    /// `updateOverlays` is called. Call that when it has changed in looks, place or visibility. It may be destroyed.
    void addOverlay(QWidget* child);
    void removeOverlay(QWidget* child);
    void updateOverlays();

protected:
    /// The widget has been resized, also by being shown first, and has then stood still for a while. Meanwhile the
    /// picture was stretched.
    virtual void sizeSettled() {}

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class View;

    void showLayer();
    void hideLayer();
    void windowChanged();
    void noteVisibility(bool isSeen);
    void tellVisibility();

    std::shared_ptr<View> _view;
    std::shared_ptr<HostView> _standIn;
    std::shared_ptr<gpu::Layer> _layer;
    bool _showsFrames = true;
    std::unique_ptr<LayerWindow> _layerWindow;
    LayerOverlays _overlays;
    double _shownScale = 0.0;
    std::function<void(bool)> _visibility;
    bool _isSeen = true;
    bool _isToldSeen = true;
    QTimer _settling;
    // Both run out at once, but through the event loop.
    QTimer _following;
    QTimer _telling;
};

}  // namespace platform
