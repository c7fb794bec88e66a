// Stands in for the Vulkan loader of machines that the tests do not run on: built as libvulkan.so, put first in
// LD_LIBRARY_PATH. It draws nothing. What it claims to be comes from the environment:
//   STAND_IN_VULKAN_LOADER    the version of the loader, "1.0" to "1.3"; 1.3 when not set
//   STAND_IN_VULKAN_DEVICE    the version of its one device; no device when not set
//   STAND_IN_VULKAN_FEATURES  when set, the device has the features that drawing needs, but still none of the formats
//   STAND_IN_VULKAN_FAILING   the name of a function that fails, vkCreateInstance or vkCreateDevice

#define VK_NO_PROTOTYPES
#include <vulkan/vulkan_core.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

namespace {

constexpr std::uint32_t patch = 200;

const char* setting(const char* name) {
    return std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing here changes the environment
}

std::uint32_t version(const char* text) {
    return VK_MAKE_API_VERSION(0, 1, std::strtoul(text + std::strlen("1."), nullptr, 10), patch);
}

bool fails(std::string_view function) {
    const char* const failing = setting("STAND_IN_VULKAN_FAILING");
    return failing != nullptr && function == failing;
}

/// Nothing is behind a handle; those of a kind are all the same one.
template <typename Handle>
Handle handle() {
    static int nothing = 0;
    return reinterpret_cast<Handle>(&nothing);
}

template <typename Parent, typename Info, typename Handle>
VkResult VKAPI_CALL create(Parent, const Info*, const VkAllocationCallbacks*, Handle* created) {
    *created = handle<Handle>();
    return VK_SUCCESS;
}

template <typename Parent, typename Handle>
void VKAPI_CALL destroy(Parent, Handle, const VkAllocationCallbacks*) {}

template <typename Owner>
void VKAPI_CALL destroyOwner(Owner, const VkAllocationCallbacks*) {}

template <typename... Arguments>
void VKAPI_CALL doNothing(Arguments...) {}

template <typename... Arguments>
VkResult VKAPI_CALL succeed(Arguments...) {
    return VK_SUCCESS;
}

VkResult VKAPI_CALL createInstance(const VkInstanceCreateInfo*, const VkAllocationCallbacks*, VkInstance* created) {
    *created = handle<VkInstance>();
    return fails("vkCreateInstance") ? VK_ERROR_INCOMPATIBLE_DRIVER : VK_SUCCESS;
}

VkResult VKAPI_CALL createDevice(VkPhysicalDevice, const VkDeviceCreateInfo*, const VkAllocationCallbacks*,
                                 VkDevice* created) {
    *created = handle<VkDevice>();
    return fails("vkCreateDevice") ? VK_ERROR_INITIALIZATION_FAILED : VK_SUCCESS;
}

VkResult VKAPI_CALL enumerateInstanceVersion(std::uint32_t* result) {
    const char* const loader = setting("STAND_IN_VULKAN_LOADER");
    *result = version(loader != nullptr ? loader : "1.3");
    return VK_SUCCESS;
}

VkResult VKAPI_CALL enumerateInstanceExtensions(const char*, std::uint32_t* count, VkExtensionProperties*) {
    *count = 0;
    return VK_SUCCESS;
}

VkResult VKAPI_CALL enumeratePhysicalDevices(VkInstance, std::uint32_t* count, VkPhysicalDevice* devices) {
    *count = setting("STAND_IN_VULKAN_DEVICE") != nullptr ? 1 : 0;
    if (devices != nullptr && *count == 1) {
        *devices = handle<VkPhysicalDevice>();
    }
    return VK_SUCCESS;
}

void VKAPI_CALL getProperties(VkPhysicalDevice, VkPhysicalDeviceProperties* properties) {
    *properties = {};
    properties->apiVersion = version(setting("STAND_IN_VULKAN_DEVICE"));
    properties->deviceType = VK_PHYSICAL_DEVICE_TYPE_OTHER;
    std::strcpy(properties->deviceName, "Stand-in");
    properties->limits.maxImageDimension2D = 4096;
}

void VKAPI_CALL getQueueFamilies(VkPhysicalDevice, std::uint32_t* count, VkQueueFamilyProperties* families) {
    *count = 1;
    if (families != nullptr) {
        *families = {VK_QUEUE_GRAPHICS_BIT | VK_QUEUE_COMPUTE_BIT, 1, 0, {1, 1, 1}};
    }
}

void VKAPI_CALL getMemory(VkPhysicalDevice, VkPhysicalDeviceMemoryProperties* properties) {
    *properties = {};
}

void VKAPI_CALL getFeatures(VkPhysicalDevice, VkPhysicalDeviceFeatures* features) {
    *features = {};
}

/// The caller has set all features to false.
void VKAPI_CALL getFeatures2(VkPhysicalDevice, VkPhysicalDeviceFeatures2* features) {
    if (setting("STAND_IN_VULKAN_FEATURES") == nullptr) {
        return;
    }
    for (auto* next = static_cast<VkBaseOutStructure*>(features->pNext); next != nullptr; next = next->pNext) {
        if (next->sType == VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_VULKAN_1_2_FEATURES) {
            reinterpret_cast<VkPhysicalDeviceVulkan12Features*>(next)->timelineSemaphore = VK_TRUE;
        } else if (next->sType == VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_VULKAN_1_3_FEATURES) {
            reinterpret_cast<VkPhysicalDeviceVulkan13Features*>(next)->dynamicRendering = VK_TRUE;
            reinterpret_cast<VkPhysicalDeviceVulkan13Features*>(next)->synchronization2 = VK_TRUE;
        }
    }
}

void VKAPI_CALL getFormat(VkPhysicalDevice, VkFormat, VkFormatProperties* properties) {
    *properties = {};
}

void VKAPI_CALL getProperties2(VkPhysicalDevice device, VkPhysicalDeviceProperties2* properties) {
    getProperties(device, &properties->properties);
}

void VKAPI_CALL getQueue(VkDevice, std::uint32_t, std::uint32_t, VkQueue* queue) {
    *queue = handle<VkQueue>();
}

VkResult VKAPI_CALL allocateDescriptorSets(VkDevice, const VkDescriptorSetAllocateInfo* info, VkDescriptorSet* sets) {
    for (std::uint32_t i = 0; i < info->descriptorSetCount; ++i) {
        sets[i] = handle<VkDescriptorSet>();
    }
    return VK_SUCCESS;
}

VkResult VKAPI_CALL getPipelineCacheData(VkDevice, VkPipelineCache, std::size_t* size, void*) {
    *size = 0;
    return VK_SUCCESS;
}

PFN_vkVoidFunction VKAPI_CALL deviceFunction(VkDevice, const char* name);

using Functions = std::map<std::string_view, PFN_vkVoidFunction>;

/// Takes the function's own type first, so that it is checked, and a template's arguments are found.
template <typename Function>
PFN_vkVoidFunction any(Function function) {
    return reinterpret_cast<PFN_vkVoidFunction>(function);
}

#define ENTRY(name, function) \
    { "vk" #name, any<PFN_vk##name>(function) }

/// Those that a loader of version 1.0 has too, but for the version, which it cannot be asked.
const Functions& functions() {
    static const Functions all{
        ENTRY(AllocateDescriptorSets, allocateDescriptorSets),
        ENTRY(CreateDescriptorPool, create),
        ENTRY(CreateDescriptorSetLayout, create),
        ENTRY(CreateDevice, createDevice),
        ENTRY(CreateInstance, createInstance),
        ENTRY(CreatePipelineCache, create),
        ENTRY(CreatePipelineLayout, create),
        ENTRY(CreateSampler, create),
        ENTRY(DestroyDescriptorPool, destroy),
        ENTRY(DestroyDescriptorSetLayout, destroy),
        ENTRY(DestroyDevice, destroyOwner),
        ENTRY(DestroyInstance, destroyOwner),
        ENTRY(DestroyPipelineCache, destroy),
        ENTRY(DestroyPipelineLayout, destroy),
        ENTRY(DestroySampler, destroy),
        ENTRY(DeviceWaitIdle, succeed),
        ENTRY(EnumerateInstanceExtensionProperties, enumerateInstanceExtensions),
        ENTRY(EnumerateInstanceVersion, enumerateInstanceVersion),
        ENTRY(EnumeratePhysicalDevices, enumeratePhysicalDevices),
        ENTRY(FreeDescriptorSets, succeed),
        ENTRY(GetDeviceProcAddr, deviceFunction),
        ENTRY(GetDeviceQueue, getQueue),
        ENTRY(GetPhysicalDeviceFeatures, getFeatures),
        ENTRY(GetPhysicalDeviceFeatures2, getFeatures2),
        ENTRY(GetPhysicalDeviceFormatProperties, getFormat),
        ENTRY(GetPhysicalDeviceMemoryProperties, getMemory),
        ENTRY(GetPhysicalDeviceProperties, getProperties),
        ENTRY(GetPhysicalDeviceProperties2, getProperties2),
        ENTRY(GetPhysicalDeviceQueueFamilyProperties, getQueueFamilies),
        ENTRY(GetPipelineCacheData, getPipelineCacheData),
        ENTRY(UpdateDescriptorSets, doNothing),
    };
    return all;
}

PFN_vkVoidFunction functionNamed(std::string_view name) {
    const char* const loader = setting("STAND_IN_VULKAN_LOADER");
    if (name == "vkEnumerateInstanceVersion" && loader != nullptr && std::string_view(loader) == "1.0") {
        return nullptr;  // it came with 1.1
    }
    const auto found = functions().find(name);
    return found == functions().end() ? nullptr : found->second;
}

PFN_vkVoidFunction VKAPI_CALL deviceFunction(VkDevice, const char* name) {
    return functionNamed(name);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PFN_vkVoidFunction VKAPI_CALL
vkGetInstanceProcAddr(VkInstance, const char* name) {
    return functionNamed(name);
}
