#include "saver/QZLCirraneView.hpp"

#include "saver/QZLCirraneController.hpp"
#include "settings/QZLDefaultsManager.hpp"

QZLCirraneView::QZLCirraneView(const platform::Rect& frame, bool isPreview)
    : QZLScreenSaverView(QZLMakeRenderer<QZLCirraneRenderer>(), frame, isPreview) {
    setErrorFontName("Georgia");
    setMultiScreen(QZLDefaultsManager::sharedInstance().multiScreen());
    setShowDiagnostics(QZLDefaultsManager::sharedInstance().diagnostics());
}

std::unique_ptr<platform::WindowController> QZLCirraneView::createConfigureController() {
    return std::make_unique<QZLCirraneController>();
}

/// Whether more than one screen draws is settled when a view is made.
void QZLCirraneView::configurationChanged() {
    setShowDiagnostics(QZLDefaultsManager::sharedInstance().diagnostics());
}

bool QZLCirraneView::errorIsReportable(std::int64_t code) const {
    return code != QZLCirraneMemoryErrorCode && QZLScreenSaverView::errorIsReportable(code);
}

void QZLCirraneView::showErrorCode(std::int64_t code, std::int64_t subCode) {
    if (code == QZLCirraneMemoryErrorCode) {
        showError(QZLCirraneMemoryError(subCode));
    } else {
        QZLScreenSaverView::showErrorCode(code, subCode);
    }
}

std::map<std::string, std::uint64_t> QZLCirraneView::facts() const {
    const auto* clouds = static_cast<const QZLCirraneRenderer*>(renderer());
    if (clouds == nullptr) {
        return {};
    }
    return {{"seed", clouds->seed()},
            {"intermediateWidth", clouds->intermediateWidth()},
            {"intermediateHeight", clouds->intermediateHeight()}};
}
