#include "platform/PreferenceText.hpp"

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <type_traits>

namespace platform {
namespace {

/// The decimal point is a point in every locale of the user.
locale_t neutralLocale() {
    static const locale_t neutral = newlocale(LC_ALL_MASK, "C", nullptr);
    return neutral;
}

/// What may be a number in decimal digits; cut so that the C library finds no "inf", "nan" or hexadecimal in it.
std::string numberCandidate(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) {
        return {};
    }
    const std::string word = text.substr(begin, text.find_first_of(" \t\r\n", begin) - begin);
    if (word == "true") {
        return "1";
    }
    return word.substr(0, word.find_first_not_of("+-.0123456789eE"));
}

template <typename Number>
std::string shortestText(Number number) {
    std::array<char, 64> characters;
    const auto result = std::to_chars(characters.data(), characters.data() + characters.size(), number);
    return {characters.data(), result.ptr};
}

}  // namespace

std::string preferenceText(const PreferenceValue& value) {
    return std::visit(
        [](const auto& held) -> std::string {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, bool>) {
                return held ? "1" : "0";
            } else if constexpr (std::is_same_v<Held, std::string>) {
                return held;
            } else {
                return shortestText(held);
            }
        },
        value);
}

float floatFromPreferenceText(const std::string& text) {
    constexpr float largest = std::numeric_limits<float>::max();
    return std::clamp(strtof_l(numberCandidate(text).c_str(), nullptr, neutralLocale()), -largest, largest);
}

std::int64_t integerFromPreferenceText(const std::string& text) {
    using Limits = std::numeric_limits<std::int64_t>;
    constexpr double beyond = 0x1p63;

    const std::string number = numberCandidate(text);
    if (number.find_first_of(".eE") == std::string::npos) {
        return strtoll(number.c_str(), nullptr, 10);  // exact, and saturates by itself
    }
    const double value = strtod_l(number.c_str(), nullptr, neutralLocale());
    if (value >= beyond) {
        return Limits::max();
    }
    return value <= -beyond ? Limits::min() : static_cast<std::int64_t>(value);
}

}  // namespace platform
