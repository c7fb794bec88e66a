#pragma once

#include <QtWidgets/QLabel>

class QInputEvent;

/// A text that acts like a button: at once when the left mouse button goes down on it, and when Return, Enter or Space
/// is pressed while it has the focus, which the Tab key brings. Whoever is called may ask which modifier keys are held,
/// and may destroy the trigger. Its text is shown as it stands. Main thread; owned by its parent.
class QZLTextTrigger : public QLabel {
    Q_OBJECT

public:
    explicit QZLTextTrigger(QWidget* parent = nullptr);

    /// Acts as a click without an input event, and so without modifier keys.
    void trigger();

Q_SIGNALS:
    void triggered();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void triggerFor(QInputEvent& event);
};
