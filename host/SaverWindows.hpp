#pragma once

#include "host/DeviceLossLimit.hpp"
#include "host/SaverWindow.hpp"

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <memory>
#include <vector>

namespace host {

/// All windows of the process, which share one graphics device and so lose it together: then each gets another view, or
/// none when that happens too often. A view that cannot be started after a loss is tried once more a second later, and
/// counts as another loss. Main thread.
class SaverWindows {
public:
    explicit SaverWindows(Showing showing);
    ~SaverWindows();
    SaverWindows(const SaverWindows&) = delete;
    SaverWindows& operator=(const SaverWindows&) = delete;

    /// One more, not shown yet. It lives until it is removed or this object goes.
    SaverWindow& add();
    void remove(SaverWindow& window);

private:
    void deviceWasLost();

    const Showing _showing;
    std::vector<std::unique_ptr<SaverWindow>> _windows;
    DeviceLossLimit _limit;
    QTimer _tryAgain;
    QObject _mainThread;  // what the drawing threads post to; last, so that it goes first
};

}  // namespace host
