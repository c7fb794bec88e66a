#pragma once

#include "benchmarks/frameloop/BareDevice.hpp"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace bench {

/// The shader library's two passes as pipelines of one layout: set 0 one uniform buffer, set 1 two textures, set 2 the
/// repeating, the clamping and the nearest sampler, the quad as push constants.
class BarePipelines {
public:
    /// For intermediate images of so many rows.
    BarePipelines(const BareDevice& device, const std::filesystem::path& shaderLibrary, std::uint32_t rows);

    vk::Pipeline colorPass() const { return *_colorPass; }
    vk::Pipeline lightPass() const { return *_lightPass; }
    vk::PipelineLayout layout() const { return *_layout; }
    /// In the order of their numbers.
    const std::vector<vk::raii::DescriptorSetLayout>& setLayouts() const { return _setLayouts; }

    static constexpr vk::Format colorFormat = vk::Format::eA2B10G10R10UnormPack32;
    static constexpr vk::Format heightFormat = vk::Format::eR16Unorm;
    static constexpr vk::Format pictureFormat = vk::Format::eB8G8R8A8Unorm;

private:
    vk::raii::Sampler _repeating;
    vk::raii::Sampler _clamping;
    vk::raii::Sampler _nearest;
    std::vector<vk::raii::DescriptorSetLayout> _setLayouts;
    vk::raii::PipelineLayout _layout;
    vk::raii::ShaderModule _module;
    vk::raii::Pipeline _colorPass;
    vk::raii::Pipeline _lightPass;
};

}  // namespace bench
