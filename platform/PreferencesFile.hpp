#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace platform {

/// The keys and texts of an INI file, and how to change them. Any thread; several processes at once. A key in a section
/// other than the first reads as "section/key".
class PreferencesFile {
public:
    using Texts = std::map<std::string, std::string>;
    /// What to set and, where there is no text, what to remove.
    using Changes = std::map<std::string, std::optional<std::string>>;

    explicit PreferencesFile(std::filesystem::path path) : _path(std::move(path)) {}

    /// What the file holds; of a damaged one what makes sense. Nothing in a file that does not exist; none when there
    /// is no reading it.
    std::optional<Texts> read() const;

    /// Merges changes into the file, which is replaced as a whole, and made with its directory where there was none. A
    /// damaged one is copied aside (".damaged") before. What the file then holds; none when the changes are not in it.
    std::optional<Texts> write(const Changes& changes) const;

private:
    bool mayBeWritten() const;
    bool keepAside(const std::string& damaged) const;

    const std::filesystem::path _path;
};

}  // namespace platform
