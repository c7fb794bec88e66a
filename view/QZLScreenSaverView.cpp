#include "view/QZLScreenSaverView.hpp"

#include "foundation/QZLBundle.hpp"
#include "foundation/QZLError.hpp"
#include "platform/NotificationCenter.hpp"
#include "platform/StringFormat.hpp"
#include "platform/gpu/Layer.hpp"
#include "renderhost/QZLConversion.hpp"
#include "renderhost/QZLRenderHostError.hpp"
#include "settings/QZLNotifications.hpp"

#include <QtGui/QResizeEvent>
#include <exception>
#include <utility>

QZLScreenSaverView::QZLScreenSaverView(std::shared_ptr<QZLMetalRenderer> renderer, const platform::Rect& frame,
                                       bool isPreview)
    : ScreenSaverView(frame, isPreview),
      _renderer(std::move(renderer)),
      _statistics(std::make_shared<QZLStatistics>()),
      _journal(std::make_shared<QZLJournal>()) {
    _journal->setPrefix(isPreview ? "[Preview] " : "[Screen] ");
    _journal->setLogPrefix(platform::formatted("%@: ", QZLSaverBundleString("CFBundleName")));
    if (_renderer != nullptr && _renderer->journal() == nullptr) {
        _renderer->setJournal(_journal);
    }
    setAnimationTimeInterval(-1.0);  // every frame comes from the renderer's display link
    platform::NotificationCenter::defaultCenter().addObserver(
        QZLConfigurationStoredNotification, _lifetime, [this](std::string_view) { handleConfigurationChanged(); });
}

QZLScreenSaverView::~QZLScreenSaverView() {
    _lifetime.reset();
    if (_renderer != nullptr) {
        if (isAnimating()) {
            QZLScreenSaverView::stopAnimation();
        }
        _renderer->detachFromView();
    }
}

std::uint64_t QZLScreenSaverView::screenIndex() const {
    if (isPreview()) {
        return 0;
    }
    const auto number = hostView()->screenNumber();
    return number ? *number : notFound;
}

void QZLScreenSaverView::startAnimation() {
    if (!isPreview()) {
        _journal->setPrefix(platform::formatted("[Screen %d] ", static_cast<std::int32_t>(screenIndex())));
    }
    _statistics->reset();
    const bool draws = isPreview() || screenIndex() == 0 || multiScreen();

    if (!draws && _renderer != nullptr && _renderer->isAttached()) {
        _renderer->detachFromView();  // it drew when its screen was the first one: its last picture goes too
        hostView()->setLayer(nullptr);
    }
    std::optional<platform::Error> error;
    if (draws && _renderer != nullptr && !_renderer->isAttached()) {
        error = attachRenderer();
    }
    if (!draws || error) {
        setShowDiagnostics(false);
    } else if (_renderer != nullptr) {
        _renderer->startAnimation();
    }
    ScreenSaverView::startAnimation();
    if (error) {
        showError(*error);  // after the base's start: it stops the view again
    }
}

/// Failures are values everywhere below; what throws all the same is the lack of memory.
std::optional<platform::Error> QZLScreenSaverView::attachRenderer() {
    try {
        return _renderer->attachToView(hostView(), isPreview(), static_cast<std::int64_t>(screenIndex()), _statistics);
    } catch (const std::exception&) {
        return QZLCreateVistashadeError(QZLErrorBuffer, 0);
    }
}

void QZLScreenSaverView::stopAnimation() {
    setShowsFrames(false);  // no frame that waits to be shown shall hold up the renderer's stop
    if (_renderer != nullptr) {
        _renderer->stopAnimation();
    }
    ScreenSaverView::stopAnimation();
    _statistics->reset();
}

void QZLScreenSaverView::drawRect(const platform::Rect& dirtyRect) {
    ScreenSaverView::drawRect(dirtyRect);
    if (isPreview() && !isAnimating()) {
        startAnimation();
    }
}

std::unique_ptr<platform::WindowController> QZLScreenSaverView::createConfigureController() {
    return nullptr;
}

void QZLScreenSaverView::configurationChanged() {}

/// Once, even when it yields none. The token is set first, because making the sheet may ask for it again.
void QZLScreenSaverView::makeConfigureController() {
    if (!std::exchange(_configureOnceToken, true)) {
        _configureController = createConfigureController();
    }
}

bool QZLScreenSaverView::hasConfigureSheet() {
    makeConfigureController();
    return _configureController != nullptr;
}

QWidget* QZLScreenSaverView::configureSheet() {
    makeConfigureController();
    return _configureController != nullptr ? _configureController->window() : nullptr;
}

void QZLScreenSaverView::handleConfigurationChanged() {
    configurationChanged();
    if (_renderer != nullptr) {
        _renderer->configurationChanged();
    }
}

platform::Rect QZLScreenSaverView::viewBounds() const {
    return {0.0, 0.0, static_cast<double>(width()), static_cast<double>(height())};
}

/// Attached anew, the renderer draws at the size that the view has now; a stopped one does so at its next start.
void QZLScreenSaverView::sizeSettled() {
    if (_renderer == nullptr || !_renderer->isAttached()) {
        return;
    }
    const platform::Rect backing = hostView()->convertRectToBacking(hostView()->bounds());
    const gpu::Extent wanted{QZLWholePixels(backing.width), QZLWholePixels(backing.height)};
    if (_renderer->layer()->drawableSize() == wanted) {
        return;
    }
    const bool wasAnimating = isAnimating();
    if (wasAnimating) {
        stopAnimation();
    }
    _renderer->detachFromView();
    if (wasAnimating) {
        startAnimation();
    }
    if (_renderer != nullptr && !_renderer->isAttached()) {
        hostView()->setLayer(nullptr);  // on a screen that does not draw, or not yet: no old picture either
    }
}

void QZLScreenSaverView::resizeEvent(QResizeEvent* event) {
    if (_diagnosticText != nullptr) {
        _diagnosticText->followParent();  // before the base draws what lies above the frames
    }
    ScreenSaverView::resizeEvent(event);
    if (_shownError) {
        layOutError();
    }
}
