#pragma once

#include <filesystem>
#include <string>

namespace platform {

/// The bytes of a regular file; none when there is no such file or it cannot be read.
std::string fileContents(const std::filesystem::path& path);

}  // namespace platform
