#include "benchmarks/frameloop/BareTimer.hpp"

#include <limits>
#include <stdexcept>

namespace bench {
namespace {

std::uint64_t validBits(const BareDevice& device) {
    const std::uint32_t bits =
        device.physicalDevice().getQueueFamilyProperties()[device.queueFamily()].timestampValidBits;
    if (bits == 0) {
        throw std::runtime_error("the device does not tell the time");
    }
    return std::numeric_limits<std::uint64_t>::max() >> (64 - bits);
}

}  // namespace

BareTimer::BareTimer(const BareDevice& device, std::uint32_t marks)
    : _millisecondsPerTick(static_cast<double>(device.physicalDevice().getProperties().limits.timestampPeriod) / 1e6),
      _validBits(validBits(device)),
      _queries(device.handle(), vk::QueryPoolCreateInfo{.queryType = vk::QueryType::eTimestamp, .queryCount = marks}) {}

void BareTimer::reset(const vk::raii::CommandBuffer& commands, std::uint32_t firstMark, std::uint32_t count) const {
    commands.resetQueryPool(*_queries, firstMark, count);
}

void BareTimer::mark(const vk::raii::CommandBuffer& commands, std::uint32_t mark) const {
    constexpr vk::PipelineStageFlags2 everything = vk::PipelineStageFlagBits2::eAllCommands;
    const vk::MemoryBarrier2 all{.srcStageMask = everything,
                                 .srcAccessMask = vk::AccessFlagBits2::eMemoryWrite,
                                 .dstStageMask = everything,
                                 .dstAccessMask = vk::AccessFlagBits2::eMemoryRead | vk::AccessFlagBits2::eMemoryWrite};
    commands.pipelineBarrier2({.memoryBarrierCount = 1, .pMemoryBarriers = &all});
    commands.writeTimestamp2(everything, *_queries, mark);
}

double BareTimer::millisecondsAfter(std::uint32_t mark) const {
    const auto [result, ticks] =
        _queries.getResults<std::uint64_t>(mark, 2, 2 * sizeof(std::uint64_t), sizeof(std::uint64_t),
                                           vk::QueryResultFlagBits::e64 | vk::QueryResultFlagBits::eWait);
    vk::resultCheck(result, "vkGetQueryPoolResults");
    return static_cast<double>((ticks[1] - ticks[0]) & _validBits) * _millisecondsPerTick;
}

}  // namespace bench
