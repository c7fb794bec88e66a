#include "platform/ui/LayerOverlays.hpp"

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtWidgets/QWidget>
#include <algorithm>
#include <span>

namespace platform {
namespace {

QRect placeIn(const QWidget& widget, const QWidget& child) {
    return {child.mapTo(&widget, QPoint(0, 0)), child.size()};
}

gpu::Overlay toOverlay(const QImage& image, QPoint corner) {
    const auto bytes = std::as_bytes(std::span(image.constBits(), static_cast<std::size_t>(image.sizeInBytes())));
    return {.x = corner.x(),
            .y = corner.y(),
            .size = {static_cast<std::size_t>(image.width()), static_cast<std::size_t>(image.height())},
            .pixels = {bytes.begin(), bytes.end()}};
}

}  // namespace

void LayerOverlays::add(QWidget* child) {
    remove(child);
    _children.emplace_back(child);
    QObject::connect(child, &QObject::destroyed, &_connections, [this, child] {
        std::erase(_children, child);
        _changed();
    });
}

void LayerOverlays::remove(QWidget* child) {
    std::erase(_children, child);
    QObject::disconnect(child, nullptr, &_connections, nullptr);
}

std::shared_ptr<const gpu::Overlay> LayerOverlays::picture(const QWidget& widget) {
    auto current = paint(widget);
    const bool isAsBefore = current != nullptr && _last != nullptr && *current == *_last;
    if (!isAsBefore) {
        _last = std::move(current);
    }
    return _last;
}

std::shared_ptr<const gpu::Overlay> LayerOverlays::paint(const QWidget& widget) const {
    std::vector<QWidget*> shown;
    QRect area;
    for (QWidget* child : _children) {
        if (child->isVisibleTo(&widget)) {
            shown.push_back(child);
            area |= placeIn(widget, *child);
        }
    }
    area &= widget.rect();
    if (area.isEmpty()) {
        return nullptr;
    }
    const double scale = widget.devicePixelRatioF();
    const QRect pixels = QRectF(QPointF(area.topLeft()) * scale, QSizeF(area.size()) * scale).toAlignedRect();
    QImage image(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QPointF origin = QPointF(pixels.topLeft()) / scale;
    for (QWidget* child : shown) {
        painter.save();
        painter.translate(QPointF(placeIn(widget, *child).topLeft()) - origin);
        child->render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
        painter.restore();
    }
    painter.end();
    return std::make_shared<const gpu::Overlay>(toOverlay(image, pixels.topLeft()));
}

}  // namespace platform
