#pragma once

#include "platform/gpu/Backend.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace gpu::vulkan {

/// An X server that devices must be able to present to: an `xcb_connection_t*` and a visual of its screen.
struct XcbServer {
    void* connection = nullptr;
    std::uint32_t visual = 0;
};

/// A Wayland compositor that devices must be able to present to: a `wl_display*`.
struct WaylandServer {
    void* display = nullptr;
};

/// What devices must be able to present to; `std::monostate` asks for nothing, a null pointer for what none can do.
using PresentationServer = std::variant<std::monostate, XcbServer, WaylandServer>;

struct VulkanOptions {
    /// Part of a device's name (case ignored) or its index in `listDevices`; empty chooses the best one.
    std::string device;
    /// Devices that cannot present there are passed over.
    PresentationServer presentation;
    /// Loads the Khronos validation layer and hands its messages to `validationMessage`, or to the system log.
    bool validate = false;
    std::function<void(std::string_view)> validationMessage;
    /// Where compiled pipelines are kept between runs; empty keeps none.
    std::filesystem::path pipelineCacheDirectory;
};

struct DeviceListing {
    std::string name;
    std::string kind;
    std::string driver;
    std::string apiVersion;
    bool hasAllFeatures = false;
};

/// Never fails: without a Vulkan loader or driver the backend knows no version or no device. The loader and the
/// instance are opened on first use and kept.
std::shared_ptr<Backend> makeVulkanBackend(VulkanOptions options);

/// All devices in the order in which `VulkanOptions::device` counts them.
std::vector<DeviceListing> listDevices(const VulkanOptions& options);

/// One that opens its devices as if they lacked the features that drawing needs. For tests.
std::shared_ptr<Backend> makeBareVulkanBackend(VulkanOptions options);

/// From now on this device of a Vulkan backend counts as lost, as after a crash of its driver. For tests.
void loseDevice(Device& device);

}  // namespace gpu::vulkan
