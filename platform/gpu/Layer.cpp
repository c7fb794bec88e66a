#include "platform/gpu/Layer.hpp"

#include <utility>

namespace gpu {

void Drawable::assign(std::weak_ptr<Layer> layer, std::shared_ptr<Texture> texture, std::uint64_t identifier) {
    _layer = std::move(layer);
    _texture = std::move(texture);
    _identifier = identifier;
}

Layer::Configuration Layer::configuration() const {
    const std::lock_guard lock(_mutex);
    return _configuration;
}

std::shared_ptr<Device> Layer::device() const {
    const std::lock_guard lock(_mutex);
    return _configuration.device;
}

void Layer::setDevice(std::shared_ptr<Device> device) {
    const std::lock_guard lock(_mutex);
    _configuration.device.swap(device);
}

PixelFormat Layer::pixelFormat() const {
    const std::lock_guard lock(_mutex);
    return _configuration.pixelFormat;
}

void Layer::setPixelFormat(PixelFormat format) {
    const std::lock_guard lock(_mutex);
    _configuration.pixelFormat = format;
}

bool Layer::framebufferOnly() const {
    const std::lock_guard lock(_mutex);
    return _configuration.framebufferOnly;
}

void Layer::setFramebufferOnly(bool framebufferOnly) {
    const std::lock_guard lock(_mutex);
    _configuration.framebufferOnly = framebufferOnly;
}

ClearColor Layer::backgroundColor() const {
    const std::lock_guard lock(_mutex);
    return _configuration.backgroundColor;
}

void Layer::setBackgroundColor(ClearColor color) {
    const std::lock_guard lock(_mutex);
    _configuration.backgroundColor = color;
}

Extent Layer::drawableSize() const {
    const std::lock_guard lock(_mutex);
    return _configuration.drawableSize;
}

void Layer::setDrawableSize(Extent size) {
    const std::lock_guard lock(_mutex);
    _configuration.drawableSize = size;
}

std::shared_ptr<Drawable> Layer::nextDrawable() {
    const Configuration current = configuration();
    if (current.device == nullptr || current.drawableSize.width < 1 || current.drawableSize.height < 1) {
        return nullptr;
    }
    std::shared_ptr<Drawable> drawable = makeDrawable(current);
    if (drawable != nullptr) {
        notify(&FrameObserver::drawableTaken, *drawable);
    }
    return drawable;
}

void Layer::setPresentationTarget(PresentationTarget target) {
    changePresentationTarget(std::move(target));
}

void Layer::setShowsFrames(bool showsFrames) {
    changeShowsFrames(showsFrames);
}

void Layer::setOverlay(std::shared_ptr<const Overlay> overlay) {
    constexpr std::size_t bytesPerPixel = 4;
    const bool isPicture = overlay != nullptr && !overlay->pixels.empty() &&
                           overlay->pixels.size() == overlay->size.width * overlay->size.height * bytesPerPixel;
    changeOverlay(isPicture ? std::move(overlay) : nullptr);
}

void Layer::setFrameObserver(std::shared_ptr<FrameObserver> observer) {
    const std::lock_guard lock(_observerMutex);
    _observer.swap(observer);
}

std::vector<std::byte> Layer::readPixels(const Drawable& drawable) {
    return copyPixels(drawable);
}

void Layer::notify(void (FrameObserver::*event)(const Drawable&), const Drawable& drawable) {
    const std::lock_guard lock(_observerMutex);
    if (_observer != nullptr) {
        ((*_observer).*event)(drawable);
    }
}

void Layer::notifyCompleted(const Drawable& drawable, bool succeeded) {
    const std::lock_guard lock(_observerMutex);
    if (_observer != nullptr) {
        _observer->frameCompleted(drawable, succeeded);
    }
}

}  // namespace gpu
