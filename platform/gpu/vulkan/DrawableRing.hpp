#pragma once

#include "platform/gpu/Layer.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace gpu::vulkan {

/// Images of one size and format that a layer's drawables take turns with. An image is taken while any reference to its
/// drawable lives, be it the caller's, the presenter's or a weak one, and free otherwise; that is all its state. The
/// drawable itself lives in memory beside its image, so that handing one out allocates nothing.
/// Images are taken by one thread and come back on any. Drawables keep the ring, and so the ring dies after them.
class DrawableRing : public std::enable_shared_from_this<DrawableRing> {
public:
    /// One for each frame in flight and one that is being shown.
    static constexpr std::size_t usualImages = 4;
    /// For callers that hold on to drawables after their frames; where it ends, they are taken to be leaking.
    static constexpr std::size_t maximumImages = 8;

    DrawableRing(std::shared_ptr<VulkanDevice> device, PixelFormat format, Extent size, bool framebufferOnly);

    bool holds(const Device& device, PixelFormat format, Extent size, bool framebufferOnly) const;

    /// A drawable of a free image, or null when there is none.
    std::shared_ptr<Drawable> take(std::weak_ptr<Layer> layer, std::uint64_t identifier) noexcept;

    /// True once an image is free, false when none has come back in that time.
    bool waitForFreeImage(std::chrono::nanoseconds timeout);

    /// Makes one more free image unless there are that many. False when none was made.
    bool grow(std::size_t limit);

private:
    struct Image {
        std::shared_ptr<VulkanTexture> texture;
        std::atomic<bool> taken{false};
        alignas(std::max_align_t) std::array<std::byte, 256> place;
    };
    template <typename Object>
    struct Place;

    void free(Image& image) noexcept;

    std::shared_ptr<VulkanDevice> _device;
    PixelFormat _format;
    Extent _size;
    bool _framebufferOnly;
    std::vector<std::unique_ptr<Image>> _images;
    std::mutex _freedMutex;
    std::condition_variable _freed;
};

}  // namespace gpu::vulkan
