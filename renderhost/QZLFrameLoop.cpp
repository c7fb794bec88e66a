// The frame loop: which refreshes of the display become frames, and the life of a frame.
#include "foundation/QZLBundle.hpp"
#include "foundation/QZLError.hpp"
#include "platform/SystemLog.hpp"
#include "renderhost/QZLConversion.hpp"
#include "renderhost/QZLFileSystem.hpp"
#include "renderhost/QZLMetalRenderer.hpp"
#include "renderhost/QZLRenderHostError.hpp"
#include "renderhost/QZLScreenshot.hpp"

#include <exception>

namespace {

constexpr double unknownPeriod = 0.01;  // seconds
constexpr std::int32_t screenshotLimit = 1000;

/// Seconds from one refresh to the next.
double refreshPeriod(const platform::DisplayLink& link) {
    const platform::RefreshPeriod period = link.nominalOutputVideoRefreshPeriod();
    const bool isKnown = period.timeValue != 0 && period.timeScale != 0;
    return isKnown ? static_cast<double>(period.timeValue) / static_cast<double>(period.timeScale) : unknownPeriod;
}

/// The link's thread is not ours to unwind: a frame that throws is lost, and its slot with it.
int displayLinkOutput(platform::DisplayLink*, const platform::DisplayTime*, const platform::DisplayTime*, std::uint64_t,
                      std::uint64_t*, void* context) {
    try {
        static_cast<QZLMetalRenderer*>(context)->handleFrameRequired();
    } catch (const std::exception& error) {
        platform::systemLog("A frame was dropped.");
        platform::systemLog(error.what());
    }
    return platform::displayLinkSuccess;
}

}  // namespace

std::optional<platform::Error> QZLMetalRenderer::createDisplayLink() {
    const auto view = this->view();
    int result = platform::displayLinkInvalidArgument;
    if (view != nullptr) {
        result = view->createDisplayLink(view->screenNumber().value_or(0), _displayLink);
    }
    if (result != platform::displayLinkSuccess || _displayLink == nullptr) {
        _displayLink.reset();
        return QZLCreateVistashadeError(QZLErrorDisplayLinkCreate, result);
    }
    selectFrameRate(1.0 / refreshPeriod(*_displayLink));
    result = _displayLink->setOutputCallback(displayLinkOutput, this);
    if (result != platform::displayLinkSuccess) {
        _displayLink.reset();
        return QZLCreateVistashadeError(QZLErrorDisplayLinkCallback, result);
    }
    return std::nullopt;
}

/// The display's own rate, or the whole fraction of it that comes close to the requested one.
void QZLMetalRenderer::selectFrameRate(double displayRate) {
    const double requested = requestedFrameRate();
    if (requested == 0.0) {
        _skipModulo = 1;
        _selectedFrameRate = displayRate;
        note("Requested display native frame rate, selected frame rate %.2lf Hz.", selectedFrameRate());
        return;
    }
    const auto refreshesPerFrame = QZLTruncated<std::int32_t>(displayRate / requested + 0.5);
    _skipModulo = refreshesPerFrame > 0 ? refreshesPerFrame : 1;
    _selectedFrameRate = displayRate / _skipModulo;
    note("Requested frame rate %.2lf Hz, selected frame rate %.2lf Hz.", requested, selectedFrameRate());
}

void QZLMetalRenderer::startDisplayLink() {
    if (!isAbandoned()) {
        platform::displayLinkStart(_displayLink.get());
    }
}

void QZLMetalRenderer::stopDisplayLink() {
    if (_displayLink == nullptr || isAbandoned()) {
        return;
    }
    if (_displayLink->stop() == platform::displayLinkAbandoned) {
        _isAbandoned.store(true, std::memory_order_release);
    }
}

void QZLMetalRenderer::handleFrameRequired() {
    if (_skipCounter == 0) {
        presentFrame();
        if (const auto statistics = this->statistics()) {
            statistics->recordFramePresented();
        }
    }
    const std::int32_t next = _skipCounter + 1;
    _skipCounter = next < _skipModulo ? next : 0;
}

void QZLMetalRenderer::presentFrame() {
    _inFlightSemaphore->acquire();
    if (isAbandoned()) {
        return;
    }

    // Without a drawable or a command buffer the frame is dropped and its slot stays taken.
    const auto drawable = _metalLayer != nullptr ? _metalLayer->nextDrawable() : nullptr;
    if (drawable == nullptr) {
        return;
    }
    const std::int32_t index = takeBufferIndex();
    std::optional<std::string> screenshotPath = takeScreenshotPath();
    const auto statistics = this->statistics();
    if (statistics != nullptr) {
        statistics->notifyFrameStarted(index);
    }
    const auto commandBuffer = _commandQueue != nullptr ? _commandQueue->commandBuffer() : nullptr;
    if (commandBuffer == nullptr) {
        return;
    }

    if (statistics != nullptr) {
        addScheduledHandler(*commandBuffer, index);
    }
    addCompletedHandler(*commandBuffer, drawable, index, std::move(screenshotPath));
    aimRenderPass(*drawable);
    QZLDrawContext context = makeDrawContext(commandBuffer, drawable, index);
    drawFrame(context);

    commandBuffer->presentDrawable(drawable);
    if (statistics != nullptr) {
        statistics->notifyFrameQueued(index);
    }
    commandBuffer->commit();
}

/// The slots take turns.
std::int32_t QZLMetalRenderer::takeBufferIndex() {
    const std::int32_t index = _bufferIndex;
    _bufferIndex = index >= inFlightSlots - 1 ? 0 : index + 1;
    return index;
}

/// Where this frame shall be saved, if it shall.
std::optional<std::string> QZLMetalRenderer::takeScreenshotPath() {
    if (!screenshotsEnabled() || !shouldSaveScreenshot()) {
        return std::nullopt;
    }
    return QZLNextAvailableFileName(QZLLocationDesktop, QZLSaverBundleString("CFBundleName"), ".bmp",
                                    _screenshotCounter, screenshotLimit);
}

// The handlers hold what they need and not the renderer, which may have gone when they run; of the frame the drawable,
// so that its image is not drawn into again before it is saved.

void QZLMetalRenderer::addScheduledHandler(gpu::CommandBuffer& commandBuffer, std::int32_t index) const {
    commandBuffer.addScheduledHandler([reference = _statistics, index](gpu::CommandBuffer&) {
        if (const auto statistics = reference->get()) {
            statistics->notifyFrameScheduled(index);
        }
    });
}

void QZLMetalRenderer::addCompletedHandler(gpu::CommandBuffer& commandBuffer, std::shared_ptr<gpu::Drawable> drawable,
                                           std::int32_t index, std::optional<std::string> screenshotPath) const {
    commandBuffer.addCompletedHandler([path = std::move(screenshotPath), drawable = std::move(drawable),
                                       reference = _statistics, semaphore = _inFlightSemaphore,
                                       index](gpu::CommandBuffer&) {
        if (path) {
            QZLSaveScreenshot(*path, drawable->texture());
        }
        if (const auto statistics = reference->get()) {
            statistics->notifyFrameCompleted(index);
        }
        semaphore->release();
    });
}

void QZLMetalRenderer::aimRenderPass(const gpu::Drawable& drawable) {
    gpu::ColorAttachment& attachment = _renderPassDescriptor->colorAttachments[0];
    attachment.texture = drawable.texture();
    attachment.loadAction = shouldClearFrame() ? gpu::LoadAction::Clear : gpu::LoadAction::DontCare;
    attachment.clearColor = clearFrameColor();
    attachment.storeAction = gpu::StoreAction::Store;
}

QZLDrawContext QZLMetalRenderer::makeDrawContext(std::shared_ptr<gpu::CommandBuffer> commandBuffer,
                                                 std::shared_ptr<gpu::Drawable> drawable, std::int32_t index) {
    QZLDrawContext context(std::move(commandBuffer), _renderPassDescriptor, std::move(drawable));
    context.setBufferIndex(index);
    context.setBrightness(_fader->level());
    context.setFrameNumber(_frameNumber.fetch_add(1, std::memory_order_relaxed));
    return context;
}
