#include "platform/ui/TextField.hpp"

#include "platform/ui/AttributedString.hpp"
#include "platform/ui/ViewGeometry.hpp"

#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <utility>

namespace platform {
namespace {

constexpr double leftMargin = 2.0;  // points

}  // namespace

TextField::TextField(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
}

void TextField::setFrame(const Rect& frame) {
    _frame = frame;
    followParent();
}

void TextField::followParent() {
    setGeometry(toWholeWidget(_frame, parentWidget()->height()));
}

void TextField::setStringValue(std::string value) {
    if (value != _stringValue) {
        _stringValue = std::move(value);
        update();
    }
}

void TextField::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), _backgroundColor);
    AttributedString text;
    text.append(_stringValue, {_font, _textColor, Qt::transparent});
    // Wide enough that it never wraps; what does not fit is cut off.
    constexpr double anyWidth = 1e5;
    const double textHeight = text.boundingSize(anyWidth, 0).height();
    text.drawWithRect(painter, QRectF(leftMargin, (height() - textHeight) / 2.0, anyWidth, textHeight), 0);
}

}  // namespace platform
