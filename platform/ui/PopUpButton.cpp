#include "platform/ui/PopUpButton.hpp"

#include <QtGui/QWheelEvent>

namespace platform {

PopUpButton::PopUpButton(QWidget* parent) : QComboBox(parent) {
    setFocusPolicy(Qt::StrongFocus);  // the wheel does not bring the focus
}

void PopUpButton::selectItemAtIndex(std::int64_t index) {
    setCurrentIndex(index >= 0 && index < count() ? static_cast<int>(index) : -1);
}

void PopUpButton::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QComboBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

}  // namespace platform
