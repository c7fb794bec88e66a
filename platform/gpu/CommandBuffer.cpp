#include "platform/gpu/CommandBuffer.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/Layer.hpp"

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
    if (!mayEncode("a render pass") || descriptor.colorAttachments.front().texture == nullptr) {
        return nullptr;
    }
    for (const ColorAttachment& attachment : descriptor.colorAttachments) {
        if (attachment.texture != nullptr) {
            if (!contains(attachment.texture->usage(), TextureUsage::RenderTarget)) {
                platform::systemLog("gpu: refused: a colour attachment that is no render target");
                return nullptr;
            }
            _kept.push_back(attachment.texture);
        }
    }
    RenderCommandEncoder* encoder = open(beginRenderPass(descriptor));
    if (encoder != nullptr) {
        encoder->_hasPipeline = false;
    }
    return encoder;
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
    }
}

void CommandBuffer::addCompletedHandler(Handler handler) {
    if (status() == CommandBufferStatus::NotEnqueued) {
        _completedHandlers.push_back(std::move(handler));
    }
}

void CommandBuffer::presentDrawable(std::shared_ptr<Drawable> drawable) {
    if (status() == CommandBufferStatus::NotEnqueued) {
        _drawable = std::move(drawable);
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
    if (_drawable != nullptr) {
        if (const auto layer = _drawable->layer()) {
            layer->notifyCompleted(*_drawable, succeeded);
            if (succeeded) {
                layer->presentFinished(std::move(_drawable));
            }
        }
        _drawable.reset();
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
    _openEncoder = nullptr;
    _status.store(CommandBufferStatus::NotEnqueued, std::memory_order_release);
}

bool CommandBuffer::hasHandlersOrDrawable() const {
    return !_scheduledHandlers.empty() || !_completedHandlers.empty() || _drawable != nullptr;
}

}  // namespace gpu
