#pragma once

#include "platform/gpu/Layer.hpp"

#include <chrono>
#include <memory>
#include <thread>

namespace gpu::vulkan {

/// Shows a layer's finished frames in one window, one after the other, on a thread of its own. A frame for which the
/// window has no room is not shown. When the window is
/// destroyed the presenter says so once in the log and shows nothing more. Frames are handed over from any thread.
class VulkanPresenter {
public:
    /// How long the end waits for a window that is stuck. After that the thread is left behind with all it uses.
    static constexpr std::chrono::seconds patience{2};

    /// Null for a target without a window, or when no thread can be had.
    static std::unique_ptr<VulkanPresenter> start(PresentationTarget target) noexcept;

    VulkanPresenter(const VulkanPresenter&) = delete;
    VulkanPresenter& operator=(const VulkanPresenter&) = delete;
    /// Returns when the window is no longer used. Not waited for on the presenter's own thread.
    ~VulkanPresenter();

    void show(std::shared_ptr<Drawable> drawable);

    /// Lies over the frames shown from now on; null for nothing. Any thread.
    void setOverlay(std::shared_ptr<const Overlay> overlay);

    bool hasWaitingFrames();

    /// Gives up the frames that wait, and the one that is being shown where its copy has not begun. Returns when none
    /// is being shown; after a while also when the window is stuck. The next call of `show` ends that.
    void withhold();

    /// Gives up the frame that has waited longest if nobody but the presenter holds it. False when there is none such.
    bool dropWaitingFrame();

private:
    struct Work;
    explicit VulkanPresenter(std::shared_ptr<Work> work);

    std::shared_ptr<Work> _work;
    std::thread _thread;
};

}  // namespace gpu::vulkan
