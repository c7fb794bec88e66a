#pragma once

#include "platform/gpu/Layer.hpp"
#include "tests/support/FakeGpuState.hpp"

#include <array>
#include <memory>
#include <mutex>

namespace fake {

/// A layer of images in CPU memory, of which one is remembered as being shown. Like the real one it has four images,
/// and a few more for callers that hold on to drawables after their frames.
class Layer final : public gpu::Layer {
public:
    explicit Layer(std::shared_ptr<Gpu::State> state) : _state(std::move(state)) {}

    std::shared_ptr<gpu::Drawable> lastPresented() const;

private:
    struct Image {
        std::shared_ptr<gpu::Texture> texture;
        std::weak_ptr<gpu::Drawable> drawable;  // that has it, or had it last
    };

    std::shared_ptr<gpu::Drawable> makeDrawable(const Configuration& configuration) override;
    void presentFinished(std::shared_ptr<gpu::Drawable> drawable) override;
    void changePresentationTarget(gpu::PresentationTarget) override {}
    std::vector<std::byte> copyPixels(const gpu::Drawable& drawable) override;

    Image* freeImage();
    void prepare(Image& image, const Configuration& configuration);

    std::shared_ptr<Gpu::State> _state;
    std::array<Image, 8> _images;
    std::uint64_t _nextIdentifier = 0;
    mutable std::mutex _presentedMutex;
    std::shared_ptr<gpu::Drawable> _presented;
};

}  // namespace fake
