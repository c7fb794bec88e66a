#pragma once

#include <QtWidgets/QComboBox>
#include <cstdint>

namespace platform {

/// A button that shows its chosen item and offers all in a menu; it may have none chosen. The mouse wheel changes it
/// only while it has the focus. Main thread.
class PopUpButton : public QComboBox {
    Q_OBJECT

public:
    explicit PopUpButton(QWidget* parent = nullptr);

    /// Chooses nothing when there is no such item.
    void selectItemAtIndex(std::int64_t index);
    /// -1 when nothing is chosen.
    std::int64_t indexOfSelectedItem() const { return currentIndex(); }

protected:
    void wheelEvent(QWheelEvent* event) override;
};

}  // namespace platform
