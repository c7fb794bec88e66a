#include "tests/support/FakeTexture.hpp"

#include "platform/gpu/Device.hpp"
#include "tests/support/FakePixels.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace fake {

Texture::Texture(std::shared_ptr<gpu::Device> device, std::shared_ptr<Gpu::State> state,
                 const gpu::TextureDescriptor& descriptor, bool framebufferOnly)
    : gpu::Texture(std::move(device), descriptor, framebufferOnly),
      _state(std::move(state)),
      _pixels(width() * height() * bytesPerPixel(pixelFormat())) {}

std::vector<std::byte> Texture::pixels() const {
    const std::lock_guard lock(_mutex);
    return _pixels;
}

void Texture::fill(std::span<const std::byte> pixel) {
    const std::lock_guard lock(_mutex);
    for (std::size_t position = 0; position < _pixels.size(); position += pixel.size()) {
        std::copy(pixel.begin(), pixel.end(), _pixels.begin() + static_cast<std::ptrdiff_t>(position));
    }
}

void Texture::fillWithGarbage() {
    const std::lock_guard lock(_mutex);
    std::fill(_pixels.begin(), _pixels.end(), Gpu::garbage);
}

std::vector<std::byte> Texture::read(const gpu::Region& region) const {
    const std::lock_guard lock(_mutex);
    const std::size_t rowBytes = region.size.width * bytesPerPixel(pixelFormat());
    std::vector<std::byte> bytes(rowBytes * region.size.height);
    for (std::size_t row = 0; row < region.size.height; ++row) {
        std::memcpy(bytes.data() + row * rowBytes, _pixels.data() + position(region, row), rowBytes);
    }
    return bytes;
}

void Texture::write(const gpu::Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow) {
    const std::lock_guard lock(_mutex);
    const std::size_t rowBytes = region.size.width * bytesPerPixel(pixelFormat());
    for (std::size_t row = 0; row < region.size.height; ++row) {
        std::memcpy(_pixels.data() + position(region, row), bytes.data() + row * bytesPerRow, rowBytes);
    }
}

bool Texture::writeRegion(const gpu::Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow) {
    const std::string call = "replaceRegion " + nameOf(*this) + " " + nameOf(region.origin) + " " + nameOf(region.size);
    if (!_state->attempt(call, !device()->isLost())) {
        return false;
    }
    write(region, bytes, bytesPerRow);
    return true;
}

std::size_t Texture::position(const gpu::Region& region, std::size_t row) const {
    return ((region.origin.y + row) * width() + region.origin.x) * bytesPerPixel(pixelFormat());
}

Buffer::Buffer(std::shared_ptr<gpu::Device> device, std::size_t length)
    : gpu::Buffer(std::move(device), length), _bytes(length) {
    setContents(_bytes.data());
}

std::string nameOf(const gpu::Texture& texture) {
    return texture.label().empty() ? nameOf(texture.pixelFormat()) + " " + nameOf(texture.size()) : texture.label();
}

std::string nameOf(const gpu::Buffer& buffer) {
    return buffer.label().empty() ? std::to_string(buffer.length()) + " bytes" : buffer.label();
}

std::string nameOf(gpu::Origin origin) {
    return std::to_string(origin.x) + "," + std::to_string(origin.y);
}

std::string nameOf(gpu::Extent size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

}  // namespace fake
