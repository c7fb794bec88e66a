// The error screen, which takes the animation's place for good, and the report that is saved with it.
#include "foundation/QZLBundle.hpp"
#include "foundation/QZLError.hpp"
#include "platform/StringFormat.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "view/QZLScreenSaverView.hpp"

#include <cstdint>
#include <utility>

namespace {

constexpr double heightPerFontSize = 10.0;
constexpr double smallestFontSize = 9.0;  // points; no text is set this small or smaller
constexpr double titleScale = 1.5;
constexpr unsigned textOptions = platform::stringDrawingUsesLineFragmentOrigin | platform::stringDrawingUsesFontLeading;

platform::Rect inset(const platform::Rect& rect, double margin) {
    return {rect.x + margin, rect.y + margin, rect.width - 2.0 * margin, rect.height - 2.0 * margin};
}

/// "Cirrane 1.0", with the line break that its format ends with.
std::string errorTitle() {
    return platform::formatted(QZLLocalizedVistashadeString("QZL_ERROR_FORMAT_TITLE"),
                               QZLSaverBundleString("CFBundleName"),
                               QZLSaverBundleString("CFBundleShortVersionString"));
}

std::string errorMessage(const platform::Error& error) {
    const std::int64_t subCode = QZLGetErrorSubCode(error);
    return platform::formatted(
        QZLLocalizedVistashadeString(subCode != 0 ? "QZL_ERROR_FORMAT_EXTENDED" : "QZL_ERROR_FORMAT_SIMPLE"),
        error.localizedDescription(), error.code(), subCode);
}

}  // namespace

/// Machines without graphics, a full memory and a damaged installation are nothing that a report would help with.
bool QZLScreenSaverView::errorIsReportable(std::int64_t code) const {
    const bool isMissingFunction = code >= 101 && code <= 104;
    const bool isMissingResource = code >= 107 && code <= 110;
    const bool isEnvironment = code >= 300 && code <= 304;
    return code != 0 && !isMissingFunction && !isMissingResource && !isEnvironment;
}

void QZLScreenSaverView::showError(const platform::Error& error) {
    stopAnimation();
    if (_renderer != nullptr) {
        _renderer->detachFromView();
        _renderer = nullptr;
    }
    hostView()->setLayer(nullptr);
    setShowDiagnostics(false);

    const std::int64_t subCode = QZLGetErrorSubCode(error);
    _journal->addWithFormat("Aborting with error: (%ld:%ld) %@", error.code(), subCode, error.localizedDescription());
    if (errorIsReportable(error.code())) {
        QZLDefaultsManager::sharedInstance().saveError(error.code(), subCode, _journal->accumulatedMessages());
    }
    _shownError = error;
    layOutError();
}

void QZLScreenSaverView::showErrorCode(std::int64_t code, std::int64_t subCode) {
    showError(QZLCreateVistashadeError(code, subCode));
}

/// The largest text that fits, from a tenth of the view's height downwards; none when even the smallest does not.
void QZLScreenSaverView::layOutError() {
    delete std::exchange(_errorView, nullptr);
    const std::string title = errorTitle();
    const std::string message = errorMessage(*_shownError);
    const platform::Rect bounds = viewBounds();
    platform::Font bodyFont = platform::fontNamed(_errorFontName, 0.0).value_or(platform::systemFont(0.0));
    platform::Font titleFont = platform::boldFont(bodyFont);
    double size = bounds.height / heightPerFontSize;
    while (size > smallestFontSize) {
        const platform::Rect bound = inset(bounds, size / 2.0);
        bodyFont.size = size;
        titleFont.size = titleScale * size;
        platform::AttributedString text;
        text.append(title, {titleFont, _errorForeground, _errorBackground});
        text.append(message, {bodyFont, _errorForeground, _errorBackground});
        if (bound.height >= text.boundingSize(bound.width, textOptions).height()) {
            _errorView = new QZLAttributedLabel(this, bounds);
            _errorView->setBackgroundColor(_errorBackground);
            _errorView->setText(std::move(text), bound, textOptions);
            _errorView->lower();  // the strip stays above it
            _errorView->show();
            return;
        }
        size -= 1.0;
    }
}
