#include "platform/gpu/vulkan/VulkanDeviceChoice.hpp"

#include "platform/gpu/vulkan/VulkanFormats.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace gpu::vulkan {
namespace {

struct NeededFormat {
    PixelFormat format;
    vk::FormatFeatureFlags features;
};

bool offersFormats(const vk::raii::PhysicalDevice& device) {
    using Feature = vk::FormatFeatureFlagBits;
    const vk::FormatFeatureFlags readable = Feature::eSampledImage | Feature::eSampledImageFilterLinear;
    const std::array needed{NeededFormat{PixelFormat::R16Unorm, readable | Feature::eColorAttachment},
                            NeededFormat{PixelFormat::RGB10A2Unorm, readable | Feature::eColorAttachment},
                            NeededFormat{PixelFormat::R8Snorm, readable}};
    return std::all_of(needed.begin(), needed.end(), [&device](const NeededFormat& format) {
        const auto offered = device.getFormatProperties(toVulkan(format.format)).optimalTilingFeatures;
        return (offered & format.features) == format.features;
    });
}

bool offersFeatures(const vk::raii::PhysicalDevice& device) {
    const auto chain = device.getFeatures2<vk::PhysicalDeviceFeatures2, vk::PhysicalDeviceVulkan12Features,
                                           vk::PhysicalDeviceVulkan13Features>();
    const auto& newer = chain.get<vk::PhysicalDeviceVulkan13Features>();
    return chain.get<vk::PhysicalDeviceVulkan12Features>().timelineSemaphore == VK_TRUE &&
           newer.dynamicRendering == VK_TRUE && newer.synchronization2 == VK_TRUE;
}

std::optional<std::uint32_t> drawingQueueFamily(const vk::raii::PhysicalDevice& device) {
    const auto families = device.getQueueFamilyProperties();
    const vk::QueueFlags needed = vk::QueueFlagBits::eGraphics | vk::QueueFlagBits::eCompute;
    const auto found = std::find_if(
        families.begin(), families.end(),
        [needed](const vk::QueueFamilyProperties& family) { return (family.queueFlags & needed) == needed; });
    if (found == families.end()) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(found - families.begin());
}

bool offersSwapchain(const vk::raii::PhysicalDevice& device) {
    const auto extensions = device.enumerateDeviceExtensionProperties();
    return std::any_of(extensions.begin(), extensions.end(), [](const vk::ExtensionProperties& extension) {
        return std::strcmp(extension.extensionName, VK_KHR_SWAPCHAIN_EXTENSION_NAME) == 0;
    });
}

/// Whether a device can present to a server, by kind of server.
struct CanPresent {
    const DeviceCandidate& candidate;

    bool operator()(std::monostate) const { return true; }
    bool operator()(const XcbServer& server) const {
        return candidate.hasSwapchain && server.connection != nullptr &&
               candidate.device.getDispatcher()->vkGetPhysicalDeviceXcbPresentationSupportKHR != nullptr &&
               candidate.device.getXcbPresentationSupportKHR(
                   candidate.queueFamily, *static_cast<xcb_connection_t*>(server.connection), server.visual) == VK_TRUE;
    }
    bool operator()(const WaylandServer& server) const {
        return candidate.hasSwapchain && server.display != nullptr &&
               candidate.device.getDispatcher()->vkGetPhysicalDeviceWaylandPresentationSupportKHR != nullptr &&
               candidate.device.getWaylandPresentationSupportKHR(candidate.queueFamily,
                                                                 *static_cast<wl_display*>(server.display)) == VK_TRUE;
    }
};

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return lower;
}

bool isNamed(const DeviceCandidate& candidate, std::size_t index, const std::string& wanted) {
    std::size_t wantedIndex = 0;
    const auto [end, error] = std::from_chars(wanted.data(), wanted.data() + wanted.size(), wantedIndex);
    if (error == std::errc() && end == wanted.data() + wanted.size()) {
        return index == wantedIndex;
    }
    return lowerCase(candidate.properties.deviceName.data()).find(lowerCase(wanted)) != std::string::npos;
}

int rank(vk::PhysicalDeviceType type) {
    switch (type) {
        case vk::PhysicalDeviceType::eDiscreteGpu: return 4;
        case vk::PhysicalDeviceType::eIntegratedGpu: return 3;
        case vk::PhysicalDeviceType::eVirtualGpu: return 2;
        case vk::PhysicalDeviceType::eCpu: return 1;
        case vk::PhysicalDeviceType::eOther: return 0;
    }
    return 0;
}

bool isWorse(const DeviceCandidate& left, const DeviceCandidate& right) {
    return std::pair(left.hasAllFeatures, rank(left.properties.deviceType)) <
           std::pair(right.hasAllFeatures, rank(right.properties.deviceType));
}

const char* kindName(vk::PhysicalDeviceType type) {
    switch (type) {
        case vk::PhysicalDeviceType::eDiscreteGpu: return "discrete";
        case vk::PhysicalDeviceType::eIntegratedGpu: return "integrated";
        case vk::PhysicalDeviceType::eVirtualGpu: return "virtual";
        case vk::PhysicalDeviceType::eCpu: return "CPU";
        case vk::PhysicalDeviceType::eOther: return "other";
    }
    return "other";
}

std::string versionText(std::uint32_t version) {
    return std::to_string(VK_API_VERSION_MAJOR(version)) + '.' + std::to_string(VK_API_VERSION_MINOR(version)) + '.' +
           std::to_string(VK_API_VERSION_PATCH(version));
}

}  // namespace

std::vector<DeviceCandidate> findDevices(const VulkanInstance& instance) {
    std::vector<DeviceCandidate> candidates;
    for (vk::raii::PhysicalDevice& device : vk::raii::PhysicalDevices(instance.handle())) {
        const vk::PhysicalDeviceProperties properties = device.getProperties();
        const std::optional<std::uint32_t> queueFamily = drawingQueueFamily(device);
        if (queueFamily.has_value() && properties.apiVersion >= VK_API_VERSION_1_1) {
            const bool hasAllFeatures =
                properties.apiVersion >= VK_API_VERSION_1_3 && offersFeatures(device) && offersFormats(device);
            const bool hasSwapchain =
                (instance.hasXcbSurfaces() || instance.hasWaylandSurfaces()) && offersSwapchain(device);
            candidates.push_back({std::move(device), properties, *queueFamily, hasAllFeatures, hasSwapchain});
        }
    }
    return candidates;
}

std::optional<DeviceCandidate> chooseDevice(std::vector<DeviceCandidate> candidates, const VulkanOptions& options) {
    DeviceCandidate* best = nullptr;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        DeviceCandidate& candidate = candidates[i];
        const bool wanted = options.device.empty() || isNamed(candidate, i, options.device);
        if (wanted && std::visit(CanPresent{candidate}, options.presentation) &&
            (best == nullptr || isWorse(*best, candidate))) {
            best = &candidate;
        }
    }
    return best == nullptr ? std::nullopt : std::optional(std::move(*best));
}

DeviceListing describe(const DeviceCandidate& candidate) {
    return {.name = candidate.properties.deviceName.data(),
            .kind = kindName(candidate.properties.deviceType),
            .driver = driverDescription(candidate.device),
            .apiVersion = versionText(candidate.properties.apiVersion),
            .hasAllFeatures = candidate.hasAllFeatures};
}

std::string driverDescription(const vk::raii::PhysicalDevice& device) {
    const vk::PhysicalDeviceProperties properties = device.getProperties();
    if (properties.apiVersion < VK_API_VERSION_1_2) {
        return "driver version " + std::to_string(properties.driverVersion);
    }
    const auto chain = device.getProperties2<vk::PhysicalDeviceProperties2, vk::PhysicalDeviceDriverProperties>();
    const auto& driver = chain.get<vk::PhysicalDeviceDriverProperties>();
    return std::string(driver.driverName.data()) + ' ' + driver.driverInfo.data();
}

}  // namespace gpu::vulkan
