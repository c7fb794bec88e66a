#include "settings/QZLTextTrigger.hpp"

#include "platform/ui/CurrentEvent.hpp"
#include "settings/QZLTextTriggerAccessible.hpp"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOptionFocusRect>
#include <QtWidgets/QStylePainter>

QZLTextTrigger::QZLTextTrigger(QWidget* parent) : QLabel(parent) {
    QZLMakeTextTriggersAccessible();
    setTextFormat(Qt::PlainText);
    setFocusPolicy(Qt::TabFocus);
}

void QZLTextTrigger::trigger() {
    Q_EMIT triggered();
}

void QZLTextTrigger::triggerFor(QInputEvent& event) {
    event.accept();
    const platform::CurrentEvent current(event);
    trigger();  // may have destroyed this object
}

void QZLTextTrigger::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        triggerFor(*event);
    } else {
        event->ignore();
    }
}

void QZLTextTrigger::keyPressEvent(QKeyEvent* event) {
    const bool isClick =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    if (!isClick) {
        event->ignore();
    } else if (event->isAutoRepeat()) {
        event->accept();  // one press, one click
    } else {
        triggerFor(*event);
    }
}

void QZLTextTrigger::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (hasFocus()) {
        QStylePainter painter(this);
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.state |= QStyle::State_KeyboardFocusChange;  // the mouse does not bring the focus
        option.backgroundColor = palette().color(backgroundRole());
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
    }
}

void QZLTextTrigger::focusInEvent(QFocusEvent* event) {
    QLabel::focusInEvent(event);
    update();
}

void QZLTextTrigger::focusOutEvent(QFocusEvent* event) {
    QLabel::focusOutEvent(event);
    update();
}
