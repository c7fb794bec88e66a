// Info.json and an English strings table, which the same bytes are tried as.
#include "platform/Bundle.hpp"
#include "fuzz/Fuzz.hpp"
#include "fuzz/Utf8.hpp"

#include <nlohmann/json.hpp>

#include <memory>

namespace {

using Bundle = std::shared_ptr<const platform::Bundle>;
using Texts = std::map<std::string, std::string>;

/// Two bundles, so that no name from the bytes gets to gettext, which never forgets one.
struct Bundles {
    Bundle withInfo;
    Bundle withStrings;
};

Bundles bundlesOf(std::string_view bytes) {
    const auto withInfo = fuzz::scratch() / "Info.saver";
    const auto withStrings = fuzz::scratch() / "Strings.saver";
    std::filesystem::create_directories(withInfo);
    std::filesystem::create_directories(withStrings / "strings");
    fuzz::write(withInfo / "Info.json", bytes);
    fuzz::write(withStrings / "strings" / "Localizable.json", bytes);
    return {platform::Bundle::open(withInfo), platform::Bundle::open(withStrings)};
}

Texts textsIn(std::string_view bytes) {
    Texts texts;
    const auto object = nlohmann::json::parse(bytes, nullptr, false);
    for (const auto& [key, value] : object.items()) {
        if (object.is_object() && value.is_string()) {
            texts[key] = value.get<std::string>();
        }
    }
    return texts;
}

void check(const Bundles& bundles, const Texts& texts) {
    fuzz::require(bundles.withInfo && bundles.withStrings, "a bundle opens whatever it holds");
    for (const auto& [key, text] : texts) {
        fuzz::require(fuzz::isUtf8(key) && fuzz::isUtf8(text), "texts are UTF-8");
        fuzz::require(bundles.withInfo->objectForInfoDictionaryKey(key) == text, "every text of Info.json is found");
        fuzz::require(bundles.withStrings->localizedString(key, "none", "") == text, "every text of a table is found");
    }
    fuzz::require(bundles.withStrings->localizedString("no key \xff", "none", "") == "none", "other keys have no text");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzz::text(data, size);
    const Texts texts = textsIn(bytes);
    check(bundlesOf(bytes), texts);
    check(bundlesOf(nlohmann::json(texts).dump()), texts);
    return 0;
}
