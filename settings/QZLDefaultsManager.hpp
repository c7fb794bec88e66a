#pragma once

#include "platform/PreferencesStore.hpp"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

/// The saver's settings and its saved error report, over the module's preferences store. One per process; any thread.
/// The store is named once, on first use: a bundle that is renamed or removed later changes nothing.
/// Values are stored and returned as they are, unchecked. A setter does not write to disk: call `synchronize` when
/// done.
class QZLDefaultsManager {
public:
    /// Made on first use with the defaults registered, and never destroyed.
    static QZLDefaultsManager& sharedInstance();

    QZLDefaultsManager(const QZLDefaultsManager&) = delete;
    QZLDefaultsManager& operator=(const QZLDefaultsManager&) = delete;

    void registerDefaults();
    std::shared_ptr<platform::PreferencesStore> screenSaverDefaults() const;

    float colors() const;
    void setColors(float colors);
    float brightness() const;
    void setBrightness(float brightness);
    float speed() const;
    void setSpeed(float speed);
    float zoom() const;
    void setZoom(float zoom);
    bool multiScreen() const;
    void setMultiScreen(bool multiScreen);
    /// The index of the chosen pop-up entry, not a time.
    std::int64_t screenshotInterval() const;
    void setScreenshotInterval(std::int64_t screenshotInterval);
    bool diagnostics() const;
    void setDiagnostics(bool diagnostics);

    /// Removes everything stored, a saved error report included.
    void reset();
    /// Exchanges changes with the disk; false when that failed.
    bool synchronize();

    /// True when a report was saved by this version of the saver on this version of the platform.
    bool haveSavedError() const;
    std::int64_t savedErrorCode() const;
    std::int64_t savedErrorSubCode() const;
    std::optional<std::string> savedErrorJournal() const;
    void saveError(std::int64_t code, std::int64_t subCode, const std::string& journal);
    void clearSavedErrorReport();

private:
    QZLDefaultsManager();

    const std::string _moduleName;
    mutable std::mutex _mutex;  // held while several keys change as a unit
};
