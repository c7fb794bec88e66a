#include "host/WindowRun.hpp"

#include "platform/gpu/Backend.hpp"
#include "platform/ui/LayerWidget.hpp"

#include <QtCore/QPointer>
#include <QtCore/QSocketNotifier>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <cstdlib>
#include <memory>
#include <utility>

namespace host {
namespace {

constexpr QSize initialSize{1280, 720};
constexpr QSize smallestSize{160, 100};

/// The saver's window: draws while it is visible, and starts anew at its new size when that has settled.
class SaverWindow final : public platform::LayerWidget {
public:
    explicit SaverWindow(const platform::SaverModule& module) : _module(module) {
        setWindowTitle(QStringLiteral("Cirrane"));
        setMinimumSize(smallestSize);
        resize(initialSize);
        setSizeSettledHandler([this] { drawAtNewSize(); });
    }

    ~SaverWindow() override { closeSession(); }

    const std::optional<std::string>& failure() const { return _failure; }

    void fail(std::string reason) {
        _failure = std::move(reason);
        closeSession();
        QApplication::exit(1);
    }

    /// Stops drawing for good and lets go of the GPU.
    void closeSession() {
        _isDrawing = false;
        _session.reset();
        setLayer(nullptr);
    }

protected:
    void showEvent(QShowEvent* event) override {
        LayerWidget::showEvent(event);
        if (_session == nullptr && !_failure) {
            _session = _module.createSession(hostView(), false, 0);
            if (_session == nullptr) {
                fail("the saver could not be made");
                return;
            }
        }
        start();
    }

    void hideEvent(QHideEvent* event) override {
        stop();
        LayerWidget::hideEvent(event);
    }

    void changeEvent(QEvent* event) override {
        LayerWidget::changeEvent(event);
        if (event->type() == QEvent::WindowStateChange) {
            isMinimized() ? stop() : start();
        }
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Q) {
            close();
        } else {
            LayerWidget::keyPressEvent(event);
        }
    }

private:
    void start() {
        if (_session == nullptr || _isDrawing || !isVisible() || isMinimized()) {
            return;
        }
        _drawnSize = sizeInPixels();
        if (const auto error = _session->startAnimation()) {
            fail(error->localizedDescription());
            return;
        }
        _isDrawing = true;
    }

    void stop() {
        if (std::exchange(_isDrawing, false)) {
            _session->stopAnimation();
        }
    }

    void drawAtNewSize() {
        if (_session == nullptr || sizeInPixels() == _drawnSize) {
            return;
        }
        stop();
        _session->detach();
        start();
    }

    QSize sizeInPixels() const { return (QSizeF(size()) * devicePixelRatioF()).toSize(); }

    const platform::SaverModule& _module;
    std::unique_ptr<platform::SaverSession> _session;
    std::optional<std::string> _failure;
    QSize _drawnSize;
    bool _isDrawing = false;
};

}  // namespace

std::optional<std::string> runWindow(const platform::SaverModule& module, const TerminationSignals& signals) {
    SaverWindow window(module);

    QSocketNotifier signalNotifier(signals.fileDescriptor(), QSocketNotifier::Read);
    QObject::connect(&signalNotifier, &QSocketNotifier::activated, qApp, [] { QApplication::exit(0); });

    // Told on a drawing thread; the window lives on this one, and may be gone when the message arrives.
    gpu::backend()->setDeviceLostHandler([pointer = QPointer<SaverWindow>(&window)] {
        QMetaObject::invokeMethod(
            qApp,
            [pointer] {
                if (pointer != nullptr) {
                    pointer->fail("the graphics device was lost");
                }
            },
            Qt::QueuedConnection);
    });

    window.show();
    if (!window.failure()) {
        QApplication::exec();
    }
    window.closeSession();
    gpu::backend()->setDeviceLostHandler(nullptr);
    return window.failure();
}

}  // namespace host
