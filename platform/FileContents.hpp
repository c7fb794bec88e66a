#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>

namespace platform {

/// Reads a regular file whole, one longer than `maximumBytes` not at all. Any thread.
std::error_code readFile(const std::filesystem::path& path, std::uintmax_t maximumBytes, std::string& contents);

/// The bytes of a regular file; none when there is no such file or it cannot be read.
std::string fileContents(const std::filesystem::path& path);

/// Who may read a new file.
enum class Readers {
    All,         ///< whom the user's mask lets
    OwnerAlone,  ///< nobody else
};

/// Puts a file with these bytes in the path's place, whole or not at all: on failure the former file, if any, stays.
/// Any thread.
std::error_code replaceFile(const std::filesystem::path& path, std::span<const std::byte> bytes,
                            Readers readers = Readers::All);

}  // namespace platform
