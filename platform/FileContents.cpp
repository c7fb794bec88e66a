#include "platform/FileContents.hpp"

#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

namespace platform {

std::string fileContents(const std::filesystem::path& path) {
    // A directory would open, and a pipe would wait for its writer.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return {};
    }
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return std::move(contents).str();
}

}  // namespace platform
