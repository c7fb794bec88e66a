#include "host/Files.hpp"

#include "platform/FileContents.hpp"

#include <png.h>
#include <unistd.h>

#include <system_error>
#include <vector>

namespace host {
namespace {

std::string cannotWrite(const std::filesystem::path& file, const std::string& reason) {
    return "cannot write " + file.string() + ": " + reason;
}

std::optional<std::string> writeWhole(const std::filesystem::path& path, std::span<const std::byte> bytes) {
    const std::error_code error = platform::replaceFile(path, bytes);
    return error ? std::optional(cannotWrite(path, error.message())) : std::nullopt;
}

std::vector<std::byte> withoutAlpha(std::span<const std::byte> bgra) {
    std::vector<std::byte> bgr;
    bgr.reserve(bgra.size() / 4 * 3);
    for (std::size_t i = 0; i < bgra.size(); i += 4) {
        bgr.insert(bgr.end(), {bgra[i], bgra[i + 1], bgra[i + 2]});
    }
    return bgr;
}

/// Empty on failure; `reason` then says why.
std::vector<std::byte> encodePng(std::span<const std::byte> bgr, std::uint32_t width, std::uint32_t height,
                                 std::string& reason) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = PNG_FORMAT_BGR;
    image.flags = PNG_IMAGE_FLAG_FAST;  // a little larger, several times faster
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<std::byte> encoded(size);
    if (png_image_write_to_memory(&image, encoded.data(), &size, 0, bgr.data(), 0, nullptr) == 0) {
        reason = image.message;
        return {};
    }
    encoded.resize(size);
    return encoded;
}

}  // namespace

std::optional<std::string> writeTextFile(const std::filesystem::path& path, std::string_view text) {
    return writeWhole(path, std::as_bytes(std::span(text)));
}

std::optional<std::string> writePngFile(const std::filesystem::path& path, std::span<const std::byte> bgra,
                                        std::uint32_t width, std::uint32_t height) {
    if (bgra.size() != std::size_t{width} * height * 4) {
        return cannotWrite(path, "the frame could not be read back");
    }
    std::string reason;
    const std::vector<std::byte> encoded = encodePng(withoutAlpha(bgra), width, height, reason);
    return encoded.empty() ? cannotWrite(path, reason) : writeWhole(path, encoded);
}

std::optional<std::string> checkWritable(const std::filesystem::path& directory) {
    const std::filesystem::path named = directory.empty() ? "." : directory;
    std::error_code error;
    if (!std::filesystem::is_directory(named, error) || access(named.c_str(), W_OK | X_OK) != 0) {
        return cannotWrite(named, "it is no folder that files can be written into");
    }
    return {};
}

std::optional<std::string> prepareDirectory(const std::filesystem::path& directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        return cannotWrite(directory, error.message());
    }
    return checkWritable(directory);
}

}  // namespace host
