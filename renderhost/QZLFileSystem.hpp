#pragma once

#include <cstdint>
#include <optional>
#include <string>

inline constexpr std::uint64_t QZLLocationDesktop = 1;

/// The Desktop folder for `QZLLocationDesktop`, else the home folder. Not checked to exist.
std::string QZLFileSystemPath(std::uint64_t location);

/// The path "<folder>/<base> <number><extension>" of the first number from `counter` on that is not taken; the counter
/// moves past every number tried. Null when the limit is reached; a limit of 0 or less is none.
std::optional<std::string> QZLNextAvailableFileName(std::uint64_t location, const std::optional<std::string>& baseName,
                                                    const std::string& extension, std::uint32_t& counter,
                                                    std::int32_t limit);
