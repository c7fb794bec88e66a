#include "settings/QZLMailto.hpp"

#include <string_view>

namespace {

// Their meaning does not depend on the locale.
bool isLetterOrDigit(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

bool isPrintableAscii(char c) {
    return c >= ' ' && c <= '~';
}

}  // namespace

std::string QZLSanitizeMailto(const std::optional<std::string>& string) {
    std::string result;
    if (!string) {
        return result;
    }
    result.reserve(string->size());
    for (const char c : *string) {
        if (c == '\0') {
            break;
        }
        if (isLetterOrDigit(c)) {
            result += c;
        } else if (c == '\n') {
            result += "%0D%0A";
        } else if (isPrintableAscii(c)) {
            constexpr std::string_view digits = "0123456789ABCDEF";
            const auto byte = static_cast<unsigned char>(c);
            result += {'%', digits[byte >> 4], digits[byte & 0xF]};
        }
    }
    return result;
}

std::optional<std::string> QZLRemoveHttpPrefix(std::optional<std::string> address) {
    for (const std::string_view prefix : {"http://", "https://"}) {
        if (address && address->starts_with(prefix)) {
            address->erase(0, prefix.size());
            break;
        }
    }
    return address;
}
