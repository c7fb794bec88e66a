#pragma once

#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "platform/gpu/vulkan/VulkanInstance.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace gpu::vulkan {

/// A device of this machine and what choosing and opening it needs to know.
struct DeviceCandidate {
    vk::raii::PhysicalDevice device;
    vk::PhysicalDeviceProperties properties;
    /// The family of the one queue that draws, computes, copies and presents.
    std::uint32_t queueFamily = 0;
    /// Meets feature set 10003.
    bool hasAllFeatures = false;
    bool hasSwapchain = false;
};

/// All devices with a queue that draws, in the loader's order, which is how `VulkanOptions::device` counts them. Throws
/// as Vulkan does.
std::vector<DeviceCandidate> findDevices(const VulkanInstance& instance);

/// The candidate that the options name or else the best: one that meets the feature set before one that does not, then
/// discrete before integrated before virtual before CPU before other. Nothing when none can present where asked.
std::optional<DeviceCandidate> chooseDevice(std::vector<DeviceCandidate> candidates, const VulkanOptions& options);

DeviceListing describe(const DeviceCandidate& candidate);

/// The driver's own name and version.
std::string driverDescription(const vk::raii::PhysicalDevice& device);

}  // namespace gpu::vulkan
