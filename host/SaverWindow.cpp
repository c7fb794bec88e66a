#include "host/SaverWindow.hpp"

#include <QtGui/QGuiApplication>
#include <QtGui/QHideEvent>
#include <QtGui/QShowEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QLabel>
#include <utility>

namespace host {

SaverWindow::SaverWindow(const Showing& showing) : _showing(showing) {
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
    setWindowTitle(QStringLiteral("Cirrane"));
    _startSoon.setSingleShot(true);
    connect(&_startSoon, &QTimer::timeout, this, [this] { startNow(); });
}

SaverWindow::~SaverWindow() {
    closeView();
}

void SaverWindow::closeView() {
    if (_view != nullptr) {
        _view->stopAnimation();
        _view.reset();
    }
}

void SaverWindow::makeView() {
    if (const auto* reason = std::get_if<std::string>(&_showing.saver)) {
        showReason(*reason);
        return;
    }
    const platform::SaverModule& module = *std::get<const platform::SaverModule*>(_showing.saver);
    const platform::Rect frame{0.0, 0.0, static_cast<double>(width()), static_cast<double>(height())};
    _view.reset(module.createView(frame, _showing.isPreview));
    if (_view == nullptr) {
        showReason("the saver could not be made");
        return;
    }
    _view->setParent(this);
    _view->setSurfaceVisibilityHandler([this](bool isVisible) {
        _isUncovered = isVisible;
        startOrStop();
    });
    _view->show();
    if (_showing.testError) {
        showErrorCode(*_showing.testError);
    }
}

void SaverWindow::replaceView() {
    if (_viewWillGo) {
        _viewWillGo();
    }
    closeView();
    makeView();
}

void SaverWindow::showReason(const std::string& reason) {
    auto* label = new QLabel(QString::fromStdString(reason), this);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignCenter);
    label->setMargin(8);
    label->setStyleSheet(QStringLiteral("background: red; color: white"));
    label->setGeometry(rect());
    label->show();
    delete std::exchange(_reason, label);
}

void SaverWindow::makeViewAnew() {
    if (mayReplaceView()) {
        _isUncovered = true;
        replaceView();
        _isRecovering = true;
        startOrStop();
    }
}

void SaverWindow::startAnew() {
    if (_view != nullptr && !_view->shownError() && _view->isAnimating()) {
        _view->stopAnimation();
        startOrStop();
    }
}

void SaverWindow::showErrorCode(const ErrorCode& error) {
    if (mayReplaceView()) {
        if (std::exchange(_isRecovering, false) && _view->shownError()) {
            replaceView();
        }
        if (_view == nullptr) {
            return;  // the reason stands in its place
        }
        _view->showErrorCode(error.code, error.subCode);
        _view->setUpdatesEnabled(true);  // it is to be seen, also when the window was hidden meanwhile
    }
}

void SaverWindow::pause() {
    _isPaused = true;
    startOrStop();
}

void SaverWindow::resume() {
    _isPaused = false;
    startOrStop();
}

/// X11's window managers may unmap a window without a word, and then it counts as not exposed. Elsewhere that says
/// nothing: a window that its picture covers need not be exposed to be seen.
bool SaverWindow::isMapped() const {
    return QGuiApplication::platformName() != QLatin1String("xcb") || window()->windowHandle()->isExposed();
}

/// A start takes a while, so what else has happened comes first: other sizes, other screens, or that the window has to
/// be hidden again.
void SaverWindow::startOrStop() {
    if (canBeSeen()) {
        _startSoon.start();
        return;
    }
    _startSoon.stop();
    if (_view != nullptr && _view->isAnimating()) {
        _view->stopAnimation();
        _view->setUpdatesEnabled(false);  // a preview starts again when it is redrawn, which the strip asks for
    }
}

/// An error is final, and so its view is left as it is.
void SaverWindow::startNow() {
    if (_view != nullptr && !_view->shownError() && !_view->isAnimating()) {
        _view->startAnimation();
        _view->setUpdatesEnabled(true);
        _isRecovering = _isRecovering && _view->shownError();
        if (_isRecovering) {
            _recoveryFailed();
        }
    }
}

bool SaverWindow::eventFilter(QObject* object, QEvent* event) {
    const bool isStateOfWidget = event->type() == QEvent::WindowStateChange && object->isWidgetType();
    if (event->type() == QEvent::Expose || isStateOfWidget) {
        startOrStop();
    }
    return QWidget::eventFilter(object, event);
}

void SaverWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    _isShown = true;
    window()->windowHandle()->installEventFilter(this);
    if (!isWindow()) {
        window()->installEventFilter(this);  // only it is told that it was minimised
    }
    if (_view == nullptr && _reason == nullptr) {
        makeView();
    }
    startOrStop();
}

void SaverWindow::hideEvent(QHideEvent* event) {
    _isShown = false;
    startOrStop();
    QWidget::hideEvent(event);
}

void SaverWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        startOrStop();
    }
}

void SaverWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    for (QWidget* child : {static_cast<QWidget*>(_view.get()), _reason}) {
        if (child != nullptr) {
            child->setGeometry(rect());
        }
    }
}

}  // namespace host
