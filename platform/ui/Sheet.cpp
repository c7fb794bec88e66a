#include "platform/ui/Sheet.hpp"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QPushButton>
#include <algorithm>

namespace platform {

void Sheet::reject() {
    const auto buttons = findChildren<QPushButton*>();
    const auto closing = std::ranges::find_if(buttons, &QPushButton::isDefault);
    if (closing == buttons.end()) {
        QDialog::reject();
    } else {
        (*closing)->click();
    }
}

void Sheet::keyPressEvent(QKeyEvent* event) {
    // The base does this only while the button can be seen.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        reject();
    } else {
        QDialog::keyPressEvent(event);
    }
}

void endSheet(QWidget* window) {
    if (auto* const dialog = qobject_cast<QDialog*>(window)) {
        dialog->done(QDialog::Accepted);
    } else if (window != nullptr) {
        window->hide();
    }
}

}  // namespace platform
