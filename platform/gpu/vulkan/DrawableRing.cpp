#include "platform/gpu/vulkan/DrawableRing.hpp"

#include <algorithm>
#include <utility>

namespace gpu::vulkan {
namespace {

class VulkanDrawable final : public Drawable {
public:
    VulkanDrawable(std::weak_ptr<Layer> layer, std::shared_ptr<Texture> texture, std::uint64_t identifier) {
        assign(std::move(layer), std::move(texture), identifier);
    }
};

}  // namespace

/// An allocator that puts a drawable and its reference count beside the drawable's image, and frees the image when both
/// have gone.
template <typename Object>
struct DrawableRing::Place {
    using value_type = Object;

    Place(std::shared_ptr<DrawableRing> owner, Image& place) : ring(std::move(owner)), image(&place) {}
    template <typename Other>
    Place(const Place<Other>& other) : ring(other.ring), image(other.image) {}  // NOLINT: allocators convert

    Object* allocate(std::size_t) {
        static_assert(sizeof(Object) <= sizeof(Image::place), "a drawable needs more room");
        return reinterpret_cast<Object*>(image->place.data());
    }
    void deallocate(Object*, std::size_t) noexcept { ring->free(*image); }

    template <typename Other>
    bool operator==(const Place<Other>& other) const {
        return image == other.image;
    }

    std::shared_ptr<DrawableRing> ring;
    Image* image;
};

DrawableRing::DrawableRing(std::shared_ptr<VulkanDevice> device, PixelFormat format, Extent size, bool framebufferOnly)
    : _device(std::move(device)), _format(format), _size(size), _framebufferOnly(framebufferOnly) {
    _images.reserve(maximumImages);
}

bool DrawableRing::holds(const Device& device, PixelFormat format, Extent size, bool framebufferOnly) const {
    return _device.get() == &device && _format == format && _size == size && _framebufferOnly == framebufferOnly;
}

std::shared_ptr<Drawable> DrawableRing::take(std::weak_ptr<Layer> layer, std::uint64_t identifier) noexcept {
    for (const std::unique_ptr<Image>& image : _images) {
        if (!image->taken.load(std::memory_order_acquire)) {
            image->taken.store(true, std::memory_order_relaxed);
            return std::allocate_shared<VulkanDrawable>(Place<VulkanDrawable>(shared_from_this(), *image),
                                                        std::move(layer), image->texture, identifier);
        }
    }
    return nullptr;
}

void DrawableRing::free(Image& image) noexcept {
    {
        const std::lock_guard lock(_freedMutex);
        image.taken.store(false, std::memory_order_release);
    }
    _freed.notify_one();
}

bool DrawableRing::waitForFreeImage(std::chrono::nanoseconds timeout) {
    std::unique_lock lock(_freedMutex);
    return _freed.wait_for(lock, timeout, [this] {
        return std::ranges::any_of(_images, [](const auto& image) { return !image->taken.load(); });
    });
}

bool DrawableRing::grow(std::size_t limit) {
    if (_images.size() >= limit) {
        return false;
    }
    auto image = std::make_unique<Image>();
    image->texture = _device->makeLayerTexture(_format, _size, _framebufferOnly);
    if (image->texture == nullptr) {
        return false;
    }
    _images.push_back(std::move(image));
    return true;
}

}  // namespace gpu::vulkan
