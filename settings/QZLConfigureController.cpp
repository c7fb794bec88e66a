#include "settings/QZLConfigureController.hpp"

#include "foundation/QZLBundle.hpp"
#include "foundation/QZLEnvironment.hpp"
#include "platform/NotificationCenter.hpp"
#include "platform/StringFormat.hpp"
#include "platform/Workspace.hpp"
#include "platform/ui/Sheet.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "settings/QZLHotLink.hpp"
#include "settings/QZLMailto.hpp"
#include "settings/QZLNotifications.hpp"

#include <QtCore/QString>
#include <utility>

namespace {

constexpr const char* name = "CFBundleName";
constexpr const char* version = "CFBundleShortVersionString";
constexpr const char* emailAddress = "QZLEmailAddress";
constexpr const char* websiteAddress = "QZLWebsiteAddress";

/// A value of the bundle as it stands in a mailto address; empty when the bundle lacks it.
std::string sanitized(const char* key) {
    return QZLSanitizeMailto(QZLSaverBundleString(key).value_or(""));
}

template <typename... Arguments>
std::string localized(const char* formatKey, Arguments&&... arguments) {
    return platform::formatted(QZLLocalizedVistashadeString(formatKey), std::forward<Arguments>(arguments)...);
}

QWidget* makeView(const std::string& className, QWidget* parent) {
    if (className == "QZLTextTrigger") {
        return new QZLTextTrigger(parent);
    }
    return className == "QZLHotLink" ? new QZLHotLink(parent) : nullptr;
}

}  // namespace

QZLConfigureController::QZLConfigureController(std::string formName)
    : WindowController(QZLSaverBundle(), std::move(formName)) {
    setViewMaker(makeView);
    addOutlet("_appVersionCopyright", _appVersionCopyright);
    addOutlet("_mailto", _mailto);
    addOutlet("_website", _website);
    addOutlet("_errorReport", _errorReport);
    addAction("closeSheet:", [this] { closeSheet(); });
    addAction("resetToDefaults:", [this] { resetToDefaults(); });
    addAction("sendEmail:", [this] { sendEmail(); });
    addAction("openWebsite:", [this] { openWebsite(); });
    addAction("sendErrorReport:", [this] { sendErrorReport(); });
}

void QZLConfigureController::windowDidLoad() {
    WindowController::windowDidLoad();
    if (_appVersionCopyright != nullptr) {
        _appVersionCopyright->setText(QString::fromStdString(
            localized("QZL_UI_APP_VERSION_COPYRIGHT_FORMAT", QZLSaverBundleString(name), QZLSaverBundleString(version),
                      QZLSaverBundleString("NSHumanReadableCopyright"))));
    }
    if (_mailto != nullptr) {
        _mailto->setStringValue(QZLSaverBundleString(emailAddress).value_or(""));
        _mailto->adjustSize();
    }
    if (_website != nullptr) {
        _website->setStringValue(QZLRemoveHttpPrefix(QZLSaverBundleString(websiteAddress).value_or("")).value_or(""));
        _website->adjustSize();
    }
    loadValues();
}

void QZLConfigureController::closeSheet() {
    storeValues();
    platform::NotificationCenter::defaultCenter().post(QZLConfigurationStoredNotification);
    platform::endSheet(window());
}

void QZLConfigureController::resetToDefaults() {
    QZLDefaultsManager::sharedInstance().reset();
    loadValues();
}

void QZLConfigureController::loadValues() {
    setErrorReportVisibility();
}

void QZLConfigureController::storeValues() {
    QZLDefaultsManager::sharedInstance().synchronize();
}

void QZLConfigureController::sendEmail() {
    platform::openURL(localized("QZL_UI_MAILTO_FORMAT", sanitized(emailAddress), sanitized(name), sanitized(version)));
}

void QZLConfigureController::openWebsite() {
    platform::openURL(QZLSaverBundleString(websiteAddress));
}

void QZLConfigureController::sendErrorReport() {
    auto& defaults = QZLDefaultsManager::sharedInstance();
    const std::string body = localized(
        "QZL_UI_REPORT_ERROR_BODY_FORMAT", QZLSaverBundleString(name), QZLSaverBundleString(version),
        QZLMacOsVersionString(), defaults.savedErrorCode(), defaults.savedErrorSubCode(), defaults.savedErrorJournal());
    platform::openURL(
        localized("QZL_UI_REPORT_ERROR_FORMAT", sanitized(emailAddress), sanitized(name), QZLSanitizeMailto(body)));
    defaults.clearSavedErrorReport();
    setErrorReportVisibility();
}

void QZLConfigureController::setErrorReportVisibility() {
    if (_errorReport != nullptr) {
        _errorReport->setHidden(!QZLDefaultsManager::sharedInstance().haveSavedError());
    }
}
