#include "platform/MemoryPreferencesStore.hpp"

#include "platform/PreferenceText.hpp"

#include <utility>

namespace platform {

void MemoryPreferencesStore::registerDefaults(const std::map<std::string, PreferenceValue>& defaults) {
    const std::lock_guard lock(_mutex);
    for (const auto& [key, value] : defaults) {
        _registered[key] = preferenceText(value);
    }
}

float MemoryPreferencesStore::floatForKey(const std::string& key) const {
    return floatFromPreferenceText(stringForKey(key).value_or(""));
}

std::int64_t MemoryPreferencesStore::integerForKey(const std::string& key) const {
    return integerFromPreferenceText(stringForKey(key).value_or(""));
}

std::optional<std::string> MemoryPreferencesStore::stringForKey(const std::string& key) const {
    const std::lock_guard lock(_mutex);
    for (const Texts* texts : {&_stored, &_registered}) {
        if (const auto found = texts->find(key); found != texts->end()) {
            return found->second;
        }
    }
    return std::nullopt;
}

void MemoryPreferencesStore::setFloat(float value, const std::string& key) {
    setString(preferenceText(value), key);
}

void MemoryPreferencesStore::setInteger(std::int64_t value, const std::string& key) {
    setString(preferenceText(value), key);
}

void MemoryPreferencesStore::setString(const std::string& value, const std::string& key) {
    const std::lock_guard lock(_mutex);
    store(key, value);
}

void MemoryPreferencesStore::removeObjectForKey(const std::string& key) {
    const std::lock_guard lock(_mutex);
    store(key, std::nullopt);
}

std::vector<std::string> MemoryPreferencesStore::allKeys() const {
    const std::lock_guard lock(_mutex);
    Texts all = _stored;
    all.insert(_registered.begin(), _registered.end());
    std::vector<std::string> keys;
    keys.reserve(all.size());
    for (const auto& [key, text] : all) {
        keys.push_back(key);
    }
    return keys;
}

bool MemoryPreferencesStore::isStored(const std::string& key) const {
    const std::lock_guard lock(_mutex);
    return _stored.contains(key);
}

void MemoryPreferencesStore::store(const std::string& key, std::optional<std::string> text) {
    if (text) {
        _stored[key] = std::move(*text);
    } else {
        _stored.erase(key);
    }
}

}  // namespace platform
