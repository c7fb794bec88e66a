#pragma once

#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace gpu::vulkan {

class VulkanCommandBuffer;

/// What a command queue has in flight, and the command buffers it uses again. Shared by the queue and its completion
/// thread; command buffers know it weakly, so that none of them ever ends its own queue. Any thread.
class VulkanSubmissions : public std::enable_shared_from_this<VulkanSubmissions> {
public:
    /// Throws.
    explicit VulkanSubmissions(std::shared_ptr<VulkanDevice> device);
    ~VulkanSubmissions();

    /// One that nobody holds and the GPU has finished, else a new one. Throws.
    std::shared_ptr<VulkanCommandBuffer> unusedCommandBuffer();

    /// Sends the buffer to the GPU if it was `recorded` well, and in any case puts it last in the line for completion.
    /// False when the line is closed: the buffer is then left as it was.
    bool commit(std::shared_ptr<VulkanCommandBuffer> buffer, bool recorded);

    /// Blocks until the GPU has reached that value of the timeline. False when it never will.
    bool wait(std::uint64_t timelineValue) noexcept;

    /// The completion thread's life: completes committed buffers in order until the line is closed and empty.
    void completeUntilClosed();
    /// Nothing can be committed from now on.
    void close();

    void setLabel(const std::string& label);

private:
    vk::Result send(VulkanCommandBuffer& buffer) noexcept;
    void append(std::shared_ptr<VulkanCommandBuffer> buffer);
    std::shared_ptr<VulkanCommandBuffer> waitForNext();

    const std::shared_ptr<VulkanDevice> _device;
    const vk::raii::Semaphore _timeline;

    /// Held while a buffer is sent, which may take long, so that the line keeps the order of the timeline.
    std::mutex _commitMutex;
    std::uint64_t _lastTimelineValue = 0;

    std::mutex _mutex;
    std::condition_variable _changed;
    bool _closed = false;  ///< written under both mutexes
    std::shared_ptr<VulkanCommandBuffer> _first;
    VulkanCommandBuffer* _last = nullptr;
    std::vector<std::shared_ptr<VulkanCommandBuffer>> _pool;
};

}  // namespace gpu::vulkan
