#include "tests/support/FakeCommandBuffer.hpp"

#include "platform/gpu/Layer.hpp"

namespace fake {

CommandBuffer::CommandBuffer(std::shared_ptr<Device> device, std::shared_ptr<Submissions::Line> line)
    : _device(std::move(device)), _line(std::move(line)) {}

gpu::RenderCommandEncoder* CommandBuffer::beginRenderPass(const gpu::RenderPassDescriptor& descriptor) {
    if (!attemptEncoder("render " + targetsOf(descriptor))) {
        return nullptr;
    }
    _renderEncoder.begin(descriptor);
    return &_renderEncoder;
}

gpu::ComputeCommandEncoder* CommandBuffer::beginComputePass() {
    return attemptEncoder("compute") ? &_computeEncoder : nullptr;
}

gpu::BlitCommandEncoder* CommandBuffer::beginBlitPass() {
    return attemptEncoder("blit") ? &_blitEncoder : nullptr;
}

bool CommandBuffer::attemptEncoder(const std::string& call) {
    Gpu::State& state = _device->state();
    return state.attempt(call, state.next(&Gpu::State::Counts::encoders, &FaultPlan::failingEncoders));
}

void CommandBuffer::submit() {
    record("commit");
    keepDraws();
    _device->noteCommit();
    Gpu::State& state = _device->state();
    bool completesAtCommit = _device->isLost();
    {
        const std::lock_guard lock(state.mutex);
        completesAtCommit = completesAtCommit || state.completesAtCommit;
    }
    state.submissions.commit(*_line, shared_from_this(), completesAtCommit);
}

void CommandBuffer::keepDraws() {
    for (auto& [draw, buffers] : _draws) {
        for (const auto& [index, bound] : buffers) {
            const auto& [buffer, offset] = bound;
            draw.fragmentBuffers[index].assign(buffer->contents() + offset, buffer->contents() + buffer->length());
        }
        const std::lock_guard lock(_device->state().mutex);
        _device->state().draws.push_back(std::move(draw));
    }
    _draws.clear();
}

void CommandBuffer::waitForGpu() {
    _device->state().submissions.finish(*_line, *this);
}

void CommandBuffer::didPresent(const gpu::Drawable& drawable) {
    record("present " + std::to_string(drawable.identifier()));
}

void CommandBuffer::work() {
    const std::lock_guard lock(_workMutex);
    if (!_device->isLost()) {
        for (const std::function<void()>& step : _work) {
            step();
        }
    }
    _work.clear();
}

void CommandBuffer::complete(bool succeeded) {
    if (succeeded) {
        work();
    }
    {
        const std::lock_guard lock(_workMutex);
        _work.clear();
    }
    didComplete(succeeded && !_device->isLost());
}

CommandQueue::CommandQueue(const std::shared_ptr<Device>& device)
    : gpu::CommandQueue(device), _line(device->state().submissions.newLine()) {}

std::shared_ptr<gpu::CommandBuffer> CommandQueue::makeCommandBuffer() {
    const auto owner = std::static_pointer_cast<Device>(device());
    const bool succeeds = owner->state().next(&Gpu::State::Counts::commandBuffers, &FaultPlan::failingCommandBuffers);
    return owner->state().attempt("commandBuffer", succeeds) ? owner->state().make<CommandBuffer>(owner, _line)
                                                             : nullptr;
}

}  // namespace fake
