#include "host/SaverWindows.hpp"

#include "platform/gpu/Backend.hpp"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaObject>
#include <QtCore/QPointer>
#include <algorithm>
#include <chrono>
#include <utility>

namespace host {
namespace {

/// What a machine without a usable device is told.
constexpr ErrorCode noDevice{303, 0};

/// A driver that is being reset or replaced needs a moment.
constexpr std::chrono::seconds pauseAfterFailure{1};

}  // namespace

SaverWindows::SaverWindows(Showing showing) : _showing(std::move(showing)) {
    _tryAgain.setSingleShot(true);
    _tryAgain.setInterval(pauseAfterFailure);
    QObject::connect(&_tryAgain, &QTimer::timeout, &_mainThread, [this] { deviceWasLost(); });
    gpu::backend()->setDeviceLostHandler([this, mainThread = QPointer<QObject>(&_mainThread)] {
        // Told on a drawing thread; all this may be gone when the message arrives.
        QMetaObject::invokeMethod(
            qApp,
            [this, mainThread] {
                if (mainThread != nullptr) {
                    deviceWasLost();
                }
            },
            Qt::QueuedConnection);
    });
}

SaverWindows::~SaverWindows() {
    gpu::backend()->setDeviceLostHandler(nullptr);
}

SaverWindow& SaverWindows::add() {
    SaverWindow& window = *_windows.emplace_back(std::make_unique<SaverWindow>(_showing));
    window.setRecoveryFailedHandler([this] { _tryAgain.start(); });
    return window;
}

void SaverWindows::remove(SaverWindow& window) {
    std::erase_if(_windows, [&](const auto& owned) { return owned.get() == &window; });
}

void SaverWindows::deviceWasLost() {
    using namespace std::chrono;
    const bool recovers = _limit.mayRecover(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()));
    for (const auto& window : _windows) {
        recovers ? window->makeViewAnew() : window->showErrorCode(noDevice);
    }
}

}  // namespace host
