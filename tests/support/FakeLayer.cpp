#include "tests/support/FakeLayer.hpp"

#include "tests/support/FakeTexture.hpp"

#include <algorithm>
#include <utility>

namespace fake {
namespace {

class Drawable final : public gpu::Drawable {
public:
    Drawable(std::weak_ptr<gpu::Layer> layer, std::shared_ptr<gpu::Texture> texture, std::uint64_t identifier) {
        assign(std::move(layer), std::move(texture), identifier);
    }
};

}  // namespace

std::shared_ptr<gpu::Drawable> Layer::lastPresented() const {
    const std::lock_guard lock(_presentedMutex);
    return _presented;
}

std::shared_ptr<gpu::Drawable> Layer::makeDrawable(const Configuration& configuration) {
    const std::string name = "drawable " + std::to_string(_nextIdentifier);
    const bool succeeds = _state->next(&Gpu::State::Counts::drawables, &FaultPlan::failingDrawables);
    Image* const image = freeImage();
    if (!_state->attempt("nextDrawable " + std::to_string(_nextIdentifier), succeeds && image != nullptr)) {
        return nullptr;
    }
    prepare(*image, configuration);
    image->texture->setLabel(name);
    auto drawable = _state->make<Drawable>(weak_from_this(), image->texture, _nextIdentifier++);
    image->drawable = drawable;
    return drawable;
}

Layer::Image* Layer::freeImage() {
    const auto image = std::find_if(_images.begin(), _images.end(),
                                    [](const Image& candidate) { return candidate.drawable.expired(); });
    return image == _images.end() ? nullptr : &*image;
}

void Layer::prepare(Image& image, const Configuration& configuration) {
    const gpu::Texture* const texture = image.texture.get();
    const bool fits = texture != nullptr && texture->device() == configuration.device &&
                      texture->pixelFormat() == configuration.pixelFormat &&
                      texture->size() == configuration.drawableSize &&
                      texture->isFramebufferOnly() == configuration.framebufferOnly;
    if (!fits) {
        const gpu::TextureDescriptor descriptor{configuration.pixelFormat, configuration.drawableSize.width,
                                                configuration.drawableSize.height, gpu::TextureUsage::RenderTarget,
                                                gpu::StorageMode::Private};
        image.texture = _state->make<Texture>(configuration.device, _state, descriptor, configuration.framebufferOnly);
    }
}

void Layer::presentFinished(std::shared_ptr<gpu::Drawable> drawable) {
    const std::lock_guard lock(_presentedMutex);
    _presented.swap(drawable);
}

std::vector<std::byte> Layer::copyPixels(const gpu::Drawable& drawable) {
    return bytesPerPixel(drawable.texture()->pixelFormat()) == 4 ? Gpu::pixels(*drawable.texture())
                                                                 : std::vector<std::byte>();
}

}  // namespace fake
