#include "host/PreferencesWatcher.hpp"

#include "platform/PreferencesStore.hpp"

#include <QtCore/QStringList>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

QString qString(const fs::path& path) {
    return QString::fromStdString(path.string());
}

/// The folder, or the nearest above it that exists.
fs::path existingFolder(fs::path folder) {
    std::error_code error;
    while (!fs::is_directory(folder, error) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

/// Everything whose change may be one of the file.
QStringList watchedPaths(const fs::path& file) {
    QStringList paths{qString(existingFolder(file.parent_path()))};
    std::error_code error;
    if (fs::exists(file, error)) {
        paths << qString(file);
    }
    const fs::path target = fs::canonical(file, error);
    if (!error && target.parent_path() != file.parent_path()) {
        paths << qString(target.parent_path());  // the file is a link
    }
    return paths;
}

}  // namespace

PreferencesWatcher::PreferencesWatcher(const platform::SaverModule& module, const std::string& name)
    : _module(module),
      _name(name),
      _file(platform::preferencesFileForModule(name)),
      _told(platform::preferencesForModule(name)->foreignChangesTakenIn()) {
    _soon.setSingleShot(true);
    _soon.setInterval(gathering);
    QObject::connect(&_soon, &QTimer::timeout, &_soon, [this] { look(); });
    QObject::connect(&_watcher, &QFileSystemWatcher::fileChanged, &_soon, [this] { lookSoon(); });
    QObject::connect(&_watcher, &QFileSystemWatcher::directoryChanged, &_soon, [this] { lookSoon(); });
    watchAnew();
    lookSoon();  // it may have changed since the store was read
}

void PreferencesWatcher::lookSoon() {
    if (!_soon.isActive()) {
        _soon.start();
    }
}

/// A file in the place of a watched one would not be watched.
void PreferencesWatcher::watchAnew() {
    if (const QStringList former = _watcher.files() + _watcher.directories(); !former.isEmpty()) {
        _watcher.removePaths(former);
    }
    _watcher.addPaths(watchedPaths(_file));
}

/// Watches before it looks, so that no change falls between the two.
void PreferencesWatcher::look() {
    watchAnew();
    const auto store = platform::preferencesForModule(_name);
    if (store->hasForeignChanges()) {
        store->synchronize();
    }
    if (store->foreignChangesTakenIn() != _told && _module.settingsChanged != nullptr) {
        _module.settingsChanged();
    }
    _told = store->foreignChangesTakenIn();
}

}  // namespace host
