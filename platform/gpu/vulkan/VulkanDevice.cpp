#include "platform/gpu/vulkan/VulkanDevice.hpp"

#include "platform/gpu/vulkan/VulkanBindings.hpp"
#include "platform/gpu/vulkan/VulkanBuffer.hpp"
#include "platform/gpu/vulkan/VulkanCommandQueue.hpp"
#include "platform/gpu/vulkan/VulkanLibrary.hpp"
#include "platform/gpu/vulkan/VulkanPipeline.hpp"
#include "platform/gpu/vulkan/VulkanPipelineCache.hpp"
#include "platform/gpu/vulkan/VulkanTexture.hpp"

#include <limits>
#include <utility>

namespace gpu::vulkan {
namespace {

vk::raii::Device openDevice(const DeviceCandidate& candidate) {
    const float priority = 1.0F;
    const vk::DeviceQueueCreateInfo queue{
        .queueFamilyIndex = candidate.queueFamily, .queueCount = 1, .pQueuePriorities = &priority};
    // The last one, which every 1.3 device has, for how compilers state the size of a compute function's threadgroup.
    vk::PhysicalDeviceVulkan13Features newer{
        .synchronization2 = VK_TRUE, .dynamicRendering = VK_TRUE, .maintenance4 = VK_TRUE};
    vk::PhysicalDeviceVulkan12Features features{.pNext = &newer, .timelineSemaphore = VK_TRUE};
    // Lets compute functions write BGRA textures, a format that shaders have no word for.
    const vk::PhysicalDeviceFeatures coreFeatures{
        .shaderStorageImageWriteWithoutFormat = candidate.device.getFeatures().shaderStorageImageWriteWithoutFormat};
    const char* const swapchain = VK_KHR_SWAPCHAIN_EXTENSION_NAME;
    return {candidate.device, vk::DeviceCreateInfo{.pNext = candidate.hasAllFeatures ? &features : nullptr,
                                                   .queueCreateInfoCount = 1,
                                                   .pQueueCreateInfos = &queue,
                                                   .enabledExtensionCount = candidate.hasSwapchain ? 1U : 0U,
                                                   .ppEnabledExtensionNames = &swapchain,
                                                   .pEnabledFeatures = &coreFeatures}};
}

thread_local bool leavesDevicesOpen = false;

/// Asks for tools that are in force, such as a frame debugger or the validation layer.
bool showsDebugLabels(const DeviceCandidate& candidate) {
    if (!candidate.hasAllFeatures) {
        return false;  // perhaps too old to be asked
    }
    const auto tools = candidate.device.getToolProperties();
    return std::any_of(tools.begin(), tools.end(), [](const vk::PhysicalDeviceToolProperties& tool) {
        return static_cast<bool>(tool.purposes & vk::ToolPurposeFlagBits::eDebugMarkersEXT);
    });
}

}  // namespace

std::shared_ptr<VulkanDevice> VulkanDevice::open(std::shared_ptr<const VulkanInstance> instance,
                                                 DeviceCandidate candidate,
                                                 const std::filesystem::path& pipelineCacheDirectory,
                                                 LostHandler onLost) {
    return {new VulkanDevice(std::move(instance), std::move(candidate), pipelineCacheDirectory, std::move(onLost)),
            &close};
}

void VulkanDevice::leaveOpenOnThisThread() noexcept {
    leavesDevicesOpen = true;
}

/// The end of a device may be that of its instance, and this unloads the driver, whose clean-up for the thread would
/// then run code that is no longer there.
void VulkanDevice::close(VulkanDevice* device) noexcept {
    if (!leavesDevicesOpen) {
        delete device;
        return;
    }
    static std::atomic<VulkanDevice*> leftOpen{nullptr};  // where leak checkers find them
    device->_leftOpenBefore = leftOpen.exchange(device);
}

VulkanDevice::VulkanDevice(std::shared_ptr<const VulkanInstance> instance, DeviceCandidate candidate,
                           const std::filesystem::path& pipelineCacheDirectory, LostHandler onLost)
    : _instance(std::move(instance)),
      _candidate(std::move(candidate)),
      _hasDebugLabels(_instance->hasDebugNames() && showsDebugLabels(_candidate)),
      _memoryProperties(_candidate.device.getMemoryProperties()),
      _onLost(std::move(onLost)),
      _device(openDevice(_candidate)),
      _queue(_device, _candidate.queueFamily, 0),
      _bindings(std::make_unique<VulkanBindings>(_device)),
      _pipelineCache(std::make_unique<VulkanPipelineCache>(_device, _candidate.properties, pipelineCacheDirectory)) {}

std::uint64_t nextResourceSerial() noexcept {
    static std::atomic<std::uint64_t> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

VulkanDevice::~VulkanDevice() {
    waitIdle();
}

std::string VulkanDevice::name() const {
    return _candidate.properties.deviceName.data();
}

std::string VulkanDevice::driverDescription() const {
    return vulkan::driverDescription(_candidate.device);
}

bool VulkanDevice::supportsFeatureSet(FeatureSet featureSet) const {
    return featureSet == FeatureSet::MacOsGpuFamily1V3 && hasAllFeatures();
}

std::size_t VulkanDevice::maximumTextureSize() const {
    return _candidate.properties.limits.maxImageDimension2D;
}

void VulkanDevice::submit(const vk::SubmitInfo2& submission, vk::Fence fence) {
    vk::resultCheck(trySubmit(submission, fence), "vkQueueSubmit2");
}

vk::Result VulkanDevice::trySubmit(const vk::SubmitInfo2& submission, vk::Fence fence) noexcept {
    if (isLost()) {
        return vk::Result::eErrorDeviceLost;
    }
    if (!hasAllFeatures()) {
        return vk::Result::eErrorFeatureNotPresent;
    }
    const std::lock_guard lock(_queueMutex);
    return (*_queue).submit2(1, &submission, fence, *_device.getDispatcher());
}

vk::Result VulkanDevice::present(const vk::PresentInfoKHR& presentation) {
    if (isLost()) {
        return vk::Result::eErrorDeviceLost;
    }
    vk::Result result = vk::Result::eSuccess;
    {
        const std::lock_guard lock(_queueMutex);
        result = (*_queue).presentKHR(&presentation, *_device.getDispatcher());
    }
    if (result == vk::Result::eErrorDeviceLost) {
        lose();
    }
    return result;
}

void VulkanDevice::waitIdle() noexcept {
    const std::lock_guard lock(_queueMutex);
    // Whether it succeeds or the device is lost: nothing runs on it afterwards.
    static_cast<void>(_device.getDispatcher()->vkDeviceWaitIdle(static_cast<VkDevice>(*_device)));
}

VulkanCommands VulkanDevice::makeCommands() const {
    vk::raii::CommandPool pool(_device, vk::CommandPoolCreateInfo{.flags = vk::CommandPoolCreateFlagBits::eTransient,
                                                                  .queueFamilyIndex = queueFamily()});
    vk::raii::CommandBuffers buffers(
        _device, vk::CommandBufferAllocateInfo{
                     .commandPool = *pool, .level = vk::CommandBufferLevel::ePrimary, .commandBufferCount = 1});
    return {std::move(pool), std::move(buffers.front())};
}

void VulkanDevice::runAndWait(const std::function<void(const vk::raii::CommandBuffer&)>& record) {
    const VulkanCommands own = makeCommands();
    const vk::raii::CommandBuffer& commands = own.buffer;
    commands.begin({.flags = vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
    record(commands);
    commands.end();

    const vk::raii::Fence finished(_device, vk::FenceCreateInfo{});
    const vk::CommandBufferSubmitInfo submitted{.commandBuffer = *commands};
    submit({.commandBufferInfoCount = 1, .pCommandBufferInfos = &submitted}, *finished);
    waitFor(*finished);
}

void VulkanDevice::waitFor(vk::Fence fence) {
    try {
        vk::resultCheck(_device.waitForFences(fence, VK_TRUE, std::numeric_limits<std::uint64_t>::max()),
                        "vkWaitForFences");
    } catch (const vk::SystemError&) {
        waitIdle();  // nothing may be freed that the GPU still uses
        throw;
    }
}

vk::raii::DeviceMemory VulkanDevice::allocate(const vk::MemoryRequirements& requirements,
                                              vk::MemoryPropertyFlags required,
                                              vk::MemoryPropertyFlags preferred) const {
    for (const vk::MemoryPropertyFlags wanted : {required | preferred, required}) {
        for (std::uint32_t i = 0; i < _memoryProperties.memoryTypeCount; ++i) {
            const vk::MemoryType& type = _memoryProperties.memoryTypes[i];
            const bool allowed = (requirements.memoryTypeBits & (1U << i)) != 0;
            const bool fits = requirements.size <= _memoryProperties.memoryHeaps[type.heapIndex].size;
            if (allowed && fits && (type.propertyFlags & wanted) == wanted) {
                return {_device, vk::MemoryAllocateInfo{.allocationSize = requirements.size, .memoryTypeIndex = i}};
            }
        }
    }
    throw vk::OutOfDeviceMemoryError("no memory of a fitting kind is so large");
}

void VulkanDevice::setObjectName(vk::ObjectType type, std::uint64_t handle, const std::string& name) const {
    if (!_instance->hasDebugNames()) {
        return;
    }
    try {
        _device.setDebugUtilsObjectNameEXT({.objectType = type, .objectHandle = handle, .pObjectName = name.c_str()});
    } catch (const vk::SystemError&) {
        // Names only help debugging.
    }
}

void VulkanDevice::lose() noexcept {
    if (_lost.exchange(true, std::memory_order_acq_rel)) {
        return;
    }
    logOnce("the device was lost", _candidate.properties.deviceName.data());
    try {
        _onLost(*this);
    } catch (const std::exception& error) {
        logOnce("the loss of the device could not be told", error.what());
    }
}

void VulkanDevice::logOnce(const char* what, const char* reason) noexcept {
    try {
        const std::string message = std::string("gpu: ") + what + ": " + reason;
        const std::lock_guard lock(_logMutex);
        if (_logged.insert(message).second) {
            platform::systemLog(message);
        }
    } catch (const std::exception&) {
        // Out of memory for a message: there is nobody left to tell.
    }
}

template <typename Make>
std::invoke_result_t<Make> VulkanDevice::create(const char* what, Make make) {
    if (isLost()) {
        return {};
    }
    if (!hasAllFeatures()) {
        logOnce(what, "the device lacks features");
        return {};
    }
    return attempt(what, std::move(make));
}

std::shared_ptr<CommandQueue> VulkanDevice::makeCommandQueue() {
    // Also without features: who attaches to the device must get as far as to be told that it lacks them.
    if (isLost()) {
        return nullptr;
    }
    return attempt("a command queue could not be made",
                   [this] { return std::make_shared<VulkanCommandQueue>(self()); });
}

std::shared_ptr<Texture> VulkanDevice::makeTexture(const TextureDescriptor& descriptor) {
    return create("a texture could not be made",
                  [&] { return std::make_shared<VulkanTexture>(self(), descriptor, TexturePurpose::Ordinary, false); });
}

std::shared_ptr<VulkanTexture> VulkanDevice::makeLayerTexture(PixelFormat format, Extent size, bool framebufferOnly) {
    const TextureDescriptor descriptor{.pixelFormat = format,
                                       .width = size.width,
                                       .height = size.height,
                                       .usage = TextureUsage::RenderTarget,
                                       .storageMode = StorageMode::Private};
    auto texture = create("an image of a layer could not be made", [&] {
        if (size.width > maximumTextureSize() || size.height > maximumTextureSize()) {
            throw vk::OutOfDeviceMemoryError("an image cannot be so large");
        }
        return std::make_shared<VulkanTexture>(self(), descriptor, TexturePurpose::LayerImage, framebufferOnly);
    });
    if (texture == nullptr && isLost()) {
        texture = attempt("a stand-in for an image could not be made", [&] {
            return std::make_shared<VulkanTexture>(self(), descriptor, TexturePurpose::StandIn, framebufferOnly);
        });
    }
    return texture;
}

std::shared_ptr<Buffer> VulkanDevice::makeBuffer(std::size_t length) {
    return create("a buffer could not be made", [&] { return std::make_shared<VulkanBuffer>(self(), length); });
}

std::shared_ptr<Library> VulkanDevice::makeLibrary(const std::filesystem::path& file) {
    return create("a shader library could not be loaded", [&] { return VulkanLibrary::open(self(), file); });
}

std::shared_ptr<RenderPipelineState> VulkanDevice::makeRenderPipelineState(const RenderPipelineDescriptor& descriptor) {
    return create("a render pipeline state could not be made",
                  [&] { return std::make_shared<VulkanRenderPipelineState>(self(), descriptor); });
}

std::shared_ptr<ComputePipelineState> VulkanDevice::makeComputePipelineState(
    const std::shared_ptr<Function>& function) {
    return create("a compute pipeline state could not be made",
                  [&] { return std::make_shared<VulkanComputePipelineState>(self(), function); });
}

}  // namespace gpu::vulkan
