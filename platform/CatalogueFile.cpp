#include "platform/CatalogueFile.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace platform {
namespace {

bool isPrime(std::uint64_t number) {
    for (std::uint64_t divisor = 2; divisor * divisor <= number; ++divisor) {
        if (number % divisor == 0) {
            return false;
        }
    }
    return number >= 2;
}

/// 32-bit numbers, and tables of (length, offset) that name texts with a zero behind each.
class CatalogueFile {
public:
    explicit CatalogueFile(std::string_view bytes) : _bytes(bytes) {
        _isSwapped = _bytes.size() >= headerSize && rawNumber(0) == __builtin_bswap32(magic);
    }

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

    /// A search in the table goes on in steps of one length, as long as the message wants it, and ends at an empty
    /// slot. So a table must have one, and a prime size, with which steps of every length lead there.
    bool hashTableIsInside(std::uint64_t table, std::uint64_t size, std::uint32_t count) const {
        if (!isInside(table, size * 4)) {
            return false;
        }
        bool hasEmptySlot = false;
        for (std::uint64_t slot = table; slot < table + size * 4; slot += 4) {
            if (number(slot) > count) {
                return false;
            }
            hasEmptySlot = hasEmptySlot || number(slot) == 0;
        }
        return size == 0 || (hasEmptySlot && isPrime(size));
    }

    std::string_view _bytes;
    bool _isSwapped = false;
};

}  // namespace

bool isSoundCatalogue(std::string_view bytes) {
    return CatalogueFile(bytes).isSound();
}

}  // namespace platform
