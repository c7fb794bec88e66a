#include "platform/StringFormat.hpp"

#include "platform/FormatConversion.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <exception>
#include <optional>

namespace platform {
namespace {

/// No width and no precision of a number goes beyond this, so that a damaged format costs little memory.
constexpr std::size_t largestFieldSize = 512;
constexpr std::string_view nullText = "(null)";

/// What a conversion prints, parted where the zeros of its width go.
struct Field {
    std::string head;  // sign and "0x"
    std::string body;
    bool mayTakeZeros = false;
};

char lowerCase(char type) {
    return type >= 'A' && type <= 'Z' ? static_cast<char>(type - 'A' + 'a') : type;
}

void makeUpperCase(std::string& text) {
    for (char& character : text) {
        character = character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    }
}

bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

std::size_t characterCount(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

/// The text's first characters; a character of several bytes is never cut.
std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t seen = 0;
    for (std::size_t index = 0; index < text.size(); ++index) {
        seen += beginsCharacter(text[index]) ? 1 : 0;
        if (seen > count) {
            return text.substr(0, index);
        }
    }
    return text;
}

/// A code point in UTF-8; the replacement character when there is no such code point.
std::string encodedCharacter(std::uint64_t codePoint) {
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    const auto code = static_cast<std::uint32_t>(codePoint > 0x10FFFF || isSurrogate ? 0xFFFD : codePoint);
    const auto continuation = [code](unsigned shift) { return static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
    if (code < 0x80) {
        return {static_cast<char>(code)};
    }
    if (code < 0x800) {
        return {static_cast<char>(0xC0U | (code >> 6U)), continuation(0)};
    }
    if (code < 0x10000) {
        return {static_cast<char>(0xE0U | (code >> 12U)), continuation(6), continuation(0)};
    }
    return {static_cast<char>(0xF0U | (code >> 18U)), continuation(12), continuation(6), continuation(0)};
}

/// Text, cut where the precision is meant for texts and not for a number that ought to have been here.
Field textField(const Conversion& conversion, std::string_view text) {
    const bool isForText = std::string_view("@sS").find(conversion.type) != std::string_view::npos;
    const bool isCut = isForText && conversion.precision;
    return {"", std::string(isCut ? firstCharacters(text, *conversion.precision) : text), false};
}

std::string integerDigits(char type, std::uint64_t number) {
    switch (type) {
        case 'x':
        case 'p': return fmt::format("{:x}", number);
        case 'X': return fmt::format("{:X}", number);
        case 'o':
        case 'O': return fmt::format("{:o}", number);
        default: return fmt::format("{}", number);
    }
}

Field integerField(const Conversion& conversion, std::string_view sign, std::uint64_t magnitude) {
    Field field{std::string(sign), integerDigits(conversion.type, magnitude), !conversion.precision};
    const char type = lowerCase(conversion.type);
    if (magnitude == 0 && conversion.precision == 0U &&
        std::string_view("diuxo").find(type) != std::string_view::npos) {
        field.body.clear();  // at least no digits
    }
    const std::size_t fewestDigits = std::min(conversion.precision.value_or(0), largestFieldSize);
    if (field.body.size() < fewestDigits) {
        field.body.insert(0, fewestDigits - field.body.size(), '0');
    }
    if (type == 'p' || (type == 'x' && conversion.alternate && magnitude != 0)) {
        field.head += conversion.type == 'X' ? "0X" : "0x";
    } else if (type == 'o' && conversion.alternate && !field.body.starts_with('0')) {
        field.head += "0";
    }
    return field;
}

/// The number in hexadecimal, without "0x".
std::string hexadecimalDigits(double magnitude, std::optional<std::size_t> precision) {
    std::array<char, largestFieldSize + 32> digits{};
    char* const end = digits.data() + digits.size();
    const auto result = precision ? std::to_chars(digits.data(), end, magnitude, std::chars_format::hex,
                                                  static_cast<int>(std::min(*precision, largestFieldSize)))
                                  : std::to_chars(digits.data(), end, magnitude, std::chars_format::hex);
    return {digits.data(), result.ptr};
}

std::string floatDigits(const Conversion& conversion, double magnitude) {
    const char type = lowerCase(conversion.type);
    if (type == 'a') {
        return hexadecimalDigits(magnitude, conversion.precision);
    }
    const std::size_t precision = std::min(conversion.precision.value_or(6), largestFieldSize);
    const std::string format = fmt::format("{{:{}.{}{}}}", conversion.alternate ? "#" : "", precision, type);
    return fmt::format(fmt::runtime(format), magnitude);
}

Field floatField(const Conversion& conversion, double number) {
    Field field;
    field.head = std::signbit(number) ? "-" : conversion.positiveSign;
    field.mayTakeZeros = std::isfinite(number);
    if (!field.mayTakeZeros) {
        field.body = std::isnan(number) ? "nan" : "inf";
    } else {
        field.head += lowerCase(conversion.type) == 'a' ? "0x" : "";
        field.body = floatDigits(conversion, std::abs(number));
    }
    if (conversion.type != lowerCase(conversion.type)) {
        makeUpperCase(field.head);
        makeUpperCase(field.body);
    }
    return field;
}

/// Fills one conversion with an argument of each type it may get; one that does not fit prints as itself.
class FieldMaker {
public:
    FieldMaker(const Conversion& conversion, std::size_t bytes) : _conversion(conversion), _bytes(bytes) {}

    Field operator()(std::nullptr_t) const { return textField(_conversion, nullText); }
    Field operator()(const std::string& text) const { return textField(_conversion, text); }

    Field operator()(std::int64_t number) const {
        const auto bits = static_cast<std::uint64_t>(number);
        if (printsBits()) {
            return (*this)(_bytes < sizeof(bits) ? bits & ((std::uint64_t{1} << (8 * _bytes)) - 1) : bits);
        }
        return number < 0 ? integerField(_conversion, "-", -bits)
                          : integerField(_conversion, _conversion.positiveSign, bits);
    }

    Field operator()(std::uint64_t number) const {
        if (lowerCase(_conversion.type) == 'c') {
            return textField(_conversion, encodedCharacter(number));
        }
        return integerField(_conversion, printsBits() ? "" : _conversion.positiveSign, number);
    }

    Field operator()(double number) const {
        if (std::string_view("fega").find(lowerCase(_conversion.type)) != std::string_view::npos) {
            return floatField(_conversion, number);
        }
        return {std::signbit(number) ? "-" : "", fmt::format("{}", std::abs(number)), std::isfinite(number)};
    }

private:
    bool printsBits() const {
        return std::string_view("uxopc").find(lowerCase(_conversion.type)) != std::string_view::npos;
    }

    const Conversion& _conversion;
    std::size_t _bytes;
};

void appendField(std::string& result, const Conversion& conversion, const Field& field) {
    const std::size_t size = characterCount(field.head) + characterCount(field.body);
    const std::size_t width = std::min(conversion.width, largestFieldSize);
    const std::size_t padding = width > size ? width - size : 0;
    const bool padsWithZeros = conversion.zeroPadded && field.mayTakeZeros && !conversion.leftAligned;
    result.append(conversion.leftAligned || padsWithZeros ? 0 : padding, ' ');
    result.append(field.head);
    result.append(padsWithZeros ? padding : 0, '0');
    result.append(field.body);
    result.append(conversion.leftAligned ? padding : 0, ' ');
}

void appendFormatted(std::string& result, std::string_view format, std::span<const FormatArgument> arguments) {
    static const FormatArgument missing(nullptr);
    std::size_t next = 0;
    while (!format.empty()) {
        const std::size_t literal = std::min(format.find('%'), format.size());
        result.append(format.substr(0, literal));
        format.remove_prefix(literal);
        if (format.empty()) {
            return;
        }
        const auto conversion = readConversion(format);
        if (!conversion) {
            result.push_back('%');
            format.remove_prefix(format.starts_with("%%") ? 2 : 1);
            continue;
        }
        const std::size_t index = conversion->position != 0 ? conversion->position - 1 : next++;
        const FormatArgument& argument = index < arguments.size() ? arguments[index] : missing;
        appendField(result, *conversion, std::visit(FieldMaker(*conversion, argument.bytes()), argument.value()));
        format.remove_prefix(conversion->length);
    }
}

}  // namespace

FormatArgument::FormatArgument(const char* value) : _value(nullptr) {
    if (value != nullptr) {
        _value = std::string(value);
    }
}

FormatArgument::FormatArgument(const std::optional<std::string>& value) : _value(nullptr) {
    if (value) {
        _value = *value;
    }
}

std::string formatString(std::string_view format, std::span<const FormatArgument> arguments) {
    std::string result;
    try {
        appendFormatted(result, format, arguments);
    } catch (const std::exception&) {
        // Memory ran out: the beginning of the text is better than none.
    }
    return result;
}

}  // namespace platform
