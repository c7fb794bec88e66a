#pragma once

#include "platform/gpu/Layer.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace gpu::vulkan {

class DrawableRing;
class VulkanPresenter;

/// A layer whose frames are drawn into images of its own and shown by a presenter thread. Where frames are drawn faster
/// than they can be shown, `nextDrawable` waits, so that none is drawn in vain; but no window, be it hidden, stuck or
/// destroyed, keeps a frame from being drawn for longer than `roomPatience`. Made by the backend's `newLayer`.
class VulkanLayer final : public Layer {
public:
    /// How long a new frame waits for those before it to be shown. Then the oldest of them is given up.
    static constexpr std::chrono::seconds roomPatience{1};

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
    bool waitUntilOneIsShown();
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
