#include "platform/FilePreferencesStore.hpp"

#include <utility>

namespace platform {

FilePreferencesStore::FilePreferencesStore(const std::filesystem::path& file) : _file(file) {
    _stored = _file.read().value_or(Texts{});
}

bool FilePreferencesStore::synchronize() {
    const std::lock_guard lock(_mutex);
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

}  // namespace platform
