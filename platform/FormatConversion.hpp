#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace platform {

/// One "%..." of a format, as read. For the formatter alone.
struct Conversion {
    std::size_t length = 0;    // of its text, the percent sign included
    std::size_t position = 0;  // of its argument, from 1; 0 for the next in order
    bool leftAligned = false;
    bool zeroPadded = false;
    bool alternate = false;
    std::string_view positiveSign;
    std::size_t width = 0;
    std::optional<std::size_t> precision;
    char type = '\0';
};

/// Reads the conversion that the text begins with, its percent sign first; null when it is none that is known.
std::optional<Conversion> readConversion(std::string_view text);

}  // namespace platform
