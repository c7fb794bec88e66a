#pragma once

#include "platform/gpu/Layer.hpp"

#include <functional>
#include <memory>

class QWidget;

namespace platform {

/// The native child window that a layer's frames are shown in: it covers a widget in its top-level window, lets all
/// input through to it, and appears with the first frame. Main thread; owned by the widget. No layer may present to it
/// any more when it is destroyed.
class LayerWindow {
public:
    /// Told that nobody can see the window, or that somebody can again. Called from the event loop; a window counts as
    /// visible at first, and whenever there is doubt.
    using VisibilityHandler = std::function<void(bool isVisible)>;

    LayerWindow(const LayerWindow&) = delete;
    LayerWindow& operator=(const LayerWindow&) = delete;
    virtual ~LayerWindow() = default;

    /// Covers the widget where it is now and at its present size and scale.
    virtual void follow() = 0;
    virtual gpu::PresentationTarget presentationTarget() const = 0;

protected:
    LayerWindow() = default;
};

/// Null where the window system is one that frames cannot be shown on, and while the widget's top-level window has no
/// native window. The widget must outlive it.
std::unique_ptr<LayerWindow> makeLayerWindow(QWidget& widget, LayerWindow::VisibilityHandler handler);

}  // namespace platform
