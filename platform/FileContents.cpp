#include "platform/FileContents.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <system_error>

namespace platform {
namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

class OpenFile {
public:
    OpenFile(const std::filesystem::path& path, int flags) : _descriptor(open(path.c_str(), flags | O_CLOEXEC)) {}
    ~OpenFile() { close(_descriptor); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int descriptor() const { return _descriptor; }

private:
    const int _descriptor;
};

/// Reads all that the descriptor names: while it is open, no other file can take its place.
std::error_code readAll(int descriptor, std::uintmax_t maximumBytes, std::string& contents) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return lastError();
    }
    if (!S_ISREG(status.st_mode)) {
        return std::make_error_code(std::errc::no_such_file_or_directory);
    }
    if (static_cast<std::uintmax_t>(status.st_size) > maximumBytes) {
        return std::make_error_code(std::errc::file_too_large);
    }
    contents.resize(static_cast<std::size_t>(status.st_size));
    for (std::size_t end = 0; end < contents.size();) {
        const ssize_t count = read(descriptor, contents.data() + end, contents.size() - end);
        if (count == 0) {
            return std::make_error_code(std::errc::io_error);  // it was cut meanwhile
        }
        if (count < 0 && errno != EINTR) {
            return lastError();
        }
        end += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return {};
}

}  // namespace

std::error_code readFile(const std::filesystem::path& path, std::uintmax_t maximumBytes, std::string& contents) {
    // Opening a pipe would otherwise wait for its writer.
    const OpenFile file(path, O_RDONLY | O_NONBLOCK);
    return file.descriptor() < 0 ? lastError() : readAll(file.descriptor(), maximumBytes, contents);
}

std::string fileContents(const std::filesystem::path& path) {
    std::string contents;
    return readFile(path, std::numeric_limits<std::uintmax_t>::max(), contents) ? std::string() : contents;
}

namespace {

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

std::error_code replaceFile(const std::filesystem::path& path, std::span<const std::byte> bytes, Readers readers) {
    const mode_t mode = readers == Readers::All ? 0666 : 0600;  // less what the user's mask takes away
    const std::string temporary = temporaryName(path);
    const int descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
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
