#include "platform/gpu/CommandBuffer.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/Layer.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace gpu {

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
        platform::systemLog(std::string("gpu: refused: ") + operation + " after commit");
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
    if (!mayEncode("a render pass") || !acceptsTargets(descriptor)) {
        return nullptr;
    }
    for (const ColorAttachment& attachment : descriptor.colorAttachments) {
        if (attachment.texture != nullptr) {
            _kept.push_back(attachment.texture);
        }
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
        platform::systemLog("gpu: refused: colour attachments that are none, no render targets, apart, or twice");
    }
    return accepted;
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
    if (_drawable != nullptr) {
        if (const auto layer = _drawable->layer()) {
            layer->notify(&FrameObserver::frameCommitted, *_drawable);
        }
    }
    submit();
}

void CommandBuffer::waitUntilCompleted() {
    if (status() != CommandBufferStatus::NotEnqueued) {
        waitForGpu();
    }
}

void CommandBuffer::didSchedule() {
    _status.store(CommandBufferStatus::Scheduled, std::memory_order_release);
    if (_drawable != nullptr) {
        if (const auto layer = _drawable->layer()) {
            layer->notify(&FrameObserver::frameScheduled, *_drawable);
        }
    }
    for (Handler& handler : _scheduledHandlers) {
        handler(*this);
    }
    _scheduledHandlers.clear();
}

void CommandBuffer::didComplete(bool succeeded) {
    _status.store(succeeded ? CommandBufferStatus::Completed : CommandBufferStatus::Error, std::memory_order_release);
    _kept.clear();
    // Held until the handlers have run: they may read the image back, so no new frame may be drawn into it before.
    const std::shared_ptr<Drawable> drawable = std::move(_drawable);
    if (drawable != nullptr) {
        if (const auto layer = drawable->layer()) {
            layer->notifyCompleted(*drawable, succeeded);
            if (succeeded) {
                layer->presentFinished(drawable);
            }
        }
    }
    for (Handler& handler : _completedHandlers) {
        handler(*this);
    }
    _completedHandlers.clear();
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
