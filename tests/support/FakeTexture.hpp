#pragma once

#include "platform/gpu/Resources.hpp"
#include "tests/support/FakeGpuState.hpp"

#include <cstddef>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace fake {

/// An image in CPU memory, zero at first. Thread-safe.
class Texture final : public gpu::Texture {
public:
    Texture(std::shared_ptr<gpu::Device> device, std::shared_ptr<Gpu::State> state,
            const gpu::TextureDescriptor& descriptor, bool framebufferOnly = false);

    std::vector<std::byte> pixels() const;
    void fill(std::span<const std::byte> pixel);
    void fillWithGarbage();
    /// Rows of the region without padding.
    std::vector<std::byte> read(const gpu::Region& region) const;
    void write(const gpu::Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow);

private:
    bool writeRegion(const gpu::Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow) override;
    std::size_t position(const gpu::Region& region, std::size_t row) const;

    std::shared_ptr<Gpu::State> _state;
    mutable std::mutex _mutex;
    std::vector<std::byte> _pixels;
};

/// Zero at first.
class Buffer final : public gpu::Buffer {
public:
    Buffer(std::shared_ptr<gpu::Device> device, std::size_t length);

private:
    std::vector<std::byte> _bytes;
};

/// How recorded calls name them.
std::string nameOf(const gpu::Texture& texture);
std::string nameOf(const gpu::Buffer& buffer);
std::string nameOf(gpu::Origin origin);
std::string nameOf(gpu::Extent size);

}  // namespace fake
