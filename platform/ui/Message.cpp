#include "platform/ui/Message.hpp"

#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

namespace platform {
namespace {

/// The box of a window below a modal one could not be used.
QWidget* usableWindow() {
    QWidget* const active = QApplication::activeWindow();
    return active != nullptr ? active : QApplication::activeModalWidget();
}

}  // namespace

void showMessage(const std::string& message, QWidget* over) {
    auto* const box = new QMessageBox(over != nullptr ? over : usableWindow());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setIcon(QMessageBox::Information);
    box->setWindowTitle(QApplication::applicationDisplayName());
    box->setTextFormat(Qt::PlainText);
    box->setText(QString::fromStdString(message));
    box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box->setStandardButtons(QMessageBox::Ok);
    box->setModal(false);
    box->show();
}

}  // namespace platform
