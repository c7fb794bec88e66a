// String formats, as translators write them: the format, a zero, and its arguments, each a letter for its type and what
// follows.
#include "fuzz/Fuzz.hpp"
#include "fuzz/Utf8.hpp"
#include "platform/StringFormat.hpp"

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

using platform::FormatArgument;

namespace {

std::string_view takeText(std::string_view& bytes) {
    const std::size_t end = std::min(bytes.find('\0'), bytes.size());
    const std::string_view text = bytes.substr(0, end);
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    return text;
}

template <typename Number>
Number takeNumber(std::string_view& bytes) {
    Number number{};
    const std::size_t count = std::min(sizeof number, bytes.size());
    std::memcpy(&number, bytes.data(), count);
    bytes.remove_prefix(count);
    return number;
}

FormatArgument takeArgument(std::string_view& bytes) {
    const char type = bytes.front();
    bytes.remove_prefix(1);
    switch (type) {
        case 'b': return takeNumber<std::int8_t>(bytes);
        case 'i': return takeNumber<std::int32_t>(bytes);
        case 'l': return takeNumber<std::int64_t>(bytes);
        case 'u': return takeNumber<std::uint64_t>(bytes);
        case 'd': return takeNumber<double>(bytes);
        case 't': return takeText(bytes);
        default: return nullptr;
    }
}

std::size_t longestText(std::span<const FormatArgument> arguments) {
    std::size_t longest = 0;
    for (const FormatArgument& argument : arguments) {
        const auto* text = std::get_if<std::string>(&argument.value());
        longest = std::max(longest, text != nullptr ? text->size() : 0);
    }
    return longest;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes = fuzz::text(data, size);
    const bool isText = fuzz::isUtf8(bytes.substr(0, bytes.find('\0')));
    const std::string_view format = takeText(bytes);
    std::vector<FormatArgument> arguments;
    while (!bytes.empty()) {
        arguments.push_back(takeArgument(bytes));
    }
    const bool areTexts = std::ranges::all_of(arguments, [](const FormatArgument& argument) {
        const auto* text = std::get_if<std::string>(&argument.value());
        return text == nullptr || fuzz::isUtf8(*text);
    });

    const std::string printed = platform::formatString(format, arguments);
    fuzz::require(!isText || !areTexts || fuzz::isUtf8(printed), "texts make a text");
    fuzz::require(format.find('%') != std::string_view::npos || printed == format,
                  "a format without conversions prints as it is");
    // 512 characters of width, 309 digits before the point of a double and 512 behind it.
    const auto conversions = static_cast<std::size_t>(std::ranges::count(format, '%'));
    fuzz::require(printed.size() <= format.size() + conversions * (1024 + longestText(arguments)),
                  "no format makes a text beyond all bounds");
    return 0;
}
