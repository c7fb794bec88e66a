#include "platform/ui/WorkspaceMessage.hpp"

#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

namespace platform {

void showWorkspaceMessage(const std::string& message) {
    QWidget* const active = QApplication::activeWindow();
    // The box of a window below a modal one could not be used.
    auto* const box = new QMessageBox(active != nullptr ? active : QApplication::activeModalWidget());
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
