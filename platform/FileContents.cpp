#include "platform/FileContents.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fstream>
#include <limits>
#include <system_error>

namespace platform {

std::error_code readFile(const std::filesystem::path& path, std::uintmax_t maximumBytes, std::string& contents) {
    // A directory would open, and a pipe would wait for its writer.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return error ? error : std::make_error_code(std::errc::no_such_file_or_directory);
    }
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error) {
        return error;
    }
    if (size > maximumBytes) {
        return std::make_error_code(std::errc::file_too_large);
    }
    contents.resize(static_cast<std::size_t>(size));
    std::ifstream stream(path, std::ios::binary);
    if (!stream.read(contents.data(), static_cast<std::streamsize>(contents.size()))) {
        return std::make_error_code(std::errc::io_error);
    }
    return {};
}

std::string fileContents(const std::filesystem::path& path) {
    std::string contents;
    return readFile(path, std::numeric_limits<std::uintmax_t>::max(), contents) ? std::string() : contents;
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
