#include "renderhost/QZLMetalRenderer.hpp"

#include "foundation/QZLEnvironment.hpp"
#include "foundation/QZLError.hpp"
#include "renderhost/QZLConversion.hpp"
#include "renderhost/QZLRenderHostError.hpp"

QZLMetalRenderer::QZLMetalRenderer() = default;

QZLMetalRenderer::~QZLMetalRenderer() {
    QZLMetalRenderer::detachFromView();
}

void QZLMetalRenderer::drawFrame(QZLDrawContext&) {}

void QZLMetalRenderer::configurationChanged() {}

bool QZLMetalRenderer::shouldSaveScreenshot() {
    return false;
}

std::optional<platform::Error> QZLMetalRenderer::attachToView(const std::shared_ptr<platform::HostView>& view, bool,
                                                              std::int64_t, std::shared_ptr<QZLStatistics> statistics) {
    stopDisplayLink();  // when attached again: what frames use is replaced below
    if (isAbandoned()) {
        note("Failed to attach Metal renderer.");
        return QZLCreateVistashadeError(QZLErrorDisplayLinkCreate, platform::displayLinkAbandoned);
    }

    std::optional<platform::Error> error;
    const auto require = [&error](bool isThere, QZLRenderHostErrorCode code) {
        if (!isThere && !error) {
            QZLReportError(&error, code, 0);
        }
    };

    _hostView = view;
    _statistics->set(std::move(statistics));
    makeLayer();
    installLayer(view);
    require(_metalLayer != nullptr, QZLErrorMetalLayer);

    const auto device = _metalLayer != nullptr ? _metalLayer->device() : nullptr;
    _commandQueue = device != nullptr ? device->newCommandQueue() : nullptr;
    require(_commandQueue != nullptr, QZLErrorCommandQueue);

    _renderPassDescriptor = gpu::createRenderPassDescriptor();
    require(_renderPassDescriptor != nullptr, QZLErrorRenderPassDescriptor);

    if (!error) {
        error = createDisplayLink();
    }
    _fader = std::make_unique<QZLFader>(QZLTruncated<std::int32_t>(fadeInTime() * selectedFrameRate() + 0.5));

    if (error) {
        detachFromView();
        note("Failed to attach Metal renderer.");
        return error;
    }
    _isAttached = true;
    note("Attached Metal renderer successfully.");
    return std::nullopt;
}

/// Leaves the renderer without a layer where the platform is too old to have any.
void QZLMetalRenderer::makeLayer() {
    _metalLayer = QZLValidateMacOsVersion(10, 11, 0, nullptr) ? gpu::createLayer() : nullptr;
    if (_metalLayer == nullptr) {
        return;
    }
    const auto device = gpu::createSystemDefaultDevice();  // a missing one shows up as a missing command queue
    _metalLayer->setDevice(device);
    _metalLayer->setPixelFormat(gpu::PixelFormat::BGRA8Unorm);
    if (screenshotsEnabled()) {
        _metalLayer->setFramebufferOnly(false);
    }
    note("Metal device: %@", device != nullptr ? std::optional(device->name()) : std::nullopt);
    _metalLayer->setBackgroundColor(clearFrameColor());
}

void QZLMetalRenderer::installLayer(const std::shared_ptr<platform::HostView>& view) {
    if (_metalLayer == nullptr) {
        return;
    }
    if (view != nullptr) {
        view->setLayer(_metalLayer);
        view->setWantsLayer(true);
    }
    sizeLayerToView();
    const gpu::Extent size = _metalLayer->drawableSize();
    note("Drawable size: %d x %d.", size.width, size.height);
}

void QZLMetalRenderer::detachFromView() {
    stopDisplayLink();
    if (!isAbandoned()) {
        releaseDrawingSurface();
    }
    _hostView.reset();
    if (_isAttached) {
        note("Detached Metal renderer.");
    }
    _isAttached = false;
}

/// Frames that are still on the GPU hold what they need of it.
void QZLMetalRenderer::releaseDrawingSurface() {
    _displayLink.reset();
    _renderPassDescriptor.reset();
    _commandQueue.reset();
    _metalLayer.reset();
}

void QZLMetalRenderer::startAnimation() {
    note("Started animation.");
    startDisplayLink();
}

void QZLMetalRenderer::stopAnimation() {
    stopDisplayLink();
    note("Stopped animation.");
}

void QZLMetalRenderer::sizeLayerToView() {
    const auto view = this->view();
    if (_metalLayer == nullptr || view == nullptr) {
        return;
    }
    const platform::Rect backing = view->convertRectToBacking(view->bounds());
    _metalLayer->setDrawableSize({QZLWholePixels(backing.width), QZLWholePixels(backing.height)});
}

void QZLMetalRenderer::resetFader() {
    if (_fader != nullptr) {
        _fader->reset();
    }
}

void QZLMetalRenderer::resetFrameNumber() {
    _frameNumber.store(0, std::memory_order_relaxed);
}

std::shared_ptr<QZLJournal> QZLMetalRenderer::journal() const {
    const std::lock_guard lock(_propertyMutex);
    return _journal;
}

void QZLMetalRenderer::setJournal(std::shared_ptr<QZLJournal> journal) {
    const std::lock_guard lock(_propertyMutex);
    _journal.swap(journal);
}

gpu::ClearColor QZLMetalRenderer::clearFrameColor() const {
    const std::lock_guard lock(_propertyMutex);
    return _clearFrameColor;
}

void QZLMetalRenderer::setClearFrameColor(gpu::ClearColor color) {
    const std::lock_guard lock(_propertyMutex);
    _clearFrameColor = color;
}
