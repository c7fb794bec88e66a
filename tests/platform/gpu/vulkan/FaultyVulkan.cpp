#include "tests/platform/gpu/vulkan/FaultyVulkan.hpp"

#include "platform/gpu/vulkan/Vulkan.hpp"

#include <dlfcn.h>

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>

// All that the backend calls and that can fail. What is of presentation ends in KHR.
#define FOR_EACH_CALL(CALL)                         \
    CALL(vkAcquireNextImageKHR)                     \
    CALL(vkCreateSwapchainKHR)                      \
    CALL(vkCreateXcbSurfaceKHR)                     \
    CALL(vkGetPhysicalDeviceSurfaceCapabilitiesKHR) \
    CALL(vkGetPhysicalDeviceSurfaceFormatsKHR)      \
    CALL(vkGetPhysicalDeviceSurfacePresentModesKHR) \
    CALL(vkGetPhysicalDeviceSurfaceSupportKHR)      \
    CALL(vkGetSwapchainImagesKHR)                   \
    CALL(vkQueuePresentKHR)                         \
    CALL(vkResetFences)                             \
    CALL(vkAllocateCommandBuffers)                  \
    CALL(vkAllocateDescriptorSets)                  \
    CALL(vkAllocateMemory)                          \
    CALL(vkBeginCommandBuffer)                      \
    CALL(vkBindBufferMemory)                        \
    CALL(vkBindImageMemory)                         \
    CALL(vkCreateBuffer)                            \
    CALL(vkCreateCommandPool)                       \
    CALL(vkCreateDescriptorPool)                    \
    CALL(vkCreateDescriptorSetLayout)               \
    CALL(vkCreateDevice)                            \
    CALL(vkCreateFence)                             \
    CALL(vkCreateGraphicsPipelines)                 \
    CALL(vkCreateImage)                             \
    CALL(vkCreateImageView)                         \
    CALL(vkCreateInstance)                          \
    CALL(vkCreatePipelineCache)                     \
    CALL(vkCreatePipelineLayout)                    \
    CALL(vkCreateSampler)                           \
    CALL(vkCreateSemaphore)                         \
    CALL(vkCreateShaderModule)                      \
    CALL(vkEndCommandBuffer)                        \
    CALL(vkEnumerateDeviceExtensionProperties)      \
    CALL(vkEnumerateInstanceExtensionProperties)    \
    CALL(vkEnumeratePhysicalDevices)                \
    CALL(vkGetPhysicalDeviceImageFormatProperties)  \
    CALL(vkGetPhysicalDeviceToolProperties)         \
    CALL(vkMapMemory)                               \
    CALL(vkQueueSubmit2)                            \
    CALL(vkResetCommandPool)                        \
    CALL(vkWaitForFences)                           \
    CALL(vkWaitSemaphores)

namespace {

bool isOfDescriptorsOrPipelines(std::string_view function) {
    static const std::set<std::string_view> functions{"vkAllocateDescriptorSets",    "vkCreateDescriptorPool",
                                                      "vkCreateDescriptorSetLayout", "vkCreateGraphicsPipelines",
                                                      "vkCreatePipelineLayout",      "vkCreateShaderModule"};
    return functions.contains(function);
}

bool areCounted(fake::vulkan::Calls calls, std::string_view function) {
    switch (calls) {
        case fake::vulkan::Calls::OfPresentation: return function.ends_with("KHR");
        case fake::vulkan::Calls::OfDescriptorsAndPipelines: return isOfDescriptorsOrPipelines(function);
        default: return true;
    }
}

/// The plan in force.
class Plan {
public:
    void set(std::optional<std::uint64_t> failingCall, VkResult result, fake::vulkan::Calls counted) {
        const std::lock_guard lock(_mutex);
        _counted = counted;
        _calls = 0;
        _failingCall = failingCall;
        _result = result;
        _failed.clear();
    }
    /// Counts a call of that function. What it returns if it shall fail.
    std::optional<VkResult> next(const char* function) {
        const std::lock_guard lock(_mutex);
        const std::string_view name = function;
        _submissions += name == "vkQueueSubmit2" || name == "vkQueuePresentKHR" ? 1 : 0;
        if (!areCounted(_counted, name) || _calls++ != _failingCall) {
            return std::nullopt;
        }
        _failed = function;
        return _result;
    }
    std::uint64_t submissions() const {
        const std::lock_guard lock(_mutex);
        return _submissions;
    }
    std::string failed() const {
        const std::lock_guard lock(_mutex);
        return _failed;
    }

private:
    mutable std::mutex _mutex;
    std::uint64_t _calls = 0;
    std::uint64_t _submissions = 0;
    fake::vulkan::Calls _counted = fake::vulkan::Calls::All;
    std::optional<std::uint64_t> _failingCall;
    VkResult _result = VK_SUCCESS;
    std::string _failed;
};

Plan& plan() {
    static Plan inForce;
    return inForce;
}

/// A function that comes before the real one of that name.
template <typename Call, typename Function = typename Call::Function>
struct Before;

template <typename Call, typename... Arguments>
struct Before<Call, VkResult(VKAPI_PTR*)(Arguments...)> {
    static inline std::atomic<typename Call::Function> real = nullptr;

    static VkResult VKAPI_CALL call(Arguments... arguments) {
        const std::optional<VkResult> failure = plan().next(Call::name);
        return failure ? *failure : real.load()(arguments...);
    }
    static PFN_vkVoidFunction of(PFN_vkVoidFunction found) {
        real = reinterpret_cast<typename Call::Function>(found);
        return reinterpret_cast<PFN_vkVoidFunction>(&call);
    }
};

#define DESCRIBE(function)                             \
    struct function##Call {                            \
        using Function = PFN_##function;               \
        static constexpr const char* name = #function; \
    };
FOR_EACH_CALL(DESCRIBE)

PFN_vkVoidFunction interposed(std::string_view name, PFN_vkVoidFunction found) {
#define ENTRY(function) {#function, &Before<function##Call>::of},
    static const std::map<std::string_view, PFN_vkVoidFunction (*)(PFN_vkVoidFunction)> calls{FOR_EACH_CALL(ENTRY)};
    const auto call = calls.find(name);
    return found != nullptr && call != calls.end() ? call->second(found) : found;
}

PFN_vkGetInstanceProcAddr realLoader() {
    static const auto function = reinterpret_cast<PFN_vkGetInstanceProcAddr>(
        dlsym(dlopen("libvulkan.so.1", RTLD_NOW | RTLD_LOCAL), "vkGetInstanceProcAddr"));
    return function;
}

std::atomic<PFN_vkGetDeviceProcAddr> realDeviceFunctions = nullptr;

PFN_vkVoidFunction VKAPI_CALL deviceFunction(VkDevice device, const char* name) {
    const PFN_vkVoidFunction found = realDeviceFunctions.load()(device, name);
    return std::string_view(name) == "vkGetDeviceProcAddr" ? reinterpret_cast<PFN_vkVoidFunction>(&deviceFunction)
                                                           : interposed(name, found);
}

}  // namespace

extern "C" PFN_vkVoidFunction VKAPI_CALL vkGetInstanceProcAddr(VkInstance instance, const char* name) {
    const PFN_vkVoidFunction found = realLoader()(instance, name);
    if (std::string_view(name) == "vkGetInstanceProcAddr") {
        return reinterpret_cast<PFN_vkVoidFunction>(&vkGetInstanceProcAddr);
    }
    if (found != nullptr && std::string_view(name) == "vkGetDeviceProcAddr") {
        realDeviceFunctions = reinterpret_cast<PFN_vkGetDeviceProcAddr>(found);
        return reinterpret_cast<PFN_vkVoidFunction>(&deviceFunction);
    }
    return interposed(name, found);
}

namespace fake::vulkan {

void failCall(std::uint64_t number, Failure failure, Calls counted) {
    plan().set(number, static_cast<VkResult>(failure), counted);
}

void failNone() {
    plan().set(std::nullopt, VK_SUCCESS, Calls::All);
}

std::uint64_t submissions() {
    return plan().submissions();
}

std::string failedCall() {
    return plan().failed();
}

}  // namespace fake::vulkan
