#include "platform/gpu/vulkan/VulkanPipelineCache.hpp"

#include <algorithm>
#include <exception>
#include <span>
#include <string>

namespace gpu::vulkan {
namespace {

std::filesystem::path fileFor(const vk::PhysicalDeviceProperties& properties, const std::filesystem::path& directory) {
    if (directory.empty()) {
        return {};
    }
    std::string name = "pipelines-";
    for (const std::uint8_t byte : properties.pipelineCacheUUID) {
        constexpr char digits[] = "0123456789abcdef";
        name += digits[byte >> 4];
        name += digits[byte & 0xF];
    }
    return directory / (name + ".cache");
}

std::vector<std::byte> readFile(const std::filesystem::path& file, const vk::PhysicalDeviceProperties& properties) {
    PipelineCacheIdentity identity{.vendor = properties.vendorID, .device = properties.deviceID};
    std::copy(properties.pipelineCacheUUID.begin(), properties.pipelineCacheUUID.end(), identity.uuid.begin());
    return file.empty() ? std::vector<std::byte>() : readPipelineCacheFile(file, identity);
}

}  // namespace

VulkanPipelineCache::VulkanPipelineCache(const vk::raii::Device& device, const vk::PhysicalDeviceProperties& properties,
                                         const std::filesystem::path& directory)
    : _file(fileFor(properties, directory)),
      _saved(readFile(_file, properties)),
      _cache(device, vk::PipelineCacheCreateInfo{.initialDataSize = _saved.size(), .pInitialData = _saved.data()}) {}

VulkanPipelineCache::~VulkanPipelineCache() {
    save();
}

void VulkanPipelineCache::save() noexcept {
    if (_file.empty()) {
        return;
    }
    try {
        const std::lock_guard lock(_mutex);
        const std::vector<std::uint8_t> current = _cache.getData();
        const std::span bytes = std::as_bytes(std::span(current));
        if (!std::ranges::equal(bytes, _saved) && writePipelineCacheFile(_file, bytes)) {
            _saved.assign(bytes.begin(), bytes.end());
        }
    } catch (const std::exception&) {
        // A lost device or a full memory: the next start compiles anew.
    }
}

}  // namespace gpu::vulkan
