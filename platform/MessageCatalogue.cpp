#include "platform/MessageCatalogue.hpp"

#include "platform/FileContents.hpp"

#include <libintl.h>

#include <cstdint>
#include <cstring>
#include <system_error>

namespace platform {
namespace {

/// Between context and message in a catalogue.
constexpr char contextEnd = '\004';

/// A catalogue file, as "The Format of GNU MO Files" in gettext's manual lays it out: 32-bit numbers, and tables of
/// (length, offset) that name texts with a zero behind each.
class CatalogueFile {
public:
    explicit CatalogueFile(const std::filesystem::path& path) : _bytes(fileContents(path)) {
        _isSwapped = _bytes.size() >= headerSize && rawNumber(0) == __builtin_bswap32(magic);
    }

    /// True when no number in the file leads a reader out of it.
    bool isSound() const {
        if (_bytes.size() < headerSize || number(0) != magic || number(4) != 0) {
            return false;
        }
        const std::uint32_t count = number(8);
        return textsAreInside(number(12), count) && textsAreInside(number(16), count) &&
               hashTableIsInside(number(24), number(20), count);
    }

private:
    static constexpr std::size_t headerSize = 28;
    static constexpr std::uint32_t magic = 0x950412DE;

    bool isInside(std::uint64_t offset, std::uint64_t size) const { return offset + size <= _bytes.size(); }

    /// A number of the file, which may come from a machine of the other byte order.
    std::uint32_t number(std::uint64_t offset) const {
        return _isSwapped ? __builtin_bswap32(rawNumber(offset)) : rawNumber(offset);
    }

    std::uint32_t rawNumber(std::uint64_t offset) const {
        std::uint32_t value = 0;
        std::memcpy(&value, _bytes.data() + offset, sizeof(value));
        return value;
    }

    bool textsAreInside(std::uint64_t table, std::uint64_t count) const {
        constexpr std::uint64_t entrySize = 8;
        if (!isInside(table, count * entrySize)) {
            return false;
        }
        for (std::uint64_t entry = table; entry < table + count * entrySize; entry += entrySize) {
            const std::uint64_t length = number(entry);
            const std::uint64_t offset = number(entry + 4);
            if (!isInside(offset, length + 1) || _bytes[offset + length] != '\0') {
                return false;
            }
        }
        return true;
    }

    /// A search in the table ends at an empty slot, so a table must have one.
    bool hashTableIsInside(std::uint64_t table, std::uint64_t size, std::uint32_t count) const {
        if (!isInside(table, size * 4)) {
            return false;
        }
        bool hasEmptySlot = size == 0;
        for (std::uint64_t slot = table; slot < table + size * 4; slot += 4) {
            if (number(slot) > count) {
                return false;
            }
            hasEmptySlot = hasEmptySlot || number(slot) == 0;
        }
        return hasEmptySlot;
    }

    std::string _bytes;
    bool _isSwapped = false;
};

bool allCataloguesAreSound(const std::filesystem::path& directory, const std::string& domain) {
    std::error_code listingError;
    std::filesystem::directory_iterator language(directory, listingError);
    if (listingError) {
        return true;  // there are none
    }
    for (const std::filesystem::directory_iterator end; language != end; language.increment(listingError)) {
        const auto file = language->path() / "LC_MESSAGES" / (domain + ".mo");
        std::error_code error;
        if (std::filesystem::exists(file, error) && !CatalogueFile(file).isSound()) {
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
