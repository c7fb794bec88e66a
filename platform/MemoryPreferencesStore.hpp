#pragma once

#include "platform/PreferencesStore.hpp"

#include <mutex>

namespace platform {

/// A store of texts in memory, and what every other store is while it runs. Thread-safe.
class MemoryPreferencesStore : public PreferencesStore {
public:
    void registerDefaults(const std::map<std::string, PreferenceValue>& defaults) override;
    float floatForKey(const std::string& key) const override;
    std::int64_t integerForKey(const std::string& key) const override;
    std::optional<std::string> stringForKey(const std::string& key) const override;
    void setFloat(float value, const std::string& key) override;
    void setInteger(std::int64_t value, const std::string& key) override;
    void setString(const std::string& value, const std::string& key) override;
    void removeObjectForKey(const std::string& key) override;
    std::vector<std::string> allKeys() const override;
    bool isStored(const std::string& key) const override;
    bool synchronize() override { return true; }

protected:
    using Texts = std::map<std::string, std::string>;

    /// Sets the key's text, or removes the key. Called with the lock held.
    virtual void store(const std::string& key, std::optional<std::string> text);

    mutable std::mutex _mutex;
    Texts _stored;  // guarded by _mutex

private:
    Texts _registered;  // guarded by _mutex
};

}  // namespace platform
