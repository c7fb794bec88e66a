#pragma once

#include <charconv>
#include <cmath>
#include <concepts>
#include <optional>
#include <string_view>

namespace host {

/// The whole text as a number, whatever the locale; nothing when it is anything else.
template <std::integral T>
std::optional<T> wholeNumber(std::string_view text) {
    T number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

/// The same for finite decimal numbers.
inline std::optional<double> decimalNumber(std::string_view text) {
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

}  // namespace host
