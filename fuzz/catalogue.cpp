// Translations: gettext, which trusts its catalogues, must be able to look up whatever there is in one that counts as
// sound.
#include "fuzz/Fuzz.hpp"
#include "platform/CatalogueFile.hpp"

#include <cstring>
#include <memory>

namespace {

/// Reads as gettext does ("The Format of GNU MO Files" in its manual): with no look at the file's size. The sanitizer
/// sees where it leaves the bytes.
class Reader {
public:
    explicit Reader(const std::uint8_t* data) : _data(data) { _isSwapped = number(0) != 0x950412DE; }

    std::uint32_t count() const { return number(8); }

    /// Of all texts together.
    std::size_t characters() const {
        std::size_t characters = 0;
        for (std::uint32_t index = 0; index < count(); ++index) {
            characters += std::strlen(text(number(12), index)) + std::strlen(text(number(16), index));
        }
        return characters;
    }

    /// False when there is a message that gettext, going through the hash table slot by slot with the message's own
    /// first one and step, would look for in vain and for ever. Looks into tables of a size that can be tried out only.
    bool everySearchEnds() const {
        const std::uint32_t size = number(20) <= 64 ? number(20) : 0;
        for (std::uint32_t step = 1; step + 2 <= size; ++step) {
            for (std::uint32_t first = 0; first < size; ++first) {
                if (!searchEnds(first, step, size)) {
                    return false;
                }
            }
        }
        return true;
    }

private:
    bool searchEnds(std::uint32_t slot, std::uint32_t step, std::uint32_t size) const {
        for (std::uint32_t searched = 0; searched < size; ++searched) {
            if (number(number(24) + std::size_t{4} * slot) == 0) {
                return true;
            }
            slot = (slot + step) % size;
        }
        return false;
    }

    std::uint32_t number(std::size_t offset) const {
        std::uint32_t value = 0;
        std::memcpy(&value, _data + offset, sizeof value);
        return _isSwapped ? __builtin_bswap32(value) : value;
    }

    const char* text(std::uint32_t table, std::uint32_t index) const {
        return reinterpret_cast<const char*>(_data) + number(table + std::size_t{8} * index + 4);
    }

    const std::uint8_t* const _data;
    bool _isSwapped = false;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!platform::isSoundCatalogue(fuzz::text(data, size))) {
        return 0;
    }
    const auto copy = std::make_unique<std::uint8_t[]>(size);  // not a byte longer
    std::memcpy(copy.get(), data, size);
    const Reader reader(copy.get());
    fuzz::require(reader.characters() <= size * reader.count() * 2, "every text lies in the file");
    fuzz::require(reader.everySearchEnds(), "every look-up ends");
    return 0;
}
