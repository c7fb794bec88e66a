#include "platform/PreferencesStore.hpp"

#include "platform/FilePreferencesStore.hpp"
#include "platform/MemoryPreferencesStore.hpp"
#include "platform/Paths.hpp"

#include <mutex>
#include <utility>

namespace platform {
namespace {

struct Stores {
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<PreferencesStore>> byModule;
    std::shared_ptr<PreferencesStore> inPlaceOfAll;
};

Stores& stores() {
    static auto* const instance = new Stores;  // leaked on purpose: stores live to the end of the process
    return *instance;
}

}  // namespace

std::filesystem::path preferencesFileForModule(const std::string& moduleName) {
    return configDirectory() / (moduleName + ".conf");
}

std::shared_ptr<PreferencesStore> preferencesForModule(const std::string& moduleName) {
    const std::lock_guard lock(stores().mutex);
    if (stores().inPlaceOfAll) {
        return stores().inPlaceOfAll;
    }
    std::shared_ptr<PreferencesStore>& store = stores().byModule[moduleName];
    if (!store) {
        store = makeFilePreferencesStore(preferencesFileForModule(moduleName));
    }
    return store;
}

std::shared_ptr<PreferencesStore> makeFilePreferencesStore(const std::filesystem::path& file) {
    return std::make_shared<FilePreferencesStore>(file);
}

std::shared_ptr<PreferencesStore> makeMemoryPreferencesStore() {
    return std::make_shared<MemoryPreferencesStore>();
}

void setPreferencesStore(std::shared_ptr<PreferencesStore> store) {
    const std::lock_guard lock(stores().mutex);
    std::swap(stores().inPlaceOfAll, store);  // the former one goes after the lock
}

}  // namespace platform
