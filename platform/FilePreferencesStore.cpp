#include "platform/FilePreferencesStore.hpp"

#include <utility>

namespace platform {

FilePreferencesStore::FilePreferencesStore(const std::filesystem::path& file) : _file(file) {
    _stored = _file.read().value_or(Texts{});
}

bool FilePreferencesStore::synchronize() {
    const std::lock_guard lock(_mutex);
    if (!_changes.empty() && !_file.write(_changes)) {
        return false;
    }
    _changes.clear();
    auto texts = _file.read();
    if (!texts) {
        return false;
    }
    _stored = std::move(*texts);
    return true;
}

void FilePreferencesStore::store(const std::string& key, std::optional<std::string> text) {
    _changes[key] = text;
    MemoryPreferencesStore::store(key, std::move(text));
}

}  // namespace platform
