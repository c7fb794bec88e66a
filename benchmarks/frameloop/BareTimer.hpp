#pragma once

#include "benchmarks/frameloop/BareDevice.hpp"

#include <cstdint>

namespace bench {

/// The device's own clock, read at marks between commands.
class BareTimer {
public:
    /// Throws std::runtime_error when the device's queue has no clock.
    BareTimer(const BareDevice& device, std::uint32_t marks);

    /// Recorded before marks are made anew, outside of passes.
    void reset(const vk::raii::CommandBuffer& commands, std::uint32_t firstMark, std::uint32_t count) const;
    /// Recorded outside of passes. All that is before it completes before the time is taken, and nothing of what is
    /// after it begins earlier.
    void mark(const vk::raii::CommandBuffer& commands, std::uint32_t mark) const;
    /// From one mark to the next one; both must have completed.
    double millisecondsAfter(std::uint32_t mark) const;

private:
    double _millisecondsPerTick;
    std::uint64_t _validBits;
    vk::raii::QueryPool _queries;
};

}  // namespace bench
