#pragma once

#include "platform/MemoryPreferencesStore.hpp"
#include "platform/PreferencesFile.hpp"

#include <filesystem>

namespace platform {

/// A store in an INI file. Reads and writes work on memory; `synchronize` alone touches the file, and writes only the
/// keys that were changed here. What cannot be written stays in memory and is tried again by the next `synchronize`,
/// which the system log and the failure handler are told once; what others wrote is taken in all the same.
class FilePreferencesStore final : public MemoryPreferencesStore {
public:
    explicit FilePreferencesStore(std::filesystem::path file);

    bool synchronize() override;
    bool hasForeignChanges() const override;
    std::uint64_t foreignChangesTakenIn() const override;

private:
    bool exchangeWithFile();
    /// The file's texts as they are with the changes that are not in it yet.
    Texts withChanges(Texts texts) const;
    void store(const std::string& key, std::optional<std::string> text) override;

    const std::filesystem::path _path;
    const PreferencesFile _file;
    PreferencesFile::Changes _changes;         // not in the file yet; guarded by _mutex
    bool _isFailing = false;                   // the last change could not be written; guarded by _mutex
    std::uint64_t _foreignChangesTakenIn = 0;  // guarded by _mutex
};

}  // namespace platform
