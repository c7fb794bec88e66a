#pragma once

#include "foundation/QZLJournal.hpp"
#include "foundation/QZLStatistics.hpp"
#include "platform/DisplayLink.hpp"
#include "platform/Error.hpp"
#include "platform/HostView.hpp"
#include "platform/gpu/Backend.hpp"
#include "renderhost/QZLDrawContext.hpp"
#include "renderhost/QZLFader.hpp"
#include "renderhost/QZLSemaphore.hpp"
#include "renderhost/QZLStatisticsReference.hpp"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// The framework's base renderer: layer, command queue, frame loop, fade-in. A saver derives from it and draws in
/// `drawFrame`. Set-up, start, stop and properties belong to the main thread; `drawFrame`, `shouldSaveScreenshot` and
/// the fader to the display link's thread; GPU completion callbacks come on the queue's thread. Failures are returned
/// by attach; a frame that gets no drawable or command buffer is dropped, and its in-flight slot with it. Destructors
/// do not dispatch, so a renderer is made with `QZLMakeRenderer`, which detaches it before it dies.
class QZLMetalRenderer {
public:
    static constexpr std::int32_t inFlightSlots = 3;

    QZLMetalRenderer();
    virtual ~QZLMetalRenderer();
    QZLMetalRenderer(const QZLMetalRenderer&) = delete;
    QZLMetalRenderer& operator=(const QZLMetalRenderer&) = delete;

    // Hooks of a saver. A subclass extends attach and detach and calls the base.
    virtual void drawFrame(QZLDrawContext& context);
    virtual void configurationChanged();
    virtual bool shouldSaveScreenshot();
    /// Null on success. On any error the renderer has detached itself.
    virtual std::optional<platform::Error> attachToView(const std::shared_ptr<platform::HostView>& view, bool isPreview,
                                                        std::int64_t screenIndex,
                                                        std::shared_ptr<QZLStatistics> statistics);
    /// Safe to call at any time and repeatedly, also with frames in flight.
    virtual void detachFromView();

    void startAnimation();
    void stopAnimation();
    void sizeLayerToView();
    void resetFader();
    void resetFrameNumber();

    // The frame loop. Public for those who drive it by hand.
    std::optional<platform::Error> createDisplayLink();
    void startDisplayLink();
    void stopDisplayLink();
    void handleFrameRequired();
    void presentFrame();

    std::shared_ptr<platform::HostView> view() const { return _hostView.lock(); }
    std::shared_ptr<gpu::Layer> layer() const { return _metalLayer; }
    bool isAttached() const { return _isAttached; }
    std::uint64_t frameNumber() const { return _frameNumber.load(std::memory_order_relaxed); }

    std::shared_ptr<QZLJournal> journal() const;
    void setJournal(std::shared_ptr<QZLJournal> journal);
    bool screenshotsEnabled() const { return _screenshotsEnabled; }
    /// Takes effect on the layer at the next attach.
    void setScreenshotsEnabled(bool enabled) { _screenshotsEnabled = enabled; }
    bool shouldClearFrame() const { return _shouldClearFrame; }
    void setShouldClearFrame(bool shouldClear) { _shouldClearFrame = shouldClear; }
    gpu::ClearColor clearFrameColor() const;
    void setClearFrameColor(gpu::ClearColor color);
    /// Hz; 0 means the display's own rate. Read at attach.
    double requestedFrameRate() const { return _requestedFrameRate; }
    void setRequestedFrameRate(double frameRate) { _requestedFrameRate = frameRate; }
    double selectedFrameRate() const { return _selectedFrameRate; }
    /// Seconds. Read at attach.
    double fadeInTime() const { return _fadeInTime; }
    void setFadeInTime(double fadeInTime) { _fadeInTime = fadeInTime; }

    /// True when a display-link callback did not return in time: it may still be running, so this renderer and all that
    /// it owns must stay as they are for ever.
    bool isAbandoned() const { return _isAbandoned.load(std::memory_order_acquire); }

protected:
    template <typename... Arguments>
    void note(std::string_view format, Arguments&&... arguments) {
        if (const auto journal = this->journal()) {
            journal->addWithFormat(format, std::forward<Arguments>(arguments)...);
        }
    }

private:
    // Steps of attach and detach.
    void makeLayer();
    void installLayer(const std::shared_ptr<platform::HostView>& view);
    void releaseDrawingSurface();

    // Steps of the display link and of a frame.
    void selectFrameRate(double displayRate);
    std::shared_ptr<QZLStatistics> statistics() const { return _statistics->get(); }
    std::int32_t takeBufferIndex();
    std::optional<std::string> takeScreenshotPath();
    void addScheduledHandler(gpu::CommandBuffer& commandBuffer, std::int32_t index) const;
    void addCompletedHandler(gpu::CommandBuffer& commandBuffer, std::shared_ptr<gpu::Drawable> drawable,
                             std::int32_t index, std::optional<std::string> screenshotPath) const;
    void aimRenderPass(const gpu::Drawable& drawable);
    QZLDrawContext makeDrawContext(std::shared_ptr<gpu::CommandBuffer> commandBuffer,
                                   std::shared_ptr<gpu::Drawable> drawable, std::int32_t index);

    std::weak_ptr<platform::HostView> _hostView;
    bool _isAttached = false;
    std::shared_ptr<gpu::Layer> _metalLayer;
    const std::shared_ptr<QZLSemaphore> _inFlightSemaphore = QZLDispatchSemaphoreCreate(inFlightSlots);
    std::int32_t _bufferIndex = 0;
    std::shared_ptr<gpu::CommandQueue> _commandQueue;
    std::shared_ptr<gpu::RenderPassDescriptor> _renderPassDescriptor;
    std::unique_ptr<QZLFader> _fader;
    std::unique_ptr<platform::DisplayLink> _displayLink;
    std::int32_t _skipModulo = 0;
    std::int32_t _skipCounter = 0;
    std::atomic<std::uint64_t> _frameNumber{0};
    std::uint32_t _screenshotCounter = 0;
    const std::shared_ptr<QZLStatisticsReference> _statistics = std::make_shared<QZLStatisticsReference>();
    std::atomic<bool> _screenshotsEnabled{false};
    std::atomic<bool> _shouldClearFrame{true};
    std::shared_ptr<QZLJournal> _journal;
    std::atomic<double> _requestedFrameRate{0.0};
    std::atomic<double> _selectedFrameRate{0.0};
    std::atomic<double> _fadeInTime{0.0};
    gpu::ClearColor _clearFrameColor;
    std::atomic<bool> _isAbandoned{false};
    mutable std::mutex _propertyMutex;  // guards _journal and _clearFrameColor
};

/// Makes a renderer whose last owner detaches it before it is destroyed; an abandoned one is leaked on purpose.
template <typename Renderer, typename... Arguments>
std::shared_ptr<Renderer> QZLMakeRenderer(Arguments&&... arguments) {
    return std::shared_ptr<Renderer>(new Renderer(std::forward<Arguments>(arguments)...), [](Renderer* renderer) {
        renderer->detachFromView();
        if (!renderer->isAbandoned()) {
            delete renderer;
        }
    });
}
