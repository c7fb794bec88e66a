#include "platform/ui/ScreenSaverView.hpp"

#include "platform/ui/ViewGeometry.hpp"

#include <QtCore/QTimerEvent>
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
    if (!_drawTimer.isActive()) {
        _drawTimer.start(0, this);
    }
}

void ScreenSaverView::timerEvent(QTimerEvent* event) {
    if (event->timerId() != _drawTimer.timerId()) {
        LayerWidget::timerEvent(event);
        return;
    }
    _drawTimer.stop();
    if (isVisible() && updatesEnabled()) {
        drawRect(toView(std::exchange(_dirty, QRect()), height()));
    }
}

}  // namespace platform
