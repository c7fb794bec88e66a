#pragma once

#include "platform/SystemLog.hpp"
#include "platform/gpu/Device.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDeviceChoice.hpp"
#include "platform/gpu/vulkan/VulkanInstance.hpp"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>

namespace gpu::vulkan {

class VulkanBindings;
class VulkanPipelineCache;
class VulkanTexture;

/// A number that no resource had before. Any thread.
std::uint64_t nextResourceSerial() noexcept;

/// A command buffer and the pool that is its memory. Reset the pool to record anew.
struct VulkanCommands {
    vk::raii::CommandPool pool;
    vk::raii::CommandBuffer buffer;
};

/// A Vulkan device with its one queue. Everything made from it holds it by shared_ptr, so that it dies last. Any
/// thread. What throws below throws vk::SystemError or std::bad_alloc; the seam's overrides catch through `attempt`.
class VulkanDevice final : public Device {
public:
    using LostHandler = std::function<void(const Device&)>;

    /// Throws when the driver refuses. `onLost` is called once, with no lock held, on the thread that noticed. A device
    /// that lacks features is opened without any: it has command queues, whose buffers fail, and nothing else.
    static std::shared_ptr<VulkanDevice> open(std::shared_ptr<const VulkanInstance> instance, DeviceCandidate candidate,
                                              const std::filesystem::path& pipelineCacheDirectory, LostHandler onLost);
    ~VulkanDevice() override;

    /// For threads that drivers must not be unloaded under: a device whose last reference goes on this thread is left
    /// open to the end of the process.
    static void leaveOpenOnThisThread() noexcept;

    std::string name() const override;
    std::string driverDescription() const override;
    bool supportsFeatureSet(FeatureSet featureSet) const override;
    bool hasAllFeatures() const { return _candidate.hasAllFeatures; }
    std::size_t maximumTextureSize() const override;
    bool isLost() const override { return _lost.load(std::memory_order_acquire); }

    const VulkanInstance& instance() const { return *_instance; }
    const vk::raii::PhysicalDevice& physicalDevice() const { return _candidate.device; }
    const vk::PhysicalDeviceProperties& properties() const { return _candidate.properties; }
    const vk::raii::Device& handle() const { return _device; }
    std::uint32_t queueFamily() const { return _candidate.queueFamily; }
    bool hasSwapchain() const { return _candidate.hasSwapchain; }
    /// True when a tool is there that shows the labels of passes.
    bool hasDebugLabels() const { return _hasDebugLabels; }
    const VulkanBindings& bindings() const { return *_bindings; }
    VulkanPipelineCache& pipelineCache() const { return *_pipelineCache; }

    /// The uses of the queue exclude one another, and need all features. `submit` throws; `trySubmit` returns what the
    /// driver said and leaves it to the caller to note a loss once no lock is held. `present` returns what the
    /// presentation engine said (success, suboptimal, out of date, surface lost ...), throws nothing, and notes a loss.
    void submit(const vk::SubmitInfo2& submission, vk::Fence fence = {});
    vk::Result trySubmit(const vk::SubmitInfo2& submission, vk::Fence fence = {}) noexcept;
    vk::Result present(const vk::PresentInfoKHR& presentation);
    void waitIdle() noexcept;
    /// Throws when waiting fails; the GPU has finished in that case too.
    void waitFor(vk::Fence fence);

    /// Throws.
    VulkanCommands makeCommands() const;

    /// Records with `record` (a callable taking `const vk::raii::CommandBuffer&`), submits, and waits until the GPU has
    /// finished. For set-up work and read-back. Throws.
    void runAndWait(const std::function<void(const vk::raii::CommandBuffer&)>& record);

    /// Memory of a type that has `required` and, where there is one, `preferred` too. Throws. One allocation per
    /// resource: a saver has some dozens of them, and drivers allow 4096.
    vk::raii::DeviceMemory allocate(const vk::MemoryRequirements& requirements, vk::MemoryPropertyFlags required,
                                    vk::MemoryPropertyFlags preferred = {}) const;

    /// One image of a layer's ring: render target, source of copies and blits, at rest in TRANSFER_SRC_OPTIMAL, cleared
    /// to zero. On a lost device a stand-in, so that frames go on; null on any other failure.
    std::shared_ptr<VulkanTexture> makeLayerTexture(PixelFormat format, Extent size, bool framebufferOnly);

    /// Names an object for debuggers; nothing where they cannot be named. For raii objects pass `*object`.
    template <typename Handle>
    void setName(Handle handle, const std::string& name) const {
        using Native = typename Handle::NativeType;
        setObjectName(Handle::objectType, reinterpret_cast<std::uint64_t>(static_cast<Native>(handle)), name);
    }

    /// What `operation` returns; after an exception an empty value, with the reason logged once and loss noted.
    template <typename Operation>
    std::invoke_result_t<Operation> attempt(const char* what, Operation operation) noexcept {
        try {
            return operation();
        } catch (const vk::DeviceLostError&) {
            lose();
        } catch (const std::exception& error) {
            logOnce(what, error.what());
        }
        return std::invoke_result_t<Operation>();
    }

    /// Notes that the device is lost and tells the handler, once.
    void lose() noexcept;
    /// Writes "what: reason" to the system log unless it did before.
    void logOnce(const char* what, const char* reason) noexcept;

    std::shared_ptr<VulkanDevice> self() { return std::static_pointer_cast<VulkanDevice>(shared_from_this()); }

private:
    VulkanDevice(std::shared_ptr<const VulkanInstance> instance, DeviceCandidate candidate,
                 const std::filesystem::path& pipelineCacheDirectory, LostHandler onLost);
    static void close(VulkanDevice* device) noexcept;

    std::shared_ptr<CommandQueue> makeCommandQueue() override;
    std::shared_ptr<Texture> makeTexture(const TextureDescriptor& descriptor) override;
    std::shared_ptr<Buffer> makeBuffer(std::size_t length) override;
    std::shared_ptr<Library> makeLibrary(const std::filesystem::path& file) override;
    std::shared_ptr<RenderPipelineState> makeRenderPipelineState(const RenderPipelineDescriptor& descriptor) override;
    std::shared_ptr<ComputePipelineState> makeComputePipelineState(const std::shared_ptr<Function>& function) override;

    /// Runs `make` where resources can be made at all: not on a lost device nor on one that lacks features.
    template <typename Make>
    std::invoke_result_t<Make> create(const char* what, Make make);
    void setObjectName(vk::ObjectType type, std::uint64_t handle, const std::string& name) const;

    std::shared_ptr<const VulkanInstance> _instance;
    DeviceCandidate _candidate;
    bool _hasDebugLabels;
    vk::PhysicalDeviceMemoryProperties _memoryProperties;
    LostHandler _onLost;
    std::atomic<bool> _lost{false};
    std::mutex _logMutex;
    std::set<std::string> _logged;
    vk::raii::Device _device;
    std::mutex _queueMutex;
    vk::raii::Queue _queue;
    std::unique_ptr<VulkanBindings> _bindings;
    std::unique_ptr<VulkanPipelineCache> _pipelineCache;
    VulkanDevice* _leftOpenBefore = nullptr;  ///< set by `close`
};

}  // namespace gpu::vulkan
