#pragma once

#include "platform/gpu/Layer.hpp"
#include "tests/support/FakeGpuState.hpp"

#include <array>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace fake {

/// A layer of images in CPU memory, of which one is remembered as being shown. Like the real one it has four images,
/// and a few more for callers that hold on to drawables after their frames.
class Layer final : public gpu::Layer {
public:
    explicit Layer(std::shared_ptr<Gpu::State> state) : _state(std::move(state)) {}

    std::shared_ptr<gpu::Drawable> lastPresented() const;
    bool showsFrames() const { return _showsFrames; }
    /// Those in force one after the other, null ones too.
    const std::vector<std::shared_ptr<const gpu::Overlay>>& overlays() const { return _overlays; }

private:
    struct Image {
        std::shared_ptr<gpu::Texture> texture;
        std::weak_ptr<gpu::Drawable> drawable;  // that has it, or had it last
    };

    std::shared_ptr<gpu::Drawable> makeDrawable(const Configuration& configuration) override;
    void presentFinished(std::shared_ptr<gpu::Drawable> drawable) override;
    void changePresentationTarget(gpu::PresentationTarget) override {}
    void changeShowsFrames(bool showsFrames) override { _showsFrames = showsFrames; }
    void changeOverlay(std::shared_ptr<const gpu::Overlay> overlay) override {
        _overlays.push_back(std::move(overlay));
    }
    std::vector<std::byte> copyPixels(const gpu::Drawable& drawable) override;

    Image* freeImage();
    void prepare(Image& image, const Configuration& configuration);

    std::shared_ptr<Gpu::State> _state;
    std::array<Image, 8> _images;
    std::uint64_t _nextIdentifier = 0;
    mutable std::mutex _presentedMutex;
    std::shared_ptr<gpu::Drawable> _presented;
    std::vector<std::shared_ptr<const gpu::Overlay>> _overlays;
    bool _showsFrames = true;
};

}  // namespace fake
