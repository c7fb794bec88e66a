#include "platform/ui/ViewGeometry.hpp"

namespace platform {

QRectF toWidget(const Rect& rect, double height) {
    return {rect.x, height - rect.y - rect.height, rect.width, rect.height};
}

QRect toWholeWidget(const Rect& rect, double height) {
    return toWidget(rect, height).toRect();
}

Rect toView(const QRectF& rect, double height) {
    return {rect.x(), height - rect.y() - rect.height(), rect.width(), rect.height()};
}

}  // namespace platform
