#pragma once

#include "tests/support/EventLoop.hpp"

#include <QtTest/qtestspontaneevent.h>
#include <QtCore/QPoint>
#include <QtGui/QBackingStore>
#include <QtGui/QImage>
#include <QtGui/QWheelEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

// What people see of a window, and how they get at it.
namespace fake {

/// Shows a window and waits until it has the keyboard.
inline bool showActive(QWidget& window) {
    window.show();
    window.activateWindow();
    return eventuallyInLoop([&window] { return window.isActiveWindow() && window.windowHandle()->isExposed(); });
}

/// What the window shows; unlike a `grab` it draws nothing anew.
inline QImage pictureOf(QWidget& window) {
    QApplication::processEvents();
    const QPaintDevice* shown = window.backingStore()->paintDevice();
    return shown->devType() == QInternal::Image ? static_cast<const QImage*>(shown)->copy() : QImage();
}

/// Turns the mouse wheel over a child of a shown window, by notches away from the person.
inline void turnWheel(QWidget& over, int notches) {
    constexpr int notch = 120;
    QWidget& window = *over.window();
    const QPointF place = over.mapTo(&window, over.rect().center());
    QWheelEvent event(place, window.mapToGlobal(place), QPoint(), QPoint(0, notches * notch), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);  // as if it came from the window system: Qt minds the difference
    qApp->notify(window.windowHandle(), &event);
}

}  // namespace fake
