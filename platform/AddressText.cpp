#include "platform/AddressText.hpp"

#include <algorithm>
#include <cstddef>

namespace platform {
namespace {

constexpr std::string_view mailScheme = "mailto:";

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// 0 to 15, or -1.
int hexValue(char character) {
    if (isDigit(character)) {
        return character - '0';
    }
    const char letter = lowered(character);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

/// Whether a percent sign and two digits stand there.
bool isEscape(std::string_view text, std::size_t index) {
    return text[index] == '%' && index + 2 < text.size() && hexValue(text[index + 1]) >= 0 &&
           hexValue(text[index + 2]) >= 0;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, [](char character) {
        return isLetter(character) || isDigit(character) || character == '+' || character == '-' || character == '.';
    });
}

/// With line ends as files have them.
std::string decoded(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char character = text[i];
        if (isEscape(text, i)) {
            character = static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        }
        if (character != '\r') {
            result += character;
        }
    }
    return result;
}

/// Takes off what stands before the separator, or all; the separator goes too.
std::string_view takeUpTo(char separator, std::string_view& text) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

std::string headerName(std::string_view name) {
    std::string result = decoded(name);
    std::ranges::transform(result, result.begin(), lowered);
    if (!result.empty() && isLetter(result.front())) {
        result.front() = static_cast<char>(result.front() - 'a' + 'A');
    }
    return result;
}

}  // namespace

bool isAddress(std::string_view text) {
    constexpr std::string_view others = "-._~:/?#[]@!$&'()*+,;=";
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon + 1 == text.size() || !isScheme(text.substr(0, colon))) {
        return false;
    }
    for (std::size_t i = colon + 1; i < text.size(); ++i) {
        const char character = text[i];
        if (!isLetter(character) && !isDigit(character) && others.find(character) == std::string_view::npos &&
            !isEscape(text, i)) {
            return false;
        }
    }
    return true;
}

bool isMailAddress(std::string_view address) {
    return address.size() >= mailScheme.size() &&
           std::ranges::equal(address.substr(0, mailScheme.size()), mailScheme, {}, lowered);
}

std::string mailText(std::string_view address) {
    std::string_view rest = address.substr(std::min(mailScheme.size(), address.size()));
    rest = takeUpTo('#', rest);
    std::string headers;
    std::string body;
    if (const std::string recipients = decoded(takeUpTo('?', rest)); !recipients.empty()) {
        headers = "To: " + recipients + "\n";
    }
    while (!rest.empty()) {
        std::string_view value = takeUpTo('&', rest);
        const std::string name = headerName(takeUpTo('=', value));
        if (name == "Body") {
            body += decoded(value) + "\n";
        } else if (!name.empty()) {
            headers += name + ": " + decoded(value) + "\n";
        }
    }
    return body.empty() ? headers : headers + "\n" + body;
}

}  // namespace platform
