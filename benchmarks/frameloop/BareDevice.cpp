#include "benchmarks/frameloop/BareDevice.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

namespace bench {
namespace {

constexpr vk::ImageSubresourceRange wholeImage{
    .aspectMask = vk::ImageAspectFlagBits::eColor, .levelCount = 1, .layerCount = 1};

using Names = std::vector<const char*>;

vk::raii::Instance makeInstance(const vk::raii::Context& context, const Names& extensions) {
    const vk::ApplicationInfo application{.apiVersion = VK_API_VERSION_1_3};
    return {context, vk::InstanceCreateInfo{.pApplicationInfo = &application,
                                            .enabledExtensionCount = static_cast<std::uint32_t>(extensions.size()),
                                            .ppEnabledExtensionNames = extensions.data()}};
}

vk::raii::PhysicalDevice choose(const vk::raii::Instance& instance, const std::string& name) {
    for (vk::raii::PhysicalDevice& device : instance.enumeratePhysicalDevices()) {
        if (name == device.getProperties().deviceName.data()) {
            return std::move(device);
        }
    }
    throw std::runtime_error("no Vulkan device is called " + name);
}

std::uint32_t drawingQueueFamily(const vk::raii::PhysicalDevice& device) {
    const auto families = device.getQueueFamilyProperties();
    const auto draws = [](const vk::QueueFamilyProperties& family) {
        return static_cast<bool>(family.queueFlags & vk::QueueFlagBits::eGraphics);
    };
    return static_cast<std::uint32_t>(std::find_if(families.begin(), families.end(), draws) - families.begin());
}

vk::raii::Device makeDevice(const vk::raii::PhysicalDevice& physicalDevice, std::uint32_t family,
                            const Names& extensions) {
    const float priority = 1.0F;
    const vk::DeviceQueueCreateInfo queue{.queueFamilyIndex = family, .queueCount = 1, .pQueuePriorities = &priority};
    vk::PhysicalDeviceVulkan13Features newest{.synchronization2 = VK_TRUE, .dynamicRendering = VK_TRUE};
    const vk::PhysicalDeviceVulkan12Features newer{.pNext = &newest, .timelineSemaphore = VK_TRUE};
    return {physicalDevice, vk::DeviceCreateInfo{.pNext = &newer,
                                                 .queueCreateInfoCount = 1,
                                                 .pQueueCreateInfos = &queue,
                                                 .enabledExtensionCount = static_cast<std::uint32_t>(extensions.size()),
                                                 .ppEnabledExtensionNames = extensions.data()}};
}

Names instanceExtensions(BareUseOfWindows windows) {
    return windows == BareUseOfWindows::X11 ? Names{VK_KHR_SURFACE_EXTENSION_NAME, VK_KHR_XCB_SURFACE_EXTENSION_NAME}
                                            : Names{};
}

Names deviceExtensions(BareUseOfWindows windows) {
    return windows == BareUseOfWindows::X11 ? Names{VK_KHR_SWAPCHAIN_EXTENSION_NAME} : Names{};
}

}  // namespace

BareDevice::BareDevice(const std::string& name, BareUseOfWindows windows)
    : _instance(makeInstance(_context, instanceExtensions(windows))),
      _physicalDevice(choose(_instance, name)),
      _queueFamily(drawingQueueFamily(_physicalDevice)),
      _device(makeDevice(_physicalDevice, _queueFamily, deviceExtensions(windows))),
      _queue(_device, _queueFamily, 0) {}

vk::raii::DeviceMemory BareDevice::allocate(const vk::MemoryRequirements& requirements,
                                            vk::MemoryPropertyFlags wanted) const {
    const auto memory = _physicalDevice.getMemoryProperties();
    for (std::uint32_t type = 0; type < memory.memoryTypeCount; ++type) {
        const bool fits = (requirements.memoryTypeBits >> type & 1U) != 0;
        if (fits && (memory.memoryTypes[type].propertyFlags & wanted) == wanted) {
            return {_device, vk::MemoryAllocateInfo{.allocationSize = requirements.size, .memoryTypeIndex = type}};
        }
    }
    throw std::runtime_error("no memory of the wanted type");
}

BareImage BareDevice::makeImage(vk::Format format, Size size, vk::ImageUsageFlags usage) const {
    BareImage made;
    made.image = vk::raii::Image(_device, vk::ImageCreateInfo{.imageType = vk::ImageType::e2D,
                                                              .format = format,
                                                              .extent = {size.width, size.height, 1},
                                                              .mipLevels = 1,
                                                              .arrayLayers = 1,
                                                              .samples = vk::SampleCountFlagBits::e1,
                                                              .usage = usage});
    made.memory = allocate(made.image.getMemoryRequirements(), vk::MemoryPropertyFlagBits::eDeviceLocal);
    made.image.bindMemory(*made.memory, 0);
    made.view = makeView(*made.image, format);
    return made;
}

vk::raii::ImageView BareDevice::makeView(vk::Image image, vk::Format format) const {
    return {_device,
            vk::ImageViewCreateInfo{
                .image = image, .viewType = vk::ImageViewType::e2D, .format = format, .subresourceRange = wholeImage}};
}

BareBuffer BareDevice::makeBuffer(std::size_t length, vk::BufferUsageFlags usage) const {
    BareBuffer made;
    made.buffer = vk::raii::Buffer(_device, vk::BufferCreateInfo{.size = length, .usage = usage});
    made.memory = allocate(made.buffer.getMemoryRequirements(),
                           vk::MemoryPropertyFlagBits::eHostVisible | vk::MemoryPropertyFlagBits::eHostCoherent);
    made.buffer.bindMemory(*made.memory, 0);
    made.contents = static_cast<std::byte*>(made.memory.mapMemory(0, VK_WHOLE_SIZE));
    return made;
}

BareBuffer BareDevice::makeDeviceBuffer(std::size_t length, vk::BufferUsageFlags usage) const {
    BareBuffer made;
    made.buffer = vk::raii::Buffer(_device, vk::BufferCreateInfo{.size = length, .usage = usage});
    made.memory = allocate(made.buffer.getMemoryRequirements(), vk::MemoryPropertyFlagBits::eDeviceLocal);
    made.buffer.bindMemory(*made.memory, 0);
    return made;
}

void BareDevice::runAndWait(const std::function<void(const vk::raii::CommandBuffer&)>& record) const {
    const vk::raii::CommandPool pool(_device, vk::CommandPoolCreateInfo{.queueFamilyIndex = _queueFamily});
    const vk::raii::CommandBuffers buffers(
        _device, vk::CommandBufferAllocateInfo{
                     .commandPool = *pool, .level = vk::CommandBufferLevel::ePrimary, .commandBufferCount = 1});
    const vk::raii::CommandBuffer& commands = buffers.front();
    commands.begin({.flags = vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
    record(commands);
    commands.end();
    const vk::CommandBufferSubmitInfo info{.commandBuffer = *commands};
    _queue.submit2(vk::SubmitInfo2{.commandBufferInfoCount = 1, .pCommandBufferInfos = &info});
    _queue.waitIdle();
}

const BareUse nothing{vk::ImageLayout::eUndefined, vk::PipelineStageFlagBits2::eNone, {}};
const BareUse colorTarget{vk::ImageLayout::eColorAttachmentOptimal, vk::PipelineStageFlagBits2::eColorAttachmentOutput,
                          vk::AccessFlagBits2::eColorAttachmentWrite};
const BareUse sampledByShaders{vk::ImageLayout::eShaderReadOnlyOptimal,
                               vk::PipelineStageFlagBits2::eVertexShader | vk::PipelineStageFlagBits2::eFragmentShader,
                               vk::AccessFlagBits2::eShaderSampledRead};
const BareUse shown{vk::ImageLayout::ePresentSrcKHR, vk::PipelineStageFlagBits2::eNone, {}};
const BareUse copySource{vk::ImageLayout::eTransferSrcOptimal, vk::PipelineStageFlagBits2::eAllTransfer,
                         vk::AccessFlagBits2::eTransferRead};
const BareUse copyDestination{vk::ImageLayout::eTransferDstOptimal, vk::PipelineStageFlagBits2::eAllTransfer,
                              vk::AccessFlagBits2::eTransferWrite};

vk::ImageMemoryBarrier2 barrier(vk::Image image, const BareUse& from, const BareUse& to) {
    return {.srcStageMask = from.stages,
            .srcAccessMask = from.access,
            .dstStageMask = to.stages,
            .dstAccessMask = to.access,
            .oldLayout = from.layout,
            .newLayout = to.layout,
            .srcQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED,
            .dstQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED,
            .image = image,
            .subresourceRange = wholeImage};
}

}  // namespace bench
