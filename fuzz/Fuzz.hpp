#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

/// What the fuzzers have in common. Each is a program with an entry point that gets some bytes and must neither crash
/// nor break one of its requirements.
namespace fuzz {

/// Ends the program, as a crash does, unless the condition holds.
inline void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "broken requirement: %s\n", what);
        std::abort();
    }
}

inline std::string_view text(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// A folder of this process, the same at each call; removed at its end.
inline const std::filesystem::path& scratch() {
    struct Folder {
        std::filesystem::path path = std::filesystem::temp_directory_path() / ("fuzz-" + std::to_string(getpid()));
        Folder() { std::filesystem::create_directories(path); }
        ~Folder() {
            std::error_code error;
            std::filesystem::remove_all(path, error);
        }
    };
    static const Folder folder;
    return folder.path;
}

inline void write(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
