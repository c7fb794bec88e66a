#include "platform/FileContents.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

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

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code writeAll(int descriptor, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return lastError();
        }
        bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return {};
}

/// A name beside the path that no other writer uses at this moment.
std::string temporaryName(const std::filesystem::path& path) {
    static std::atomic<unsigned> count{0};
    return path.string() + "." + std::to_string(getpid()) + "-" + std::to_string(++count) + ".part";
}

}  // namespace

std::error_code replaceFile(const std::filesystem::path& path, std::span<const std::byte> bytes) {
    constexpr mode_t readableByAll = 0666;  // less what the user's mask takes away
    const std::string temporary = temporaryName(path);
    const int descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, readableByAll);
    if (descriptor < 0) {
        return lastError();
    }
    std::error_code error = writeAll(descriptor, bytes);
    if (close(descriptor) != 0 && !error) {
        error = lastError();
    }
    if (!error) {
        std::filesystem::rename(temporary, path, error);
    }
    if (error) {
        unlink(temporary.c_str());
    }
    return error;
}

}  // namespace platform
