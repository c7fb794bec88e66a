#pragma once

#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace gpu::vulkan {

/// The Vulkan loader, opened on first use and never closed: drivers leave destructors behind that must find their code.
/// Null when the machine has none. Any thread.
const vk::raii::Context* loader();

/// The version that the loader implements; nothing without a loader.
std::optional<std::uint32_t> loaderVersion();

/// A Vulkan instance with what this machine offers of surfaces, debug names and, on request, validation. Shared by all
/// devices made from it, which keep it alive. Immutable after creation, any thread.
class VulkanInstance {
public:
    /// Null, with the reason in the system log, when there is no loader, no driver or no requested validation layer.
    static std::shared_ptr<const VulkanInstance> open(const VulkanOptions& options);

    VulkanInstance(const VulkanInstance&) = delete;
    VulkanInstance& operator=(const VulkanInstance&) = delete;

    const vk::raii::Instance& handle() const { return _instance; }
    /// True when windows of an X server can be presented to. Never where the options ask for a Wayland compositor.
    bool hasXcbSurfaces() const { return _hasXcbSurfaces; }
    /// True when surfaces of a Wayland compositor can be presented to. Only where the options ask for one.
    bool hasWaylandSurfaces() const { return _hasWaylandSurfaces; }
    /// True when objects and commands can be given names for debuggers.
    bool hasDebugNames() const { return _hasDebugNames; }

private:
    struct Extensions;
    VulkanInstance(const Extensions& extensions, const VulkanOptions& options);

    static VKAPI_ATTR VkBool32 VKAPI_CALL receiveMessage(VkDebugUtilsMessageSeverityFlagBitsEXT severity,
                                                         VkDebugUtilsMessageTypeFlagsEXT types,
                                                         const VkDebugUtilsMessengerCallbackDataEXT* data,
                                                         void* instance);
    vk::DebugUtilsMessengerCreateInfoEXT messengerInfo();

    std::function<void(std::string_view)> _validationMessage;
    bool _hasXcbSurfaces;
    bool _hasWaylandSurfaces;
    bool _hasDebugNames;
    vk::raii::Instance _instance;
    vk::raii::DebugUtilsMessengerEXT _messenger = nullptr;
};

}  // namespace gpu::vulkan
