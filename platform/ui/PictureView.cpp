#include "platform/ui/PictureView.hpp"

#include <QtGui/QPainter>
#include <utility>

namespace platform {
namespace {

constexpr int linesHigh = 6;
constexpr double titleScale = 2.0;

/// The largest part of the picture that has the shape of the place.
QRectF partOfShape(const QSizeF& picture, const QSizeF& place) {
    QSizeF part = place.scaled(picture, Qt::KeepAspectRatio);
    return {{(picture.width() - part.width()) / 2.0, (picture.height() - part.height()) / 2.0}, part};
}

}  // namespace

PictureView::PictureView(std::filesystem::path directory, QWidget* parent)
    : QWidget(parent), _directory(std::move(directory)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
}

void PictureView::setPicture(const QString& picture) {
    _picture = picture;
    _image.load(QString::fromStdString((_directory / picture.toStdString()).string()));
    update();
}

void PictureView::setTitle(const QString& title) {
    _title = title;
    setAccessibleName(title);
    updateGeometry();
    update();
}

QFont PictureView::titleFont() const {
    QFont larger = font();
    larger.setPointSizeF(larger.pointSizeF() * titleScale);
    return larger;
}

QSize PictureView::sizeHint() const {
    const int line = fontMetrics().height();
    return {QFontMetrics(titleFont()).horizontalAdvance(_title) + 2 * line, linesHigh * line};
}

void PictureView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!_image.isNull()) {
        painter.drawImage(QRectF(rect()), _image, partOfShape(_image.size(), size()));
    }
    if (!_title.isEmpty()) {
        const int margin = fontMetrics().height();
        const QRect place = rect().adjusted(margin, 0, -margin, -margin / 2);
        painter.setFont(titleFont());
        painter.setPen(_image.isNull() ? palette().color(QPalette::WindowText) : Qt::white);
        painter.drawText(place, Qt::AlignLeft | Qt::AlignBottom, _title);
    }
}

}  // namespace platform
