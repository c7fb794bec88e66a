#pragma once

#include "platform/Error.hpp"
#include "platform/gpu/Layer.hpp"
#include "platform/gpu/Resources.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// Pipeline states from the shader library "default" of the saver's bundle, which is loaded afresh by every call.
// On failure: null, and an error in the place given: 100 no bundle, 101 no library, 102 no vertex function, 103 no
// fragment function, 104 no compute function, 105 no render pipeline, 106 no compute pipeline. Any thread.

/// `constants` become the functions' specialisation constants 1, 2, …
std::shared_ptr<gpu::RenderPipelineState> QZLCreateCustomRenderPipelineState(
    const gpu::Layer& layer, const gpu::PixelFormat* pixelFormats, std::size_t colorAttachmentCount,
    const std::string& vertexFunctionName, const std::string& fragmentFunctionName, platform::ErrorPlace error,
    std::uint64_t subCode, const std::vector<std::uint32_t>& constants = {});

/// One colour attachment in the layer's format.
std::shared_ptr<gpu::RenderPipelineState> QZLCreateRenderPipelineState(const gpu::Layer& layer,
                                                                       const std::string& vertexFunctionName,
                                                                       const std::string& fragmentFunctionName,
                                                                       platform::ErrorPlace error,
                                                                       std::uint64_t subCode);

/// One colour attachment in the target texture's format.
std::shared_ptr<gpu::RenderPipelineState> QZLCreateRenderToTexturePipelineState(
    const gpu::Layer& layer, const gpu::Texture& target, const std::string& vertexFunctionName,
    const std::string& fragmentFunctionName, platform::ErrorPlace error, std::uint64_t subCode);

std::shared_ptr<gpu::ComputePipelineState> QZLCreateComputePipelineState(const gpu::Layer& layer,
                                                                         const std::string& computeFunctionName,
                                                                         platform::ErrorPlace error,
                                                                         std::uint64_t subCode);
