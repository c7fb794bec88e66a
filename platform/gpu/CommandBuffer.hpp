#pragma once

#include "platform/InplaceFunction.hpp"
#include "platform/gpu/CommandEncoder.hpp"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace gpu {

class Drawable;
class FrameObserver;

enum class CommandBufferStatus : std::uint32_t {
    NotEnqueued = 0,
    Committed = 2,
    Scheduled = 3,
    Completed = 4,
    Error = 5,
};

/// One submission to the GPU: encode, add handlers, commit once. Encoding belongs to one thread. Everything it uses
/// stays alive until the GPU has finished it. Handlers run with no lock held on the queue's completion thread, in the
/// order added: the scheduled ones when the queue's preceding buffer has completed (at commit when there is none), the
/// completed ones exactly once, also when the submission failed; both are dropped, with what they captured, afterwards.
/// What a handler throws is logged and keeps none of the others from running.
class CommandBuffer {
public:
    using Handler = platform::InplaceFunction<void(CommandBuffer&), 128>;

    CommandBuffer(const CommandBuffer&) = delete;
    CommandBuffer& operator=(const CommandBuffer&) = delete;
    virtual ~CommandBuffer() = default;

    /// An open encoder, or null when the buffer was committed, an attachment of the descriptor cannot be used, the
    /// device lacks features or is lost, or memory ran out. In any case the encoder that was open before has ended.
    RenderCommandEncoder* renderCommandEncoder(const RenderPassDescriptor& descriptor);
    ComputeCommandEncoder* computeCommandEncoder();
    BlitCommandEncoder* blitCommandEncoder();

    /// Up to four of each kind take no memory; more may throw std::bad_alloc and are then not added. So may an
    /// encoder's function that takes a resource, once the buffer uses more than 64 of them; it then encodes nothing.
    void addScheduledHandler(Handler handler);
    void addCompletedHandler(Handler handler);

    /// Hands the drawable to its layer for showing once the GPU has finished this buffer.
    void presentDrawable(std::shared_ptr<Drawable> drawable);

    void commit();

    /// Blocks until the GPU has finished; may be called on a completion thread. Handlers may still be running. Returns
    /// at once for a buffer that was not committed.
    void waitUntilCompleted();

    CommandBufferStatus status() const { return _status.load(std::memory_order_acquire); }

protected:
    /// Throws std::bad_alloc.
    CommandBuffer();

    /// For backends: the buffer reached this stage. Runs and drops the handlers of that stage on the calling thread.
    void didSchedule();
    void didComplete(bool succeeded);

    /// For backends that use buffers again: back to the state after construction. Keeps the memory of its lists.
    void prepareForReuse();

private:
    friend class CommandEncoder;
    virtual RenderCommandEncoder* beginRenderPass(const RenderPassDescriptor& descriptor) = 0;
    virtual ComputeCommandEncoder* beginComputePass() = 0;
    virtual BlitCommandEncoder* beginBlitPass() = 0;
    /// Submits. Whatever happens, `didSchedule` and `didComplete` must follow, in this order.
    virtual void submit() = 0;
    virtual void waitForGpu() = 0;
    /// For backends that want to see what a buffer is given besides its passes.
    virtual void didAddScheduledHandler() {}
    virtual void didAddCompletedHandler() {}
    virtual void didPresent(const Drawable&) {}

    template <typename Encoder>
    Encoder* open(Encoder* encoder);
    bool mayEncode(const char* operation);
    void endOpenEncoder();
    bool acceptsTargets(const RenderPassDescriptor& descriptor);
    bool keepTargets(const RenderPassDescriptor& descriptor);
    void notifyObserver(void (FrameObserver::*event)(const Drawable&)) noexcept;
    void runHandlers(std::vector<Handler>& handlers) noexcept;

    std::vector<Handler> _scheduledHandlers;
    std::vector<Handler> _completedHandlers;
    std::vector<std::shared_ptr<const void>> _kept;
    std::shared_ptr<Drawable> _drawable;
    CommandEncoder* _openEncoder = nullptr;
    std::atomic<CommandBufferStatus> _status{CommandBufferStatus::NotEnqueued};
};

/// Orders command buffers: they execute and complete in the order committed. May be used from any thread.
class CommandQueue : public Resource {
public:
    /// A buffer to encode into, or null when none could be made. Still succeeds on a lost device.
    std::shared_ptr<CommandBuffer> commandBuffer() { return makeCommandBuffer(); }

protected:
    using Resource::Resource;

private:
    virtual std::shared_ptr<CommandBuffer> makeCommandBuffer() = 0;
};

}  // namespace gpu
