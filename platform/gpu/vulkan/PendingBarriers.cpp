#include "platform/gpu/vulkan/PendingBarriers.hpp"

#include <algorithm>
#include <cstdint>

namespace gpu::vulkan {

void PendingBarriers::add(const vk::ImageMemoryBarrier2& barrier) {
    const auto end = _barriers.begin() + static_cast<std::ptrdiff_t>(_count);
    const bool isSecond = std::any_of(_barriers.begin(), end, [&barrier](const vk::ImageMemoryBarrier2& pending) {
        return pending.image == barrier.image;
    });
    if (isSecond || end == _barriers.end()) {
        record();  // the barriers of one call have no order among themselves
    }
    _barriers[_count++] = barrier;
}

void PendingBarriers::record() {
    if (_count > 0) {
        _commands.pipelineBarrier2(
            {.imageMemoryBarrierCount = static_cast<std::uint32_t>(_count), .pImageMemoryBarriers = _barriers.data()});
        _count = 0;
    }
}

}  // namespace gpu::vulkan
