#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace fake {

/// Writes a file, and makes the directories above it.
inline void writeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

/// The bytes of a file; none when there is no such file.
inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace fake
