#pragma once

#include "benchmarks/frameloop/Loop.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"

#include <cstddef>
#include <functional>
#include <string>

namespace bench {

struct BareImage {
    vk::raii::DeviceMemory memory = nullptr;
    vk::raii::Image image = nullptr;
    vk::raii::ImageView view = nullptr;
};

/// `contents` is memory that the CPU writes and reads in place, where there is any.
struct BareBuffer {
    vk::raii::DeviceMemory memory = nullptr;
    vk::raii::Buffer buffer = nullptr;
    std::byte* contents = nullptr;
};

enum class BareUseOfWindows { None, X11 };

/// A Vulkan device with one queue, as plain as can be. Throws what Vulkan-Hpp throws.
class BareDevice {
public:
    /// The device of that name.
    BareDevice(const std::string& name, BareUseOfWindows windows);

    const vk::raii::Instance& instance() const { return _instance; }
    const vk::raii::PhysicalDevice& physicalDevice() const { return _physicalDevice; }
    const vk::raii::Device& handle() const { return _device; }
    const vk::raii::Queue& queue() const { return _queue; }
    std::uint32_t queueFamily() const { return _queueFamily; }

    BareImage makeImage(vk::Format format, Size size, vk::ImageUsageFlags usage) const;
    vk::raii::ImageView makeView(vk::Image image, vk::Format format) const;
    BareBuffer makeBuffer(std::size_t length, vk::BufferUsageFlags usage) const;
    /// In the device's own memory.
    BareBuffer makeDeviceBuffer(std::size_t length, vk::BufferUsageFlags usage) const;
    void runAndWait(const std::function<void(const vk::raii::CommandBuffer&)>& record) const;

private:
    vk::raii::DeviceMemory allocate(const vk::MemoryRequirements& requirements, vk::MemoryPropertyFlags wanted) const;

    vk::raii::Context _context;
    vk::raii::Instance _instance;
    vk::raii::PhysicalDevice _physicalDevice;
    std::uint32_t _queueFamily = 0;
    vk::raii::Device _device;
    vk::raii::Queue _queue;
};

/// How an image is used, for barriers.
struct BareUse {
    vk::ImageLayout layout;
    vk::PipelineStageFlags2 stages;
    vk::AccessFlags2 access;
};
extern const BareUse nothing;
extern const BareUse colorTarget;
extern const BareUse sampledByShaders;
extern const BareUse shown;
extern const BareUse copySource;
extern const BareUse copyDestination;

vk::ImageMemoryBarrier2 barrier(vk::Image image, const BareUse& from, const BareUse& to);

}  // namespace bench
