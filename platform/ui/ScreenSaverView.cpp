#include "platform/ui/ScreenSaverView.hpp"

#include "platform/ui/ViewGeometry.hpp"

#include <QtCore/QMetaObject>
#include <QtGui/QPaintEvent>
#include <utility>

namespace platform {
ScreenSaverView::ScreenSaverView(const Rect& frame, bool isPreview) : _isPreview(isPreview) {
    setGeometry(QRectF(frame.x, frame.y, frame.width, frame.height).toRect());
}

ScreenSaverView::~ScreenSaverView() = default;

void ScreenSaverView::startAnimation() {
    _isAnimating = true;
    setShowsFrames(true);
}

void ScreenSaverView::stopAnimation() {
    _isAnimating = false;
    setShowsFrames(false);
}

void ScreenSaverView::drawRect(const Rect&) {}

void ScreenSaverView::paintEvent(QPaintEvent* event) {
    LayerWidget::paintEvent(event);
    _dirty |= event->rect();
    if (!std::exchange(_drawIsPending, true)) {
        const auto draw = [this] {
            _drawIsPending = false;
            if (isVisible()) {
                drawRect(toView(std::exchange(_dirty, QRect()), height()));
            }
        };
        QMetaObject::invokeMethod(this, draw, Qt::QueuedConnection);
    }
}

}  // namespace platform
