#include "host/Dismissal.hpp"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>

namespace host {

bool Dismissal::isAskedForBy(const QEvent& event, std::chrono::milliseconds now) {
    switch (event.type()) {
        case QEvent::KeyPress: return !static_cast<const QKeyEvent&>(event).isAutoRepeat();
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
        case QEvent::TabletPress: return true;
        case QEvent::MouseMove: {
            const QPointF place = static_cast<const QMouseEvent&>(event).globalPosition();
            return _pointer.movedTo(place.x(), place.y(), now);
        }
        default: return false;
    }
}

}  // namespace host
