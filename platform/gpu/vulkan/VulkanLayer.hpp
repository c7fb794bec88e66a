#pragma once

#include "platform/gpu/Layer.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace gpu::vulkan {

class DrawableRing;
class VulkanPresenter;

/// A layer whose frames are drawn into images of its own and shown by a presenter thread, so that no window, be it
/// hidden, stuck or destroyed, ever keeps a frame from being drawn. Made by the backend's `newLayer`.
class VulkanLayer final : public Layer {
public:
    VulkanLayer();
    /// Returns when the window is no longer used.
    ~VulkanLayer() override;

private:
    std::shared_ptr<Drawable> makeDrawable(const Configuration& configuration) override;
    void presentFinished(std::shared_ptr<Drawable> drawable) override;
    void changePresentationTarget(PresentationTarget target) override;
    void changeShowsFrames(bool showsFrames) override;
    void changeOverlay(std::shared_ptr<const Overlay> overlay) override;
    std::vector<std::byte> copyPixels(const Drawable& drawable) override;

    void chooseRing(const Configuration& configuration);
    std::shared_ptr<Drawable> takeDrawable();
    bool dropWaitingFrame();

    std::shared_ptr<DrawableRing> _ring;
    std::uint64_t _nextIdentifier = 0;

    std::mutex _targetMutex;  ///< held while the target changes, which may take the presenter some time
    std::mutex _presenterMutex;
    std::unique_ptr<VulkanPresenter> _presenter;
    bool _showsFrames = true;
    std::shared_ptr<const Overlay> _overlay;
};

}  // namespace gpu::vulkan
