#include "platform/gpu/CommandBuffer.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/Layer.hpp"

#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <utility>

namespace gpu {
namespace {

// Room for what frames use, so that these lists allocate only when the buffer is made.
constexpr std::size_t usualHandlers = 4;
constexpr std::size_t usualKept = 64;

constexpr const char* observerFailed = "an observer of frames failed";

void log(const char* what, const char* detail) noexcept {
    try {
        platform::systemLog(std::string("gpu: ") + what + ": " + detail);
    } catch (const std::exception&) {
        // Out of memory for a message: there is nobody left to tell.
    }
}

/// Calls what others have left behind. One of them that fails must neither end the thread nor skip the others.
template <typename Call>
void callSafely(const char* what, Call call) noexcept {
    try {
        call();
    } catch (const std::exception& error) {
        log(what, error.what());
    }
}

}  // namespace

CommandBuffer::CommandBuffer() {
    _scheduledHandlers.reserve(usualHandlers);
    _completedHandlers.reserve(usualHandlers);
    _kept.reserve(usualKept);
}

template <typename Encoder>
Encoder* CommandBuffer::open(Encoder* encoder) {
    if (encoder != nullptr) {
        encoder->_open = true;
        _openEncoder = encoder;
    }
    return encoder;
}

bool CommandBuffer::mayEncode(const char* operation) {
    if (status() != CommandBufferStatus::NotEnqueued) {
        log("refused after commit", operation);
        return false;
    }
    endOpenEncoder();
    return true;
}

void CommandBuffer::endOpenEncoder() {
    if (_openEncoder != nullptr) {
        std::exchange(_openEncoder, nullptr)->endEncoding();
    }
}

RenderCommandEncoder* CommandBuffer::renderCommandEncoder(const RenderPassDescriptor& descriptor) {
    if (!mayEncode("a render pass") || !acceptsTargets(descriptor) || !keepTargets(descriptor)) {
        return nullptr;
    }
    RenderCommandEncoder* encoder = open(beginRenderPass(descriptor));
    if (encoder != nullptr) {
        encoder->_hasPipeline = false;
    }
    return encoder;
}

/// The targets come first and without a gap, each fit to be one and no texture twice.
bool CommandBuffer::acceptsTargets(const RenderPassDescriptor& descriptor) {
    const auto& attachments = descriptor.colorAttachments;
    const auto isUsed = [](const ColorAttachment& attachment) { return attachment.texture != nullptr; };
    const auto end = std::find_if_not(attachments.begin(), attachments.end(), isUsed);
    bool accepted = end != attachments.begin() && std::none_of(end, attachments.end(), isUsed);
    for (auto attachment = attachments.begin(); accepted && attachment != end; ++attachment) {
        const auto isSame = [&](const ColorAttachment& other) { return other.texture == attachment->texture; };
        accepted = contains(attachment->texture->usage(), TextureUsage::RenderTarget) &&
                   std::none_of(attachments.begin(), attachment, isSame);
    }
    if (!accepted) {
        log("refused", "colour attachments that are none, no render targets, apart, or twice");
    }
    return accepted;
}

bool CommandBuffer::keepTargets(const RenderPassDescriptor& descriptor) {
    try {
        for (const ColorAttachment& attachment : descriptor.colorAttachments) {
            if (attachment.texture != nullptr) {
                _kept.push_back(attachment.texture);
            }
        }
        return true;
    } catch (const std::bad_alloc& error) {
        log("no render pass", error.what());
        return false;
    }
}

ComputeCommandEncoder* CommandBuffer::computeCommandEncoder() {
    ComputeCommandEncoder* encoder = mayEncode("a compute pass") ? open(beginComputePass()) : nullptr;
    if (encoder != nullptr) {
        encoder->_hasPipeline = false;
    }
    return encoder;
}

BlitCommandEncoder* CommandBuffer::blitCommandEncoder() {
    return mayEncode("a blit pass") ? open(beginBlitPass()) : nullptr;
}

void CommandBuffer::addScheduledHandler(Handler handler) {
    if (status() == CommandBufferStatus::NotEnqueued) {
        _scheduledHandlers.push_back(std::move(handler));
        didAddScheduledHandler();
    }
}

void CommandBuffer::addCompletedHandler(Handler handler) {
    if (status() == CommandBufferStatus::NotEnqueued) {
        _completedHandlers.push_back(std::move(handler));
        didAddCompletedHandler();
    }
}

void CommandBuffer::presentDrawable(std::shared_ptr<Drawable> drawable) {
    if (status() == CommandBufferStatus::NotEnqueued && drawable != nullptr) {
        _drawable = std::move(drawable);
        didPresent(*_drawable);
    }
}

void CommandBuffer::commit() {
    if (!mayEncode("a second commit")) {
        return;
    }
    _status.store(CommandBufferStatus::Committed, std::memory_order_release);
    notifyObserver(&FrameObserver::frameCommitted);
    submit();
}

void CommandBuffer::waitUntilCompleted() {
    if (status() != CommandBufferStatus::NotEnqueued) {
        waitForGpu();
    }
}

void CommandBuffer::didSchedule() {
    _status.store(CommandBufferStatus::Scheduled, std::memory_order_release);
    notifyObserver(&FrameObserver::frameScheduled);
    runHandlers(_scheduledHandlers);
}

void CommandBuffer::didComplete(bool succeeded) {
    _status.store(succeeded ? CommandBufferStatus::Completed : CommandBufferStatus::Error, std::memory_order_release);
    _kept.clear();
    // Held until the handlers have run: they may read the image back, so no new frame may be drawn into it before.
    const std::shared_ptr<Drawable> drawable = std::move(_drawable);
    if (drawable != nullptr) {
        if (const auto layer = drawable->layer()) {
            callSafely(observerFailed, [&] { layer->notifyCompleted(*drawable, succeeded); });
            if (succeeded) {
                callSafely("a frame could not be shown", [&] { layer->presentFinished(drawable); });
            }
        }
    }
    runHandlers(_completedHandlers);
}

void CommandBuffer::notifyObserver(void (FrameObserver::*event)(const Drawable&)) noexcept {
    if (_drawable == nullptr) {
        return;
    }
    if (const auto layer = _drawable->layer()) {
        callSafely(observerFailed, [&] { layer->notify(event, *_drawable); });
    }
}

void CommandBuffer::runHandlers(std::vector<Handler>& handlers) noexcept {
    for (Handler& handler : handlers) {
        callSafely("a handler of a command buffer failed", [&] { handler(*this); });
    }
    handlers.clear();
}

void CommandBuffer::prepareForReuse() {
    _scheduledHandlers.clear();
    _completedHandlers.clear();
    _kept.clear();
    _drawable.reset();
    if (_openEncoder != nullptr) {
        std::exchange(_openEncoder, nullptr)->_open = false;
    }
    _status.store(CommandBufferStatus::NotEnqueued, std::memory_order_release);
}

}  // namespace gpu
