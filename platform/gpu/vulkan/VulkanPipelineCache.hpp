#pragma once

#include "platform/gpu/vulkan/PipelineCacheFile.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <vector>

namespace gpu::vulkan {

/// The driver's cache of compiled pipelines, kept in a file of its own for each driver so that the next start compiles
/// nothing. Part of a device. Any thread. Without a folder, or with one that cannot be written, it serves this run
/// only.
class VulkanPipelineCache {
public:
    /// Takes up the file of an earlier run when it fits this driver. Throws when the driver refuses even an empty
    /// cache.
    VulkanPipelineCache(const vk::raii::Device& device, const vk::PhysicalDeviceProperties& properties,
                        const std::filesystem::path& directory);
    VulkanPipelineCache(const VulkanPipelineCache&) = delete;
    VulkanPipelineCache& operator=(const VulkanPipelineCache&) = delete;
    /// Saves.
    ~VulkanPipelineCache();

    const vk::raii::PipelineCache& handle() const { return _cache; }

    /// Writes the file if the cache has changed since it was read or written. For after set-up, not for each frame.
    void save() noexcept;

private:
    std::filesystem::path _file;
    std::vector<std::byte> _saved;
    vk::raii::PipelineCache _cache;
    std::mutex _mutex;
};

}  // namespace gpu::vulkan
