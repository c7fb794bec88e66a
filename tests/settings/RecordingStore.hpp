#pragma once

#include "platform/PreferencesStore.hpp"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

/// A store in memory that records every change as a line of text, such as
/// "setFloat Speed 0.7", "remove Speed", "register 7", "synchronize".
class RecordingStore final : public platform::PreferencesStore {
public:
    static std::shared_ptr<RecordingStore> install() {
        auto store = std::make_shared<RecordingStore>();
        platform::setPreferencesStore(store);
        return store;
    }

    std::vector<std::string> calls() const {
        const std::lock_guard lock(_mutex);
        return _calls;
    }
    void clearCalls() {
        const std::lock_guard lock(_mutex);
        _calls.clear();
    }
    /// Runs within every synchronisation.
    void onSynchronize(std::function<void()> action) { _onSynchronize = std::move(action); }
    void setSynchronizeSucceeds(bool succeeds) { _synchronizeSucceeds = succeeds; }

    void registerDefaults(const std::map<std::string, platform::PreferenceValue>& defaults) override {
        record("register " + std::to_string(defaults.size()));
        _memory->registerDefaults(defaults);
    }
    float floatForKey(const std::string& key) const override { return _memory->floatForKey(key); }
    std::int64_t integerForKey(const std::string& key) const override { return _memory->integerForKey(key); }
    std::optional<std::string> stringForKey(const std::string& key) const override {
        return _memory->stringForKey(key);
    }
    void setFloat(float value, const std::string& key) override {
        recordValue("setFloat", key, value);
        _memory->setFloat(value, key);
    }
    void setInteger(std::int64_t value, const std::string& key) override {
        recordValue("setInteger", key, value);
        _memory->setInteger(value, key);
    }
    void setString(const std::string& value, const std::string& key) override {
        recordValue("setString", key, value);
        _memory->setString(value, key);
    }
    void removeObjectForKey(const std::string& key) override {
        record("remove " + key);
        _memory->removeObjectForKey(key);
    }
    std::vector<std::string> allKeys() const override { return _memory->allKeys(); }
    bool isStored(const std::string& key) const override { return _memory->isStored(key); }
    bool synchronize() override {
        record("synchronize");
        if (_onSynchronize) {
            _onSynchronize();
        }
        return _synchronizeSucceeds && _memory->synchronize();
    }

private:
    void record(const std::string& call) {
        const std::lock_guard lock(_mutex);
        _calls.push_back(call);
    }
    template <typename Value>
    void recordValue(const char* setter, const std::string& key, const Value& value) {
        std::ostringstream call;
        call << setter << ' ' << key << ' ' << value;
        record(call.str());
    }

    std::shared_ptr<platform::PreferencesStore> _memory = platform::makeMemoryPreferencesStore();
    mutable std::mutex _mutex;
    std::vector<std::string> _calls;
    std::function<void()> _onSynchronize;
    bool _synchronizeSucceeds = true;
};
