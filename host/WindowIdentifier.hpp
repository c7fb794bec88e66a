#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

/// The X11 window that a screen saver host names, in its environment or on the command line: "0x3c00007" or decimal.
/// Nothing for anything else, such as the token that hosts on Wayland put in the same place, and for no window (0).
std::optional<std::uint32_t> parseWindowIdentifier(std::string_view text);

}  // namespace host
