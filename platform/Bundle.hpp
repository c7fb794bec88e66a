#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// A directory of resources that belong together: `Info.json`, strings tables in `strings/`, translations in `locale/`,
/// files. Immutable after opening and shared; any thread. Opening never fails: what is missing or damaged reads as
/// absent.
class Bundle {
public:
    /// The bundle in that directory; null when there is no such directory. The same object for the same directory.
    static std::shared_ptr<const Bundle> withDirectory(const std::filesystem::path& directory);

    /// The bundle in that directory, read anew into an object of its own; null when there is no such directory.
    static std::shared_ptr<const Bundle> open(const std::filesystem::path& directory);

    /// The bundle whose directory holds the shared object or program that contains this address. Null when the file
    /// lies in no directory named "*.saver".
    static std::shared_ptr<const Bundle> containing(const void* address);

    /// Makes `containing` return this bundle whatever the address; null ends that. For tests.
    static void setOverride(std::shared_ptr<const Bundle> bundle);

    ~Bundle();
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    const std::filesystem::path& directory() const;
    /// "CFBundleIdentifier" of Info.json; null when absent.
    std::optional<std::string> bundleIdentifier() const;
    /// A value of Info.json; null when absent or no string.
    std::optional<std::string> objectForInfoDictionaryKey(const std::string& key) const;
    /// The path of "<name>.<type>" in the bundle; null when there is no such file.
    std::optional<std::filesystem::path> pathForResource(const std::string& name, const std::string& type) const;
    /// The text of a key in the user's language: `value` when the table lacks the key, else the translation of its
    /// English text, else the English. `table` names a file in `strings/`; empty means "Localizable".
    std::string localizedString(const std::string& key, const std::string& value, const std::string& table) const;

private:
    struct Contents;
    explicit Bundle(std::filesystem::path directory);
    std::unique_ptr<Contents> _contents;
};

}  // namespace platform
