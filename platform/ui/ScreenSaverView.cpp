#include "platform/ui/ScreenSaverView.hpp"

#include <QtCore/QMetaObject>
#include <QtGui/QPaintEvent>
#include <cmath>
#include <utility>

namespace platform {
namespace {

int wholePoints(double length) {
    return static_cast<int>(std::lround(length));
}

/// From Qt's coordinates to the view's, whose origin is at the bottom left.
Rect unflipped(const QRect& rect, int height) {
    return {static_cast<double>(rect.x()), static_cast<double>(height - rect.y() - rect.height()),
            static_cast<double>(rect.width()), static_cast<double>(rect.height())};
}

}  // namespace

ScreenSaverView::ScreenSaverView(const Rect& frame, bool isPreview) : _isPreview(isPreview) {
    setGeometry(wholePoints(frame.x), wholePoints(frame.y), wholePoints(frame.width), wholePoints(frame.height));
}

ScreenSaverView::~ScreenSaverView() = default;

void ScreenSaverView::drawRect(const Rect&) {}

void ScreenSaverView::paintEvent(QPaintEvent* event) {
    LayerWidget::paintEvent(event);
    _dirtyRect = unflipped(event->rect(), height());
    if (!std::exchange(_drawIsPending, true)) {
        const auto draw = [this] {
            _drawIsPending = false;
            if (isVisible()) {
                drawRect(_dirtyRect);
            }
        };
        QMetaObject::invokeMethod(this, draw, Qt::QueuedConnection);
    }
}

}  // namespace platform
