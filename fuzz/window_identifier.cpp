// XSCREENSAVER_WINDOW, as hosts set it.
#include "fuzz/Fuzz.hpp"
#include "host/WindowIdentifier.hpp"

#include <algorithm>
#include <optional>

namespace {

/// The same, one digit after the other.
std::optional<std::uint32_t> expected(std::string_view text) {
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = isHexadecimal ? "0123456789abcdef" : "0123456789";
    text.remove_prefix(isHexadecimal ? 2 : 0);
    std::uint64_t window = 0;
    for (const char character : text) {
        const char lower = character >= 'A' && character <= 'F' ? static_cast<char>(character + 'a' - 'A') : character;
        const std::size_t digit = digits.find(lower);
        if (digit == std::string_view::npos) {
            return std::nullopt;
        }
        window = std::min<std::uint64_t>(window * digits.size() + digit, std::uint64_t{1} << 32);
    }
    const bool isOne = window != 0 && window <= UINT32_MAX;
    return isOne ? std::optional(static_cast<std::uint32_t>(window)) : std::nullopt;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::text(data, size);
    fuzz::require(host::parseWindowIdentifier(text) == expected(text), "a window is what its digits say");
    return 0;
}
