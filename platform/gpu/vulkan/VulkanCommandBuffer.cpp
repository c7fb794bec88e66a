#include "platform/gpu/vulkan/VulkanCommandBuffer.hpp"

#include <utility>

namespace gpu::vulkan {

VulkanCommandBuffer::VulkanCommandBuffer(std::shared_ptr<VulkanDevice> device,
                                         std::weak_ptr<VulkanSubmissions> submissions)
    : _device(std::move(device)),
      _submissions(std::move(submissions)),
      _commands(_device->makeCommands()),
      _descriptors(_device->handle(), _device->bindings()),
      _barriers(_commands.buffer),
      _renderEncoder(*this),
      _computeEncoder(*this),
      _blitEncoder(*this) {}

void VulkanCommandBuffer::begin() {
    prepareForReuse();
    _timelineValue.store(0, std::memory_order_release);
    _hasLabel = false;
    _topology.reset();
    _barriers.clear();
    _descriptors.recycle();
    _commands.pool.reset();
    commands().begin({.flags = vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
}

// On a lost device nothing is encoded: textures may be stand-ins there.

RenderCommandEncoder* VulkanCommandBuffer::beginRenderPass(const RenderPassDescriptor& descriptor) {
    if (_device->isLost()) {
        return nullptr;
    }
    _renderEncoder.begin(descriptor);
    return &_renderEncoder;
}

ComputeCommandEncoder* VulkanCommandBuffer::beginComputePass() {
    // Its end records a barrier. (The other passes need a texture to record anything.)
    if (!_device->hasAllFeatures() || _device->isLost()) {
        return nullptr;
    }
    _barriers.record();
    _computeEncoder.begin();
    return &_computeEncoder;
}

BlitCommandEncoder* VulkanCommandBuffer::beginBlitPass() {
    if (_device->isLost()) {
        return nullptr;
    }
    _barriers.record();
    return &_blitEncoder;
}

void VulkanCommandBuffer::submit() {
    const bool recorded = _device->attempt("a command buffer could not be recorded", [this] {
        _barriers.record();
        commands().end();
        return true;
    });
    const std::shared_ptr<VulkanSubmissions> submissions = _submissions.lock();
    if (submissions == nullptr || !submissions->commit(shared_from_this(), recorded)) {
        didSchedule();
        didComplete(false);
    }
}

void VulkanCommandBuffer::complete(VulkanSubmissions& submissions) {
    didSchedule();
    const std::uint64_t value = _timelineValue.load(std::memory_order_acquire);
    didComplete(value != 0 && submissions.wait(value));
}

void VulkanCommandBuffer::waitForGpu() {
    const std::uint64_t value = _timelineValue.load(std::memory_order_acquire);
    // A queue that has gone waited for all its buffers.
    if (const auto submissions = _submissions.lock(); submissions != nullptr && value != 0) {
        submissions->wait(value);
    }
}

void VulkanCommandBuffer::setTopology(vk::PrimitiveTopology topology) {
    if (_topology != topology) {
        commands().setPrimitiveTopology(topology);
        _topology = topology;
    }
}

void VulkanCommandBuffer::beginLabel(std::string_view label) {
    if (_device->hasDebugLabels()) {
        endLabel();
        _label = label;
        commands().beginDebugUtilsLabelEXT({.pLabelName = _label.c_str()});
        _hasLabel = true;
    }
}

void VulkanCommandBuffer::endLabel() {
    if (std::exchange(_hasLabel, false)) {
        commands().endDebugUtilsLabelEXT();
    }
}

}  // namespace gpu::vulkan
