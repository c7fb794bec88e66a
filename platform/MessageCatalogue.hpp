#pragma once

#include <filesystem>
#include <string>

namespace platform {

/// The translations of one strings table: gettext catalogues `<directory>/<language>/LC_MESSAGES/<domain>.mo`, whose
/// messages are English texts in the context of their keys. Immutable; any thread. A catalogue that is damaged makes
/// the table read as untranslated, since gettext itself trusts what it reads.
class MessageCatalogue {
public:
    MessageCatalogue(std::filesystem::path directory, std::string domain);

    /// The text in the user's language (LANGUAGE and LC_MESSAGES); the English when there is no translation.
    std::string translated(const std::string& key, const std::string& english) const;

private:
    std::filesystem::path _directory;
    std::string _domain;
    bool _isSound;
};

}  // namespace platform
