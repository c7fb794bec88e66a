#pragma once

#include "platform/SaverModule.hpp"

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QTimer>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace host {

/// Tells a saver's module when another process has changed its stored settings: once for all changes of a moment, never
/// for what this process wrote itself. The settings file may be missing, and its folders too; it may be written in
/// place or replaced. What cannot be watched or read counts as unchanged. Main thread, with the application object
/// made.
class PreferencesWatcher {
public:
    /// How long changes are gathered before the module is told.
    static constexpr std::chrono::milliseconds gathering{200};

    /// `name` is what the module's settings are kept under.
    PreferencesWatcher(const platform::SaverModule& module, const std::string& name);
    PreferencesWatcher(const PreferencesWatcher&) = delete;
    PreferencesWatcher& operator=(const PreferencesWatcher&) = delete;

    /// Whether something has happened that was not looked at yet.
    bool isGathering() const { return _soon.isActive(); }

private:
    void lookSoon();
    void look();
    void watchAnew();

    const platform::SaverModule& _module;
    const std::string _name;
    const std::filesystem::path _file;
    std::uint64_t _told = 0;
    QFileSystemWatcher _watcher;
    QTimer _soon;
};

}  // namespace host
