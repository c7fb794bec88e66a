#pragma once

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QApplication>

namespace fake {

/// Handles events until the condition holds; false when half a minute passes first.
template <typename Condition>
bool eventuallyInLoop(Condition condition) {
    constexpr int deadline = 30'000;
    constexpr int slice = 20;
    QElapsedTimer timer;
    timer.start();
    while (!condition() && !timer.hasExpired(deadline)) {
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, slice);
    }
    return condition();
}

}  // namespace fake
