#include "platform/gpu/vulkan/VulkanPresenter.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/vulkan/DrawableRing.hpp"
#include "platform/gpu/vulkan/VulkanSurface.hpp"
#include "platform/gpu/vulkan/VulkanSwapchain.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace gpu::vulkan {
namespace {

using Frames = std::vector<std::shared_ptr<Drawable>>;

constexpr std::size_t mostWaiting = DrawableRing::maximumImages;

}  // namespace

/// What the thread works on. It holds this itself, so that it can be left behind.
struct VulkanPresenter::Work {
    explicit Work(PresentationTarget presentationTarget) : target(std::move(presentationTarget)) {
        waiting.reserve(mostWaiting);
    }

    void run() noexcept;
    std::shared_ptr<Drawable> waitForFrame();
    std::shared_ptr<Drawable> takeOldest();
    void noteShown();
    ShowResult show(const Drawable& drawable);
    ShowResult showInWindow(const VulkanTexture& picture);
    std::shared_ptr<const Overlay> currentOverlay();
    bool isWithheld();
    void prepareWindow();

    // The thread's own.
    PresentationTarget target;
    std::unique_ptr<VulkanSwapchain> swapchain;
    std::vector<std::shared_ptr<Device>> devices;  ///< all it met: none shall die on this thread

    // Shared.
    std::mutex mutex;
    std::condition_variable changed;
    Frames waiting;  ///< the oldest first
    std::shared_ptr<const Overlay> overlay;
    bool open = true;  ///< takes frames
    bool showing = false;
    bool withheld = false;
    bool ended = false;
};

void VulkanPresenter::Work::run() noexcept {
    while (const std::shared_ptr<Drawable> drawable = waitForFrame()) {
        const ShowResult result = show(*drawable);
        noteShown();
        if (result == ShowResult::WindowGone) {
            platform::systemLog("gpu: a window has gone; its frames are no longer shown");
            break;
        }
    }
    swapchain.reset();
    Frames unshown;
    const std::lock_guard lock(mutex);
    unshown.swap(waiting);
    open = false;
    ended = true;
    changed.notify_all();
}

std::shared_ptr<Drawable> VulkanPresenter::Work::waitForFrame() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return !waiting.empty() || !open; });
    showing = open;
    return open ? takeOldest() : nullptr;
}

/// Under the lock.
std::shared_ptr<Drawable> VulkanPresenter::Work::takeOldest() {
    std::shared_ptr<Drawable> oldest = std::move(waiting.front());
    waiting.erase(waiting.begin());
    return oldest;
}

void VulkanPresenter::Work::noteShown() {
    const std::lock_guard lock(mutex);
    showing = false;
    changed.notify_all();
}

ShowResult VulkanPresenter::Work::show(const Drawable& drawable) {
    const auto& picture = static_cast<const VulkanTexture&>(*drawable.texture());
    const ShowResult result =
        picture.vulkanDevice().attempt("a frame could not be shown", [&] { return showInWindow(picture); });
    if (result == ShowResult::Failed) {
        swapchain.reset();  // the next frame begins anew
    }
    return result;
}

ShowResult VulkanPresenter::Work::showInWindow(const VulkanTexture& picture) {
    VulkanDevice& device = picture.vulkanDevice();
    if (device.isLost()) {
        return ShowResult::Failed;
    }
    try {
        // A window has one swapchain at a time; a device that replaces a lost one makes its own.
        if (swapchain == nullptr || &swapchain->device() != &device) {
            swapchain.reset();
            if (std::ranges::find(devices, picture.device()) == devices.end()) {
                devices.push_back(picture.device());
            }
            swapchain = std::make_unique<VulkanSwapchain>(device.self(), target.window);
        }
        return swapchain->show(
            picture, currentOverlay(), [this] { return !isWithheld(); }, [this] { prepareWindow(); });
    } catch (const vk::SurfaceLostKHRError&) {
        return ShowResult::WindowGone;
    }
}

std::shared_ptr<const Overlay> VulkanPresenter::Work::currentOverlay() {
    const std::lock_guard lock(mutex);
    return overlay;
}

bool VulkanPresenter::Work::isWithheld() {
    const std::lock_guard lock(mutex);
    return withheld;
}

void VulkanPresenter::Work::prepareWindow() {
    if (const auto prepare = std::exchange(target.willPresentFirstFrame, nullptr)) {
        prepare();
    }
}

std::unique_ptr<VulkanPresenter> VulkanPresenter::start(PresentationTarget target) noexcept {
    if (!isWindow(target.window)) {
        return nullptr;
    }
    try {
        return std::unique_ptr<VulkanPresenter>(new VulkanPresenter(std::make_shared<Work>(std::move(target))));
    } catch (const std::exception& error) {
        platform::systemLog(std::string("gpu: frames cannot be shown: ") + error.what());
        return nullptr;
    }
}

VulkanPresenter::VulkanPresenter(std::shared_ptr<Work> work)
    : _work(std::move(work)), _thread([own = _work] {
          VulkanDevice::leaveOpenOnThisThread();  // left behind, it may be the last to hold one
          own->run();
      }) {}

VulkanPresenter::~VulkanPresenter() {
    Frames unshown;
    std::unique_lock lock(_work->mutex);
    unshown.swap(_work->waiting);
    _work->open = false;
    _work->changed.notify_all();
    lock.unlock();
    unshown.clear();  // whoever waits for an image shall have it at once
    lock.lock();
    const bool onItsThread = _thread.get_id() == std::this_thread::get_id();
    const bool ended = !onItsThread && _work->changed.wait_for(lock, patience, [this] { return _work->ended; });
    lock.unlock();
    if (ended) {
        _thread.join();
        return;
    }
    if (!onItsThread) {
        platform::systemLog("gpu: a window does not let go of its last frame; left as it is");
    }
    _thread.detach();
}

void VulkanPresenter::show(std::shared_ptr<Drawable> drawable) {
    std::shared_ptr<Drawable> unshown;
    const std::lock_guard lock(_work->mutex);
    if (!_work->open) {
        return;
    }
    if (_work->waiting.size() == mostWaiting) {
        unshown = _work->takeOldest();
    }
    _work->withheld = false;
    _work->waiting.push_back(std::move(drawable));
    _work->changed.notify_all();
}

bool VulkanPresenter::hasWaitingFrames() {
    const std::lock_guard lock(_work->mutex);
    return !_work->waiting.empty();
}

void VulkanPresenter::withhold() {
    constexpr std::chrono::milliseconds settlingPatience{100};
    Frames unshown;
    unshown.reserve(mostWaiting);
    std::unique_lock lock(_work->mutex);
    _work->withheld = true;
    unshown.swap(_work->waiting);
    lock.unlock();
    unshown.clear();  // whoever waits for an image shall have it at once
    lock.lock();
    _work->changed.wait_for(lock, settlingPatience, [this] { return !_work->showing; });
}

void VulkanPresenter::setOverlay(std::shared_ptr<const Overlay> overlay) {
    const std::lock_guard lock(_work->mutex);
    _work->overlay.swap(overlay);
}

bool VulkanPresenter::dropWaitingFrame() {
    std::shared_ptr<Drawable> unshown;
    const std::lock_guard lock(_work->mutex);
    if (_work->waiting.empty() || _work->waiting.front().use_count() != 1) {
        return false;
    }
    unshown = _work->takeOldest();
    return true;
}

}  // namespace gpu::vulkan
