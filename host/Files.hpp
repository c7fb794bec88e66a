#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

// Files that appear whole or not at all. Each returns nothing when it went well, else one line that says what went
// wrong.

std::optional<std::string> writeTextFile(const std::filesystem::path& file, std::string_view text);

/// Rows of width * 4 bytes in the order blue, green, red, ignored.
std::optional<std::string> writePngFile(const std::filesystem::path& file, std::span<const std::byte> bgra,
                                        std::uint32_t width, std::uint32_t height);

/// Checks that files can be written into the directory; an empty name stands for the current one.
std::optional<std::string> checkWritable(const std::filesystem::path& directory);

/// The same, but makes the directory where it is missing.
std::optional<std::string> prepareDirectory(const std::filesystem::path& directory);

}  // namespace host
