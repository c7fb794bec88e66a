#include "platform/gpu/vulkan/VulkanLibrary.hpp"

#include <optional>
#include <utility>

namespace gpu::vulkan {
namespace {

vk::ShaderModuleCreateInfo moduleInfo(const std::vector<std::uint32_t>& words) {
    return {.codeSize = words.size() * sizeof(std::uint32_t), .pCode = words.data()};
}

}  // namespace

std::shared_ptr<VulkanLibrary> VulkanLibrary::open(const std::shared_ptr<VulkanDevice>& device,
                                                   const std::filesystem::path& file) {
    std::string reason;
    std::optional<SpirvModule> spirv = SpirvModule::readFile(file, reason);
    if (!spirv.has_value()) {
        device->logOnce(("shader library " + file.string()).c_str(), reason.c_str());
        return nullptr;
    }
    return std::shared_ptr<VulkanLibrary>(new VulkanLibrary(device, std::move(*spirv)));
}

VulkanLibrary::VulkanLibrary(const std::shared_ptr<VulkanDevice>& device, SpirvModule spirv)
    : Library(device), _spirv(std::move(spirv)), _module(device->handle(), moduleInfo(_spirv.words())) {}

std::shared_ptr<Function> VulkanLibrary::makeFunction(const std::string& name, FunctionType type) {
    if (!_spirv.hasEntryPoint(name, type)) {
        return nullptr;
    }
    return std::make_shared<VulkanFunction>(shared_from_this(), name, type);
}

void VulkanLibrary::labelDidChange() {
    static_cast<VulkanDevice&>(*device()).setName(*_module, label());
}

}  // namespace gpu::vulkan
