#pragma once

#include "platform/gpu/Layer.hpp"

#include <QtCore/QObject>
#include <functional>
#include <memory>
#include <vector>

class QWidget;

namespace platform {

/// The children of a widget that must stay visible above a layer's frames, and their picture. Main thread.
class LayerOverlays {
public:
    /// `changed` is called when a child has been destroyed.
    explicit LayerOverlays(std::function<void()> changed) : _changed(std::move(changed)) {}

    void add(QWidget* child);
    void remove(QWidget* child);

    /// What of the children lies inside the widget, in device pixels; null when there is nothing to see. As long as
    /// they look the same it is the same object.
    std::shared_ptr<const gpu::Overlay> picture(const QWidget& widget);

private:
    std::shared_ptr<const gpu::Overlay> paint(const QWidget& widget) const;

    std::function<void()> _changed;
    std::vector<QWidget*> _children;
    std::shared_ptr<const gpu::Overlay> _last;
    QObject _connections;  ///< what ends them, before all else here goes
};

}  // namespace platform
