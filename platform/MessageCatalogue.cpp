#include "platform/MessageCatalogue.hpp"

#include "platform/CatalogueFile.hpp"
#include "platform/FileContents.hpp"

#include <libintl.h>

#include <system_error>

namespace platform {
namespace {

/// Between context and message in a catalogue.
constexpr char contextEnd = '\004';

bool allCataloguesAreSound(const std::filesystem::path& directory, const std::string& domain) {
    std::error_code listingError;
    std::filesystem::directory_iterator language(directory, listingError);
    if (listingError) {
        return true;  // there are none
    }
    for (const std::filesystem::directory_iterator end; language != end; language.increment(listingError)) {
        const auto file = language->path() / "LC_MESSAGES" / (domain + ".mo");
        std::error_code error;
        if (std::filesystem::exists(file, error) && !isSoundCatalogue(fileContents(file))) {
            return false;
        }
    }
    return !listingError;  // those that were not listed may be anything
}

}  // namespace

MessageCatalogue::MessageCatalogue(std::filesystem::path directory, std::string domain)
    : _directory(std::move(directory)),
      _domain(std::move(domain)),
      _isSound(allCataloguesAreSound(_directory, _domain)) {}

std::string MessageCatalogue::translated(const std::string& key, const std::string& english) const {
    if (!_isSound) {
        return english;
    }
    // Bound at every look-up: domains are process-wide, and another bundle of the same identifier may have taken it.
    bindtextdomain(_domain.c_str(), _directory.c_str());
    bind_textdomain_codeset(_domain.c_str(), "UTF-8");
    const std::string message = key + contextEnd + english;
    const char* const translation = dgettext(_domain.c_str(), message.c_str());
    // gettext gives its argument back when there is no translation.
    return translation == message.c_str() ? english : translation;
}

}  // namespace platform
