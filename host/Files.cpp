#include "host/Files.hpp"

#include <unistd.h>

#include <QtCore/QSaveFile>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <system_error>

namespace host {
namespace {

std::string cannotWrite(const std::filesystem::path& file, const std::string& reason) {
    return "cannot write " + file.string() + ": " + reason;
}

/// Opens, lets `fill` write, and puts the file in place.
template <typename Fill>
std::optional<std::string> writeWhole(const std::filesystem::path& path, Fill fill) {
    QSaveFile file(QString::fromStdString(path.string()));
    if (!file.open(QIODevice::WriteOnly) || !fill(file) || !file.commit()) {
        return cannotWrite(path, file.errorString().toStdString());
    }
    return {};
}

}  // namespace

std::optional<std::string> writeTextFile(const std::filesystem::path& path, std::string_view text) {
    return writeWhole(path, [&](QSaveFile& file) {
        const auto size = static_cast<qint64>(text.size());
        return file.write(text.data(), size) == size;
    });
}

std::optional<std::string> writePngFile(const std::filesystem::path& path, std::span<const std::byte> bgra,
                                        std::uint32_t width, std::uint32_t height) {
    if (bgra.size() != std::size_t{width} * height * 4) {
        return cannotWrite(path, "the frame could not be read back");
    }
    const QImage image(reinterpret_cast<const uchar*>(bgra.data()), static_cast<int>(width), static_cast<int>(height),
                       static_cast<int>(width * 4), QImage::Format_RGB32);
    return writeWhole(path, [&](QSaveFile& file) { return image.save(&file, "PNG"); });
}

std::optional<std::string> prepareDirectory(const std::filesystem::path& directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        return cannotWrite(directory, error.message());
    }
    if (!std::filesystem::is_directory(directory, error) || access(directory.c_str(), W_OK | X_OK) != 0) {
        return cannotWrite(directory, "it is no folder that files can be written into");
    }
    return {};
}

}  // namespace host
