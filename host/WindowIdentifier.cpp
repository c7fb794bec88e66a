#include "host/WindowIdentifier.hpp"

#include <charconv>

namespace host {

std::optional<std::uint32_t> parseWindowIdentifier(std::string_view text) {
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal) {
        text.remove_prefix(2);
    }
    std::uint32_t window = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, window, isHexadecimal ? 16 : 10);
    return error == std::errc() && stop == end && window != 0 ? std::optional(window) : std::nullopt;
}

}  // namespace host
