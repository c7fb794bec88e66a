#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace platform {

using PreferenceValue = std::variant<bool, std::int64_t, float, std::string>;

/// A per-module key-value store with typed reads and a registration domain: defaults that are read but never written.
/// Thread-safe. Reads never fail: an absent key reads as its registered default, else as 0 or null. A stored text is
/// read by its numeric prefix, integers truncated and saturated, true and false as 1 and 0, anything else, nan and inf
/// included, as 0. Floats round-trip exactly.
class PreferencesStore {
public:
    PreferencesStore(const PreferencesStore&) = delete;
    PreferencesStore& operator=(const PreferencesStore&) = delete;
    virtual ~PreferencesStore() = default;

    virtual void registerDefaults(const std::map<std::string, PreferenceValue>& defaults) = 0;
    virtual float floatForKey(const std::string& key) const = 0;
    virtual std::int64_t integerForKey(const std::string& key) const = 0;
    virtual std::optional<std::string> stringForKey(const std::string& key) const = 0;
    virtual void setFloat(float value, const std::string& key) = 0;
    virtual void setInteger(std::int64_t value, const std::string& key) = 0;
    virtual void setString(const std::string& value, const std::string& key) = 0;
    virtual void removeObjectForKey(const std::string& key) = 0;
    /// Every key that can be read, the registered ones included.
    virtual std::vector<std::string> allKeys() const = 0;
    /// True when the key is stored, not merely registered.
    virtual bool isStored(const std::string& key) const = 0;
    /// Writes changes to disk and takes in those of other processes. False when that failed; nothing is lost in memory.
    virtual bool synchronize() = 0;

    /// Whether another process has changed what is stored, and `synchronize` has not taken that in yet.
    virtual bool hasForeignChanges() const { return false; }
    /// How many times `synchronize` took in something that another process had changed.
    virtual std::uint64_t foreignChangesTakenIn() const { return 0; }

protected:
    PreferencesStore() = default;
};

/// Where the settings of that module are kept: `$XDG_CONFIG_HOME/<module>.conf`.
std::filesystem::path preferencesFileForModule(const std::string& moduleName);

/// The process's store of that module, in that file, or what `setPreferencesStore` put in its place.
std::shared_ptr<PreferencesStore> preferencesForModule(const std::string& moduleName);

/// A store in a file of its own. A damaged file is copied aside (".damaged") before the first write.
std::shared_ptr<PreferencesStore> makeFilePreferencesStore(const std::filesystem::path& file);

/// A store that is forgotten with the process.
std::shared_ptr<PreferencesStore> makeMemoryPreferencesStore();

/// Hears that changes of the settings could not be written into a file, on the thread that synchronised them. Not again
/// for that file until some could.
using PreferencesFailureHandler = std::function<void(const std::filesystem::path& file)>;

/// Replaces the handler of all stores in files; an empty one ends that. Any thread; a call of the former one may still
/// be under way on another.
void setPreferencesFailureHandler(PreferencesFailureHandler handler);

/// Serves this store to every module from now on; null ends that. For headless runs and tests.
void setPreferencesStore(std::shared_ptr<PreferencesStore> store);

}  // namespace platform
