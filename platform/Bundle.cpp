#include "platform/Bundle.hpp"

#include "platform/FileContents.hpp"
#include "platform/MessageCatalogue.hpp"

#include <dlfcn.h>
#include <link.h>

#include <exception>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

namespace platform {
namespace {

using Texts = std::map<std::string, std::string>;

/// The texts of a JSON object; values of other types are left out. Empty when the file is missing or damaged.
Texts readTexts(const std::filesystem::path& path) {
    const auto object = nlohmann::json::parse(fileContents(path), nullptr, false);
    Texts texts;
    if (object.is_object()) {
        for (const auto& [key, value] : object.items()) {
            if (value.is_string()) {
                texts.emplace(key, value.get<std::string>());
            }
        }
    }
    return texts;
}

std::optional<std::string> textOf(const Texts& texts, const std::string& key) {
    const auto text = texts.find(key);
    return text == texts.end() ? std::nullopt : std::optional(text->second);
}

struct Table {
    Texts english;
    std::optional<MessageCatalogue> translations;
};

/// The bundles in use and the one that stands in for all. Never destroyed: threads may look up until the very end.
struct Registry {
    std::mutex mutex;
    std::map<std::filesystem::path, std::shared_ptr<const Bundle>> bundles;
    std::shared_ptr<const Bundle> override;
};

Registry& registry() {
    static auto* const instance = new Registry;
    return *instance;
}

/// The one true path of a directory; empty when there is none.
std::filesystem::path existingDirectory(const std::filesystem::path& directory) {
    std::error_code error;
    auto path = std::filesystem::canonical(directory, error);
    return std::filesystem::is_directory(path, error) ? path : std::filesystem::path();
}

/// The file that holds the code or data at an address; empty when there is none.
std::filesystem::path fileContaining(const void* address) {
    Dl_info info{};
    link_map* map = nullptr;
    if (dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0 || map == nullptr) {
        return {};
    }
    // The program itself has no name here, and was perhaps started by a relative one.
    const bool isProgram = *map->l_name == '\0';
    std::error_code error;
    return std::filesystem::canonical(isProgram ? "/proc/self/exe" : map->l_name, error);
}

/// The innermost directory above the file that is named like a saver; empty when there is none.
std::filesystem::path saverDirectoryAbove(const std::filesystem::path& file) {
    for (auto directory = file.parent_path(); directory.has_relative_path(); directory = directory.parent_path()) {
        if (directory.extension() == ".saver") {
            return directory;
        }
    }
    return {};
}

}  // namespace

struct Bundle::Contents {
    explicit Contents(std::filesystem::path bundleDirectory)
        : directory(std::move(bundleDirectory)), info(readTexts(directory / "Info.json")) {
        const auto identifier = textOf(info, "CFBundleIdentifier");
        std::error_code error;
        std::filesystem::directory_iterator entry(directory / "strings", error);
        for (const std::filesystem::directory_iterator end; entry != end; entry.increment(error)) {
            const std::filesystem::path& path = entry->path();
            if (path.extension() != ".json") {
                continue;
            }
            const std::string name = path.stem().string();
            Table& table = tables[name];
            table.english = readTexts(path);
            if (identifier) {
                // Domains are process-wide, so the bundle's name goes into them.
                table.translations.emplace(directory / "locale", *identifier + "." + name);
            }
        }
    }

    std::filesystem::path directory;
    Texts info;
    std::map<std::string, Table> tables;
};

std::shared_ptr<const Bundle> Bundle::open(const std::filesystem::path& directory) {
    try {
        auto path = existingDirectory(directory);
        return path.empty() ? nullptr : std::shared_ptr<const Bundle>(new Bundle(std::move(path)));
    } catch (const std::exception&) {
        return nullptr;
    }
}

std::shared_ptr<const Bundle> Bundle::withDirectory(const std::filesystem::path& directory) {
    try {
        const auto path = existingDirectory(directory);
        if (path.empty()) {
            return nullptr;
        }
        const std::lock_guard lock(registry().mutex);
        auto& bundle = registry().bundles[path];
        if (bundle == nullptr) {
            bundle = open(path);
        }
        return bundle;
    } catch (const std::exception&) {
        return nullptr;
    }
}

std::shared_ptr<const Bundle> Bundle::containing(const void* address) {
    try {
        {
            const std::lock_guard lock(registry().mutex);
            if (registry().override != nullptr) {
                return registry().override;
            }
        }
        const auto directory = saverDirectoryAbove(fileContaining(address));
        return directory.empty() ? nullptr : withDirectory(directory);
    } catch (const std::exception&) {
        return nullptr;
    }
}

void Bundle::setOverride(std::shared_ptr<const Bundle> bundle) {
    const std::lock_guard lock(registry().mutex);
    registry().override.swap(bundle);  // the former one is let go of after the lock
}

Bundle::Bundle(std::filesystem::path directory) : _contents(std::make_unique<Contents>(std::move(directory))) {}

Bundle::~Bundle() = default;

const std::filesystem::path& Bundle::directory() const {
    return _contents->directory;
}

std::optional<std::string> Bundle::bundleIdentifier() const {
    return objectForInfoDictionaryKey("CFBundleIdentifier");
}

std::optional<std::string> Bundle::objectForInfoDictionaryKey(const std::string& key) const {
    return textOf(_contents->info, key);
}

std::optional<std::filesystem::path> Bundle::pathForResource(const std::string& name, const std::string& type) const {
    auto path = _contents->directory / (name + "." + type);
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) ? std::optional(std::move(path)) : std::nullopt;
}

std::string Bundle::localizedString(const std::string& key, const std::string& value, const std::string& table) const {
    const auto found = _contents->tables.find(table.empty() ? "Localizable" : table);
    if (found == _contents->tables.end()) {
        return value;
    }
    const auto english = textOf(found->second.english, key);
    if (!english) {
        return value;
    }
    return found->second.translations ? found->second.translations->translated(key, *english) : *english;
}

}  // namespace platform
