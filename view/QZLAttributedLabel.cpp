#include "view/QZLAttributedLabel.hpp"

#include "platform/ui/ViewGeometry.hpp"

#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <utility>

QZLAttributedLabel::QZLAttributedLabel(QWidget* parent, const platform::Rect& frame)
    : QWidget(parent), _frame(frame), _bound(frame) {
    setGeometry(platform::toWholeWidget(frame, parent->height()));
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void QZLAttributedLabel::setText(platform::AttributedString text, const platform::Rect& bound, unsigned options) {
    _text = std::move(text);
    _bound = bound;
    _options = options;
}

void QZLAttributedLabel::setBackgroundColor(const QColor& color) {
    _backgroundColor = color;
    setAttribute(Qt::WA_OpaquePaintEvent, isOpaque());
}

void QZLAttributedLabel::drawRect(const QRect& dirtyRect) {
    QPainter painter(this);
    painter.fillRect(dirtyRect, _backgroundColor);
    _text.drawWithRect(painter, platform::toWidget(_bound, height()), _options);
}

void QZLAttributedLabel::paintEvent(QPaintEvent* event) {
    drawRect(event->rect());
}
