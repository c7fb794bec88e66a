#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace platform {

/// One typed argument of a format. A null object prints as "(null)".
class FormatArgument {
public:
    using Value = std::variant<std::nullptr_t, std::int64_t, std::uint64_t, double, std::string>;

    FormatArgument(std::nullptr_t) : _value(nullptr) {}  // NOLINT(google-explicit-constructor): so for all below
    template <std::signed_integral T>
    FormatArgument(T value) : _value(static_cast<std::int64_t>(value)), _bytes(sizeof(T)) {}  // NOLINT
    template <std::unsigned_integral T>
    FormatArgument(T value) : _value(static_cast<std::uint64_t>(value)), _bytes(sizeof(T)) {}  // NOLINT
    template <std::floating_point T>
    FormatArgument(T value) : _value(static_cast<double>(value)) {}         // NOLINT
    FormatArgument(std::string value) : _value(std::move(value)) {}         // NOLINT
    FormatArgument(std::string_view value) : _value(std::string(value)) {}  // NOLINT
    FormatArgument(const char* value);                                      // NOLINT
    FormatArgument(const std::optional<std::string>& value);                // NOLINT

    const Value& value() const { return _value; }
    /// Size of the integer that was given, so that a negative one prints as hexadecimal in its own width.
    std::size_t bytes() const { return _bytes; }

private:
    Value _value;
    std::size_t _bytes = sizeof(std::int64_t);
};

/// Fills a format in the platform's convention: `%@`, `%d`, `%ld`, `%lld`, `%u`, `%x`, `%08x`, `%.2lf`, `%%`,
/// positional
/// `%1$@`, with flags, width and precision. Independent of the locale. Surplus arguments are ignored; a missing one
/// prints as "(null)", one of another type prints as itself; an unknown conversion is printed as it stands. Never
/// throws.
std::string formatString(std::string_view format, std::span<const FormatArgument> arguments);

template <typename... Arguments>
std::string formatted(std::string_view format, Arguments&&... arguments) {
    const std::array<FormatArgument, sizeof...(Arguments)> list{FormatArgument(std::forward<Arguments>(arguments))...};
    return formatString(format, list);
}

}  // namespace platform
