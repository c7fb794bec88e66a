#include "settings/QZLDefaultsManager.hpp"

#include "foundation/QZLBundle.hpp"
#include "foundation/QZLEnvironment.hpp"

namespace {

constexpr const char* colorsKey = "Colors";
constexpr const char* brightnessKey = "Brightness";
constexpr const char* speedKey = "Speed";
constexpr const char* zoomKey = "Zoom";
constexpr const char* multiScreenKey = "MultiScreen";
constexpr const char* screenshotIntervalKey = "ScreenshotInterval";
constexpr const char* diagnosticsKey = "Diagnostics";

constexpr const char* savedErrorVersionKey = "SavedErrorVersion";
constexpr const char* savedErrorMacOsVersionKey = "SavedErrorMacOsVersion";
constexpr const char* savedErrorCodeKey = "SavedErrorCode";
constexpr const char* savedErrorSubCodeKey = "SavedErrorSubCode";
constexpr const char* savedErrorJournalKey = "SavedErrorJournal";

/// For a bundle without an identifier, or no bundle at all.
constexpr const char* fallbackModuleName = "Cirrane";

std::string moduleName() {
    const auto bundle = QZLSaverBundle();
    const std::string identifier = bundle != nullptr ? bundle->bundleIdentifier().value_or("") : "";
    return identifier.empty() ? fallbackModuleName : identifier;
}

std::optional<std::string> bundleVersion() {
    return QZLSaverBundleString("CFBundleShortVersionString");
}

/// Switches are stored as the numbers 1 and 0; outside edits may leave others, and all but 0 are on.
bool switchForKey(const platform::PreferencesStore& store, const char* key) {
    return store.floatForKey(key) != 0.0F;
}

void setSwitch(platform::PreferencesStore& store, bool isOn, const char* key) {
    store.setFloat(isOn ? 1.0F : 0.0F, key);
}

/// A null text leaves nothing stored.
void setText(platform::PreferencesStore& store, const std::optional<std::string>& text, const char* key) {
    if (text) {
        store.setString(*text, key);
    } else {
        store.removeObjectForKey(key);
    }
}

}  // namespace

QZLDefaultsManager& QZLDefaultsManager::sharedInstance() {
    static QZLDefaultsManager* const instance = [] {
        auto* const manager = new QZLDefaultsManager;
        manager->registerDefaults();
        return manager;
    }();
    return *instance;
}

QZLDefaultsManager::QZLDefaultsManager() : _moduleName(moduleName()) {}

void QZLDefaultsManager::registerDefaults() {
    screenSaverDefaults()->registerDefaults({
        {colorsKey, 0.4F},
        {brightnessKey, 0.5F},
        {speedKey, 0.7F},
        {zoomKey, 0.38F},
        {multiScreenKey, true},
        {screenshotIntervalKey, std::int64_t{0}},
        {diagnosticsKey, false},
    });
}

std::shared_ptr<platform::PreferencesStore> QZLDefaultsManager::screenSaverDefaults() const {
    return platform::preferencesForModule(_moduleName);
}

float QZLDefaultsManager::colors() const {
    return screenSaverDefaults()->floatForKey(colorsKey);
}

void QZLDefaultsManager::setColors(float colors) {
    screenSaverDefaults()->setFloat(colors, colorsKey);
}

float QZLDefaultsManager::brightness() const {
    return screenSaverDefaults()->floatForKey(brightnessKey);
}

void QZLDefaultsManager::setBrightness(float brightness) {
    screenSaverDefaults()->setFloat(brightness, brightnessKey);
}

float QZLDefaultsManager::speed() const {
    return screenSaverDefaults()->floatForKey(speedKey);
}

void QZLDefaultsManager::setSpeed(float speed) {
    screenSaverDefaults()->setFloat(speed, speedKey);
}

float QZLDefaultsManager::zoom() const {
    return screenSaverDefaults()->floatForKey(zoomKey);
}

void QZLDefaultsManager::setZoom(float zoom) {
    screenSaverDefaults()->setFloat(zoom, zoomKey);
}

bool QZLDefaultsManager::multiScreen() const {
    return switchForKey(*screenSaverDefaults(), multiScreenKey);
}

void QZLDefaultsManager::setMultiScreen(bool multiScreen) {
    setSwitch(*screenSaverDefaults(), multiScreen, multiScreenKey);
}

std::int64_t QZLDefaultsManager::screenshotInterval() const {
    return screenSaverDefaults()->integerForKey(screenshotIntervalKey);
}

void QZLDefaultsManager::setScreenshotInterval(std::int64_t screenshotInterval) {
    screenSaverDefaults()->setInteger(screenshotInterval, screenshotIntervalKey);
}

bool QZLDefaultsManager::diagnostics() const {
    return switchForKey(*screenSaverDefaults(), diagnosticsKey);
}

void QZLDefaultsManager::setDiagnostics(bool diagnostics) {
    setSwitch(*screenSaverDefaults(), diagnostics, diagnosticsKey);
}

void QZLDefaultsManager::reset() {
    const auto store = screenSaverDefaults();
    {
        const std::lock_guard lock(_mutex);
        for (const std::string& key : store->allKeys()) {
            store->removeObjectForKey(key);
        }
    }
    synchronize();
}

bool QZLDefaultsManager::synchronize() {
    return screenSaverDefaults()->synchronize();
}

bool QZLDefaultsManager::haveSavedError() const {
    const auto store = screenSaverDefaults();
    const auto savedVersion = store->stringForKey(savedErrorVersionKey);
    const auto savedMacOsVersion = store->stringForKey(savedErrorMacOsVersionKey);
    return savedVersion && savedVersion == bundleVersion() && savedMacOsVersion == QZLMacOsVersionString();
}

std::int64_t QZLDefaultsManager::savedErrorCode() const {
    return screenSaverDefaults()->integerForKey(savedErrorCodeKey);
}

std::int64_t QZLDefaultsManager::savedErrorSubCode() const {
    return screenSaverDefaults()->integerForKey(savedErrorSubCodeKey);
}

std::optional<std::string> QZLDefaultsManager::savedErrorJournal() const {
    return screenSaverDefaults()->stringForKey(savedErrorJournalKey);
}

void QZLDefaultsManager::saveError(std::int64_t code, std::int64_t subCode, const std::string& journal) {
    const auto store = screenSaverDefaults();
    {
        const std::lock_guard lock(_mutex);
        setText(*store, bundleVersion(), savedErrorVersionKey);
        store->setString(QZLMacOsVersionString(), savedErrorMacOsVersionKey);
        store->setInteger(code, savedErrorCodeKey);
        store->setInteger(subCode, savedErrorSubCodeKey);
        store->setString(journal, savedErrorJournalKey);
    }
    synchronize();
}

void QZLDefaultsManager::clearSavedErrorReport() {
    const auto store = screenSaverDefaults();
    {
        const std::lock_guard lock(_mutex);
        for (const char* const key : {savedErrorVersionKey, savedErrorMacOsVersionKey, savedErrorCodeKey,
                                      savedErrorSubCodeKey, savedErrorJournalKey}) {
            store->removeObjectForKey(key);
        }
    }
    synchronize();
}
