#pragma once

#include "platform/MemoryPreferencesStore.hpp"
#include "platform/PreferencesFile.hpp"

#include <filesystem>

namespace platform {

/// A store in an INI file. Reads and writes work on memory; `synchronize` alone touches the file, and writes only the
/// keys that were changed here. What cannot be written stays in memory and is tried again by the next `synchronize`.
class FilePreferencesStore final : public MemoryPreferencesStore {
public:
    explicit FilePreferencesStore(const std::filesystem::path& file);

    bool synchronize() override;

private:
    void store(const std::string& key, std::optional<std::string> text) override;

    const PreferencesFile _file;
    PreferencesFile::Changes _changes;  // not in the file yet; guarded by _mutex
};

}  // namespace platform
