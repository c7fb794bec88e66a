// The settings file: anything may stand in it, and a change must leave all that was understood of it.
#include "fuzz/Fuzz.hpp"
#include "fuzz/Utf8.hpp"
#include "platform/FileContents.hpp"
#include "platform/PreferencesFile.hpp"

#include <optional>

using platform::PreferencesFile;

namespace {

/// Writes the change to the file, of which only its key may become another.
void change(const PreferencesFile& file, const std::string& key, const std::optional<std::string>& text) {
    PreferencesFile::Texts wanted = file.read().value();
    wanted.erase(key);
    if (text) {
        wanted[key] = *text;
    }
    fuzz::require(file.write({{key, text}}) == wanted, "a file that may be written is written");
    fuzz::require(file.read() == wanted, "a change changes nothing else");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A name of its own each time, as a reader may remember a file by its name, size and time.
    static std::uint64_t count = 0;
    const auto folder = fuzz::scratch() / std::to_string(++count);
    std::filesystem::create_directory(folder);
    const auto path = folder / "settings.conf";
    const auto aside = folder / "settings.conf.damaged";
    const std::string_view bytes = fuzz::text(data, size);
    fuzz::write(path, bytes);

    const PreferencesFile file(path);
    fuzz::require(file.read().has_value(), "a file that can be read is read");
    change(file, "Zoom", "0.5");
    if (std::filesystem::exists(aside)) {
        fuzz::require(platform::fileContents(aside) == bytes, "a damaged file is kept as it was");
        std::filesystem::remove(aside);
    }
    change(file, "Zoom", std::nullopt);
    if (fuzz::isUtf8(bytes)) {
        change(file, "SavedErrorJournal", std::string(bytes));
    }
    fuzz::require(!std::filesystem::exists(aside), "what was written is not damaged");
    std::filesystem::remove(path);
    fuzz::require(std::filesystem::remove(folder), "nothing is left beside the file");
    return 0;
}
