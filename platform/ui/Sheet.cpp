#include "platform/ui/Sheet.hpp"

#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QLayout>
#include <QtWidgets/QPushButton>
#include <algorithm>

namespace platform {
namespace {

/// From the innermost views on, so that each knows the sizes of what is in it.
void layOut(QWidget& view) {
    for (QObject* child : view.children()) {
        if (child->isWidgetType()) {
            layOut(*static_cast<QWidget*>(child));
        }
    }
    view.ensurePolished();
    if (view.layout() != nullptr) {
        view.layout()->activate();
    }
}

}  // namespace

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
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == 0;
    if (event->isAutoRepeat() && (isEnter || event->key() == Qt::Key_Escape)) {
        event->accept();  // the key that opened or closed something shall do no more
    } else if (isEnter && isPlain) {
        reject();  // the base does this only while the button can be seen
    } else {
        QDialog::keyPressEvent(event);
    }
}

/// Qt itself lays out what is within views within a dialog only once that is shown, and relies on a least size to mend
/// the dialog's then; what scrolls has none to speak of.
void Sheet::setVisible(bool visible) {
    if (visible && !testAttribute(Qt::WA_Resized)) {
        layOut(*this);
        resize(sizeHint().boundedTo(screen()->availableSize() * 9 / 10));
    }
    QDialog::setVisible(visible);
}

void endSheet(QWidget* window) {
    if (auto* const dialog = qobject_cast<QDialog*>(window)) {
        dialog->done(QDialog::Accepted);
    } else if (window != nullptr) {
        window->hide();
    }
}

}  // namespace platform
