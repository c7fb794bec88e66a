#pragma once

#include "platform/gpu/vulkan/Vulkan.hpp"

#include <array>
#include <cstddef>

namespace gpu::vulkan {

/// Barriers of a command buffer that nothing needs yet, gathered so that one call records those at the end of a pass
/// together with those at the start of the next.
class PendingBarriers {
public:
    explicit PendingBarriers(const vk::raii::CommandBuffer& commands) : _commands(commands) {}

    /// Barriers of one image keep their order.
    void add(const vk::ImageMemoryBarrier2& barrier);
    /// Before any command that may depend on them.
    void record();
    /// When what was recorded is given up.
    void clear() { _count = 0; }

private:
    const vk::raii::CommandBuffer& _commands;
    std::array<vk::ImageMemoryBarrier2, 16> _barriers;
    std::size_t _count = 0;
};

}  // namespace gpu::vulkan
