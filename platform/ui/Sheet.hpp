#pragma once

#include <QtWidgets/QDialog>

namespace platform {

/// A settings sheet's window. However somebody wants it closed, by Escape, Enter or the window manager, its default
/// button is clicked instead, and decides; without one it closes. Only `endSheet` closes it for certain. No larger than
/// its screen at first, where its form can be smaller. Main thread.
class Sheet final : public QDialog {
public:
    explicit Sheet(QWidget* parent = nullptr) : QDialog(parent) {}

    void reject() override;
    void setVisible(bool visible) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

/// Closes a sheet's window; it may be shown again. Nothing for null.
void endSheet(QWidget* window);

}  // namespace platform
