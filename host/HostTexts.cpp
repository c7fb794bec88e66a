#include "host/HostTexts.hpp"

#include <nlohmann/json.hpp>

#include <utility>

namespace host {

HostTexts::HostTexts(std::shared_ptr<const platform::Bundle> bundle)
    : _bundle(std::move(bundle)),
      _english(nlohmann::json::parse(englishHostTable()).get<std::map<std::string, std::string>>()) {}

std::string HostTexts::text(const std::string& key) const {
    const auto found = _english.find(key);
    const std::string& english = found != _english.end() ? found->second : key;
    return _bundle != nullptr ? _bundle->localizedString(key, english, "Host") : english;
}

}  // namespace host
