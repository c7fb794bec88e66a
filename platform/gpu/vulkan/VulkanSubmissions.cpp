#include "platform/gpu/vulkan/VulkanSubmissions.hpp"

#include "platform/gpu/vulkan/VulkanCommandBuffer.hpp"

#include <atomic>
#include <limits>
#include <utility>

namespace gpu::vulkan {
namespace {

/// True when nobody else holds it, and all that the last one to do so has written can be seen.
bool isUnused(const std::shared_ptr<VulkanCommandBuffer>& pooled) {
    if (pooled.use_count() != 1) {
        return false;
    }
    // The count is read without any order.
#ifndef __SANITIZE_THREAD__  // which knows no fences, but the order that copying a pointer has in this library
    std::atomic_thread_fence(std::memory_order_acquire);
#endif
    return true;
}

/// None on a device that lacks features, where nothing is ever sent to the GPU.
vk::raii::Semaphore makeTimeline(const VulkanDevice& device) {
    if (!device.hasAllFeatures()) {
        return nullptr;
    }
    const vk::SemaphoreTypeCreateInfo timeline{.semaphoreType = vk::SemaphoreType::eTimeline};
    return {device.handle(), vk::SemaphoreCreateInfo{.pNext = &timeline}};
}

}  // namespace

VulkanSubmissions::VulkanSubmissions(std::shared_ptr<VulkanDevice> device)
    : _device(std::move(device)), _timeline(makeTimeline(*_device)) {}

VulkanSubmissions::~VulkanSubmissions() = default;

std::shared_ptr<VulkanCommandBuffer> VulkanSubmissions::unusedCommandBuffer() {
    const std::lock_guard lock(_mutex);
    for (const std::shared_ptr<VulkanCommandBuffer>& pooled : _pool) {
        if (isUnused(pooled)) {
            return pooled;
        }
    }
    _pool.push_back(std::make_shared<VulkanCommandBuffer>(_device, weak_from_this()));
    return _pool.back();
}

bool VulkanSubmissions::commit(std::shared_ptr<VulkanCommandBuffer> buffer, bool recorded) {
    vk::Result result = vk::Result::eSuccess;
    {
        const std::lock_guard lock(_commitMutex);
        if (_closed) {
            return false;
        }
        if (recorded) {
            result = send(*buffer);
        }
        append(std::move(buffer));
    }
    _device->attempt("a command buffer could not be submitted", [result] {
        vk::resultCheck(result, "vkQueueSubmit2");
        return true;
    });
    return true;
}

vk::Result VulkanSubmissions::send(VulkanCommandBuffer& buffer) noexcept {
    const std::uint64_t value = _lastTimelineValue + 1;
    const vk::CommandBufferSubmitInfo commands{.commandBuffer = *buffer.commands()};
    const vk::SemaphoreSubmitInfo finished{
        .semaphore = *_timeline, .value = value, .stageMask = vk::PipelineStageFlagBits2::eAllCommands};
    const vk::Result result = _device->trySubmit({.commandBufferInfoCount = 1,
                                                  .pCommandBufferInfos = &commands,
                                                  .signalSemaphoreInfoCount = 1,
                                                  .pSignalSemaphoreInfos = &finished});
    if (result == vk::Result::eSuccess) {
        _lastTimelineValue = value;
        buffer._timelineValue.store(value, std::memory_order_release);
    }
    return result;
}

void VulkanSubmissions::append(std::shared_ptr<VulkanCommandBuffer> buffer) {
    {
        const std::lock_guard lock(_mutex);
        VulkanCommandBuffer* const appended = buffer.get();
        (_first == nullptr ? _first : _last->_next) = std::move(buffer);
        _last = appended;
    }
    _changed.notify_one();
}

std::shared_ptr<VulkanCommandBuffer> VulkanSubmissions::waitForNext() {
    std::unique_lock lock(_mutex);
    _changed.wait(lock, [this] { return _first != nullptr || _closed; });
    std::shared_ptr<VulkanCommandBuffer> next = std::move(_first);
    if (next != nullptr) {
        _first = std::move(next->_next);
    }
    return next;
}

void VulkanSubmissions::completeUntilClosed() {
    while (const std::shared_ptr<VulkanCommandBuffer> buffer = waitForNext()) {
        buffer->complete(*this);
    }
}

bool VulkanSubmissions::wait(std::uint64_t timelineValue) noexcept {
    const bool waited = _device->attempt("the GPU could not be waited for", [this, timelineValue] {
        const vk::Semaphore timeline = *_timeline;
        const vk::SemaphoreWaitInfo info{.semaphoreCount = 1, .pSemaphores = &timeline, .pValues = &timelineValue};
        constexpr std::uint64_t forEver = std::numeric_limits<std::uint64_t>::max();
        return _device->handle().waitSemaphores(info, forEver) == vk::Result::eSuccess;
    });
    if (!waited) {
        _device->waitIdle();  // nothing may be freed that the GPU still uses
    }
    return waited;
}

void VulkanSubmissions::close() {
    {
        const std::scoped_lock lock(_commitMutex, _mutex);
        _closed = true;
    }
    _changed.notify_one();
}

void VulkanSubmissions::setLabel(const std::string& label) {
    if (*_timeline) {
        _device->setName(*_timeline, label);
    }
}

}  // namespace gpu::vulkan
