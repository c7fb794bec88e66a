#include "saver/QZLCirraneSession.hpp"

#include "foundation/QZLBundle.hpp"
#include "foundation/QZLError.hpp"
#include "platform/NotificationCenter.hpp"

#include <exception>

namespace {

std::shared_ptr<QZLJournal> makeJournal(bool isPreview, std::int64_t screenIndex) {
    auto journal = std::make_shared<QZLJournal>();
    journal->setPrefix(isPreview ? "[Preview] " : platform::formatted("[Screen %d] ", screenIndex));
    journal->setLogPrefix(platform::formatted("%@: ", QZLSaverBundleString("CFBundleName")));
    return journal;
}

}  // namespace

QZLCirraneSession::QZLCirraneSession(std::shared_ptr<platform::HostView> view, bool isPreview, std::int64_t screenIndex)
    : _view(std::move(view)),
      _isPreview(isPreview),
      _screenIndex(screenIndex),
      _journal(makeJournal(isPreview, screenIndex)),
      _statistics(std::make_shared<QZLStatistics>()),
      _renderer(QZLMakeRenderer<QZLCirraneRenderer>()),
      _lifetime(std::make_shared<char>()) {
    _renderer->setJournal(_journal);
    platform::NotificationCenter::defaultCenter().addObserver(
        QZLCirraneSettingsChangedNotification, _lifetime,
        [this](std::string_view) { _renderer->configurationChanged(); });
}

QZLCirraneSession::~QZLCirraneSession() {
    if (_renderer->isAttached()) {
        stopAnimation();
        detach();
    }
}

std::optional<platform::Error> QZLCirraneSession::startAnimation() {
    try {
        return attachAndStart();
    } catch (const std::exception&) {
        // Failures are values everywhere below; what throws all the same is the lack of memory. A renderer that is
        // attached by half must not start.
        detach();
        return QZLCreateError(QZLLocalizedSaverString("QZL_ERROR_MEMORY"), QZLCirraneMemoryErrorCode, 0);
    }
}

std::optional<platform::Error> QZLCirraneSession::attachAndStart() {
    _statistics->reset();
    if (!_renderer->isAttached()) {
        if (auto error = _renderer->attachToView(_view, _isPreview, _screenIndex, _statistics)) {
            _renderer->detachFromView();
            return error;
        }
    }
    _renderer->startAnimation();
    _isRunning = true;
    return std::nullopt;
}

void QZLCirraneSession::stopAnimation() {
    if (!_isRunning) {
        return;
    }
    _isRunning = false;
    _renderer->stopAnimation();
    _statistics->reset();
}

void QZLCirraneSession::detach() {
    _isRunning = false;
    _renderer->detachFromView();
}
