#include "renderhost/QZLScreenshot.hpp"

#include "platform/gpu/Device.hpp"
#include "renderhost/QZLEndian.hpp"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <new>
#include <span>

namespace {

constexpr std::uint32_t headerSize = 54;
constexpr std::uint32_t informationHeaderSize = 40;
constexpr std::size_t texelSize = 4;
constexpr std::size_t filePixelSize = 3;

bool isReadable(const gpu::Texture& texture) {
    if (texture.textureType() != gpu::TextureType::Type2D || texture.isFramebufferOnly()) {
        return false;
    }
    switch (texture.pixelFormat()) {
        case gpu::PixelFormat::RGBA8Unorm:
        case gpu::PixelFormat::RGBA8UnormSrgb:
        case gpu::PixelFormat::RGBA8Uint:
        case gpu::PixelFormat::BGRA8Unorm:
        case gpu::PixelFormat::BGRA8UnormSrgb: return true;
        default: return false;
    }
}

/// Blocks until the GPU has copied.
bool blitToBuffer(const std::shared_ptr<gpu::Texture>& texture, const std::shared_ptr<gpu::Buffer>& buffer) {
    const auto queue = texture->device()->newCommandQueue();
    const auto commandBuffer = queue != nullptr ? queue->commandBuffer() : nullptr;
    gpu::BlitCommandEncoder* encoder = commandBuffer != nullptr ? commandBuffer->blitCommandEncoder() : nullptr;
    if (encoder == nullptr) {
        return false;
    }
    encoder->copyTextureToBuffer(texture, {{0, 0}, texture->size()}, buffer, 0, texelSize * texture->width());
    encoder->endEncoding();
    commandBuffer->commit();
    commandBuffer->waitUntilCompleted();
    return true;
}

/// How an image lies in a BMP file.
struct BmpLayout {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t rowSize;    // bytes, padded to a multiple of 4
    std::uint32_t imageSize;  // bytes

    BmpLayout(std::uint64_t imageWidth, std::uint64_t imageHeight)
        : width(static_cast<std::uint32_t>(imageWidth)),
          height(static_cast<std::uint32_t>(imageHeight)),
          rowSize((static_cast<std::uint32_t>(filePixelSize) * width + 3) & ~3U),
          imageSize(rowSize * height) {}

    std::uint32_t fileSize() const { return imageSize + headerSize; }
};

/// False for an image whose sizes do not fit the file's 32-bit fields.
bool fitsBmp(std::uint64_t width, std::uint64_t height) {
    constexpr std::uint64_t longestSide = std::numeric_limits<std::int32_t>::max() / texelSize;
    constexpr std::uint64_t limit = std::numeric_limits<std::uint32_t>::max() - headerSize;
    return width <= longestSide && height <= longestSide &&
           (height == 0 || filePixelSize * width + 3 <= limit / height);
}

std::byte* writeHeader(const BmpLayout& layout, std::byte* position) {
    *position++ = static_cast<std::byte>('B');
    *position++ = static_cast<std::byte>('M');
    position = QZLEndianBufferWriteLE32(layout.fileSize(), position);
    position = QZLEndianBufferWriteLE32(0, position);  // reserved
    position = QZLEndianBufferWriteLE32(headerSize, position);
    position = QZLEndianBufferWriteLE32(informationHeaderSize, position);
    position = QZLEndianBufferWriteLE32(layout.width, position);
    position = QZLEndianBufferWriteLE32(layout.height, position);  // positive: the rows go from the bottom to the top
    position = QZLEndianBufferWriteLE16(1, position);              // planes
    position = QZLEndianBufferWriteLE16(24, position);             // bits per pixel
    position = QZLEndianBufferWriteLE32(0, position);              // no compression
    position = QZLEndianBufferWriteLE32(layout.imageSize, position);
    position = QZLEndianBufferWriteLE32(0, position);  // horizontal resolution
    position = QZLEndianBufferWriteLE32(0, position);  // vertical resolution
    position = QZLEndianBufferWriteLE32(0, position);  // colours used
    return QZLEndianBufferWriteLE32(0, position);      // important colours
}

/// `texels` are W x H of 4 bytes, row 0 first. Which byte of a texel holds which colour is told by its blue one.
void writeRows(const BmpLayout& layout, const std::byte* texels, std::size_t blue, std::byte* position) {
    const std::size_t red = 2 - blue;
    const std::size_t padding = layout.rowSize - filePixelSize * layout.width;
    for (std::size_t row = layout.height; row-- > 0;) {
        const std::byte* texel = texels + row * layout.width * texelSize;
        for (std::size_t column = 0; column < layout.width; ++column, texel += texelSize) {
            *position++ = texel[blue];
            *position++ = texel[1];
            *position++ = texel[red];
        }
        position = std::fill_n(position, padding, std::byte{0});
    }
}

/// False, and no file left behind, when not all could be written.
bool writeFile(const std::string& path, std::span<const std::byte> content) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    const std::size_t written = std::fwrite(content.data(), 1, content.size(), file);
    const bool closed = std::fclose(file) == 0;
    if (!closed || written != content.size()) {
        std::remove(path.c_str());
        return false;
    }
    return true;
}

bool saveTexture(const std::string& path, const std::shared_ptr<gpu::Texture>& texture) {
    std::shared_ptr<gpu::Buffer> buffer;
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    if (texture == nullptr || !fitsBmp(texture->width(), texture->height()) ||
        !QZLCopyTextureToBuffer(texture, buffer, width, height)) {
        return false;
    }
    const BmpLayout layout(width, height);
    const std::unique_ptr<std::byte[]> file(new (std::nothrow) std::byte[layout.fileSize()]);
    if (file == nullptr) {
        return false;
    }
    const bool blueFirst = texture->pixelFormat() == gpu::PixelFormat::BGRA8Unorm ||
                           texture->pixelFormat() == gpu::PixelFormat::BGRA8UnormSrgb;
    writeRows(layout, buffer->contents(), blueFirst ? 0 : 2, writeHeader(layout, file.get()));
    return writeFile(path, {file.get(), layout.fileSize()});
}

}  // namespace

bool QZLCopyTextureToBuffer(const std::shared_ptr<gpu::Texture>& texture, std::shared_ptr<gpu::Buffer>& buffer,
                            std::uint64_t& width, std::uint64_t& height) {
    if (texture == nullptr || !isReadable(*texture)) {
        return false;
    }
    width = texture->width();
    height = texture->height();
    buffer = texture->device()->newBuffer(texelSize * width * height);
    return buffer != nullptr && blitToBuffer(texture, buffer);
}

bool QZLSaveScreenshot(const std::string& path, const std::shared_ptr<gpu::Texture>& texture) {
    try {
        return saveTexture(path, texture);
    } catch (const std::exception&) {
        return false;  // nothing throws once the file is open, so none is left
    }
}
