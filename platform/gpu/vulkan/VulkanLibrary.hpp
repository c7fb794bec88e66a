#pragma once

#include "platform/gpu/vulkan/SpirvModule.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace gpu::vulkan {

/// A shader library: one validated SPIR-V module with several entry points. Immutable, any thread.
class VulkanLibrary final : public Library, public std::enable_shared_from_this<VulkanLibrary> {
public:
    /// Null, with the reason logged once, for a file that is missing or no valid module. Throws as Vulkan does.
    static std::shared_ptr<VulkanLibrary> open(const std::shared_ptr<VulkanDevice>& device,
                                               const std::filesystem::path& file);

    vk::ShaderModule module() const { return *_module; }

private:
    VulkanLibrary(const std::shared_ptr<VulkanDevice>& device, SpirvModule spirv);
    std::shared_ptr<Function> makeFunction(const std::string& name, FunctionType type) override;
    void labelDidChange() override;

    SpirvModule _spirv;
    vk::raii::ShaderModule _module;
};

/// An entry point, for use in a pipeline's stage. Immutable.
class VulkanFunction final : public Function {
public:
    VulkanFunction(std::shared_ptr<const VulkanLibrary> library, const std::string& name, FunctionType type)
        : Function(name, type), _library(std::move(library)) {}

    vk::ShaderModule module() const { return _library->module(); }

private:
    std::shared_ptr<const VulkanLibrary> _library;
};

}  // namespace gpu::vulkan
