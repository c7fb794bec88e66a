#include "platform/FilePreferencesStore.hpp"

#include "platform/SystemLog.hpp"

#include <mutex>
#include <utility>

namespace platform {
namespace {

struct FailureHandler {
    std::mutex mutex;
    PreferencesFailureHandler handler;
};

FailureHandler& failureHandler() {
    static auto* const instance = new FailureHandler;  // leaked on purpose: stores live to the end of the process
    return *instance;
}

void tellOfFailure(const std::filesystem::path& file) {
    systemLog("settings: " + file.string() + " could not be written");
    PreferencesFailureHandler handler;
    {
        const std::lock_guard lock(failureHandler().mutex);
        handler = failureHandler().handler;
    }
    if (handler) {
        handler(file);
    }
}

}  // namespace

FilePreferencesStore::FilePreferencesStore(std::filesystem::path file) : _path(std::move(file)), _file(_path) {
    _stored = _file.read().value_or(Texts{});
}

bool FilePreferencesStore::synchronize() {
    bool isDone = false;
    bool isNewFailure = false;
    {
        const std::lock_guard lock(_mutex);
        isDone = exchangeWithFile();
        const bool wasFailing = std::exchange(_isFailing, !_changes.empty());
        isNewFailure = _isFailing && !wasFailing;
    }
    if (isNewFailure) {
        tellOfFailure(_path);  // without the lock: who hears it may look at the settings
    }
    return isDone;
}

bool FilePreferencesStore::exchangeWithFile() {
    auto texts = _changes.empty() ? std::nullopt : _file.write(_changes);
    const bool isWritten = _changes.empty() || texts;
    if (!texts) {
        texts = _file.read();
    }
    if (!texts) {
        return false;
    }
    if (withChanges(*texts) != _stored) {
        ++_foreignChangesTakenIn;
    }
    if (isWritten) {
        _changes.clear();
    }
    _stored = withChanges(std::move(*texts));
    return isWritten;
}

bool FilePreferencesStore::hasForeignChanges() const {
    const std::lock_guard lock(_mutex);
    auto texts = _file.read();
    return texts && withChanges(std::move(*texts)) != _stored;
}

std::uint64_t FilePreferencesStore::foreignChangesTakenIn() const {
    const std::lock_guard lock(_mutex);
    return _foreignChangesTakenIn;
}

FilePreferencesStore::Texts FilePreferencesStore::withChanges(Texts texts) const {
    for (const auto& [key, changed] : _changes) {
        if (changed) {
            texts[key] = *changed;
        } else {
            texts.erase(key);
        }
    }
    return texts;
}

void FilePreferencesStore::store(const std::string& key, std::optional<std::string> text) {
    _changes[key] = text;
    MemoryPreferencesStore::store(key, std::move(text));
}

void setPreferencesFailureHandler(PreferencesFailureHandler handler) {
    const std::lock_guard lock(failureHandler().mutex);
    failureHandler().handler = std::move(handler);
}

}  // namespace platform
