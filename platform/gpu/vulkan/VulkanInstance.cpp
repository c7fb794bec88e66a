#include "platform/gpu/vulkan/VulkanInstance.hpp"

#include "platform/SystemLog.hpp"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace gpu::vulkan {
namespace {

constexpr const char* validationLayer = "VK_LAYER_KHRONOS_validation";

bool contains(const std::vector<vk::ExtensionProperties>& extensions, const char* name) {
    return std::any_of(extensions.begin(), extensions.end(), [name](const vk::ExtensionProperties& extension) {
        return std::strcmp(extension.extensionName, name) == 0;
    });
}

}  // namespace

const vk::raii::Context* loader() {
    static const vk::raii::Context* const context = []() -> const vk::raii::Context* {
        try {
            const vk::DynamicLoader library;
            // The context would call this, present or not.
            if (library.getProcAddress<PFN_vkGetInstanceProcAddr>("vkGetInstanceProcAddr") == nullptr) {
                throw std::runtime_error("the library of that name is none");
            }
            return new vk::raii::Context;
        } catch (const std::exception& error) {
            platform::systemLog(std::string("gpu: no Vulkan loader: ") + error.what());
            return nullptr;
        }
    }();
    return context;
}

std::optional<std::uint32_t> loaderVersion() {
    if (loader() == nullptr) {
        return std::nullopt;
    }
    if (loader()->getDispatcher()->vkEnumerateInstanceVersion == nullptr) {
        return VK_API_VERSION_1_0;
    }
    try {
        return loader()->enumerateInstanceVersion();
    } catch (const vk::SystemError&) {
        return VK_API_VERSION_1_0;
    }
}

/// What the instance is made with.
struct VulkanInstance::Extensions {
    explicit Extensions(const VulkanOptions& options);

    std::vector<const char*> layers;
    std::vector<const char*> names;
    bool xcbSurfaces = false;
    bool waylandSurfaces = false;
    bool debugNames = false;
    bool validationFeatures = false;
};

VulkanInstance::Extensions::Extensions(const VulkanOptions& options) {
    const auto offered = loader()->enumerateInstanceExtensionProperties();
    // Only what is needed: asked for Wayland surfaces, drivers look for a compositor, and complain where there is none.
    const bool onWayland = std::holds_alternative<WaylandServer>(options.presentation);
    const char* const surfaces = onWayland ? VK_KHR_WAYLAND_SURFACE_EXTENSION_NAME : VK_KHR_XCB_SURFACE_EXTENSION_NAME;
    if (contains(offered, VK_KHR_SURFACE_EXTENSION_NAME) && contains(offered, surfaces)) {
        names.insert(names.end(), {VK_KHR_SURFACE_EXTENSION_NAME, surfaces});
        (onWayland ? waylandSurfaces : xcbSurfaces) = true;
    }
    debugNames = contains(offered, VK_EXT_DEBUG_UTILS_EXTENSION_NAME);
    if (options.validate) {
        layers.push_back(validationLayer);
        const auto ofLayer = loader()->enumerateInstanceExtensionProperties(std::string(validationLayer));
        validationFeatures = contains(ofLayer, VK_EXT_VALIDATION_FEATURES_EXTENSION_NAME);
        debugNames = debugNames || contains(ofLayer, VK_EXT_DEBUG_UTILS_EXTENSION_NAME);
    }
    if (debugNames) {
        names.push_back(VK_EXT_DEBUG_UTILS_EXTENSION_NAME);
    }
    if (validationFeatures) {
        names.push_back(VK_EXT_VALIDATION_FEATURES_EXTENSION_NAME);
    }
}

std::shared_ptr<const VulkanInstance> VulkanInstance::open(const VulkanOptions& options) {
    if (loaderVersion().value_or(VK_API_VERSION_1_0) < VK_API_VERSION_1_1) {
        return nullptr;
    }
    try {
        return std::shared_ptr<const VulkanInstance>(new VulkanInstance(Extensions(options), options));
    } catch (const std::exception& error) {
        platform::systemLog(std::string("gpu: no Vulkan instance: ") + error.what());
        return nullptr;
    }
}

VulkanInstance::VulkanInstance(const Extensions& extensions, const VulkanOptions& options)
    : _validationMessage(options.validationMessage),
      _hasXcbSurfaces(extensions.xcbSurfaces),
      _hasWaylandSurfaces(extensions.waylandSurfaces),
      _hasDebugNames(extensions.debugNames),
      _instance(nullptr) {
    const vk::ApplicationInfo application{.pApplicationName = "cirrane", .apiVersion = VK_API_VERSION_1_3};
    vk::DebugUtilsMessengerCreateInfoEXT messenger = messengerInfo();
    const vk::ValidationFeatureEnableEXT synchronization = vk::ValidationFeatureEnableEXT::eSynchronizationValidation;
    vk::ValidationFeaturesEXT features{.enabledValidationFeatureCount = 1,
                                       .pEnabledValidationFeatures = &synchronization};
    const void* next = nullptr;
    const bool listening = options.validate && _hasDebugNames;
    if (listening) {
        next = &messenger;
    }
    if (extensions.validationFeatures) {
        features.pNext = next;
        next = &features;
    }
    _instance = vk::raii::Instance(
        *loader(), vk::InstanceCreateInfo{.pNext = next,
                                          .pApplicationInfo = &application,
                                          .enabledLayerCount = static_cast<std::uint32_t>(extensions.layers.size()),
                                          .ppEnabledLayerNames = extensions.layers.data(),
                                          .enabledExtensionCount = static_cast<std::uint32_t>(extensions.names.size()),
                                          .ppEnabledExtensionNames = extensions.names.data()});
    if (listening) {
        _messenger = vk::raii::DebugUtilsMessengerEXT(_instance, messenger);
    }
}

vk::DebugUtilsMessengerCreateInfoEXT VulkanInstance::messengerInfo() {
    using Severity = vk::DebugUtilsMessageSeverityFlagBitsEXT;
    using Type = vk::DebugUtilsMessageTypeFlagBitsEXT;
    return {.messageSeverity = Severity::eWarning | Severity::eError,
            .messageType = Type::eGeneral | Type::eValidation | Type::ePerformance,
            .pfnUserCallback = &receiveMessage,
            .pUserData = this};
}

VkBool32 VulkanInstance::receiveMessage(VkDebugUtilsMessageSeverityFlagBitsEXT, VkDebugUtilsMessageTypeFlagsEXT,
                                        const VkDebugUtilsMessengerCallbackDataEXT* data, void* instance) {
    // The loader complains here of drivers that found no device of theirs; that is no fault of ours.
    const bool fromLoader = data->pMessageIdName != nullptr && std::strcmp(data->pMessageIdName, "Loader Message") == 0;
    if (fromLoader) {
        return VK_FALSE;
    }
    try {
        const auto& sink = static_cast<VulkanInstance*>(instance)->_validationMessage;
        sink ? sink(data->pMessage) : platform::systemLog(std::string("gpu: validation: ") + data->pMessage);
    } catch (const std::exception&) {
        // A message that could not be delivered must not unwind through the driver.
    }
    return VK_FALSE;
}

}  // namespace gpu::vulkan
