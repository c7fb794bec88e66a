#include "foundation/QZLBundle.hpp"

namespace {

/// Code of the module's own library: with internal linkage, so that no other library's copy can stand in for it.
void insideThisModule() {}

std::string localizedString(const std::string& key, const std::string& table) {
    const auto bundle = QZLSaverBundle();
    return bundle != nullptr ? bundle->localizedString(key, key, table) : key;
}

}  // namespace

std::shared_ptr<const platform::Bundle> QZLSaverBundle() {
    return platform::Bundle::containing(reinterpret_cast<const void*>(&insideThisModule));
}

std::string QZLLocalizedSaverString(const std::string& key) {
    return localizedString(key, "");
}

std::string QZLLocalizedVistashadeString(const std::string& key) {
    return localizedString(key, "Vistashade");
}

std::optional<std::string> QZLSaverBundleString(const std::string& key) {
    const auto bundle = QZLSaverBundle();
    return bundle != nullptr ? bundle->objectForInfoDictionaryKey(key) : std::nullopt;
}
