#include "renderhost/QZLPipelineState.hpp"

#include "foundation/QZLBundle.hpp"
#include "platform/gpu/Device.hpp"
#include "renderhost/QZLRenderHostError.hpp"

namespace {

/// The saver's shader library, or null with the error reported.
std::shared_ptr<gpu::Library> loadLibrary(gpu::Device* device, platform::ErrorPlace error, std::uint64_t subCode) {
    const auto bundle = QZLSaverBundle();
    if (bundle == nullptr) {
        QZLReportError(error, QZLErrorBundle, subCode);
        return nullptr;
    }
    const auto path = bundle->pathForResource("default", "metallib");
    std::shared_ptr<gpu::Library> library = device != nullptr && path ? device->newLibrary(*path) : nullptr;
    if (library == nullptr) {
        QZLReportError(error, QZLErrorShaderLibrary, subCode);
    }
    return library;
}

}  // namespace

std::shared_ptr<gpu::RenderPipelineState> QZLCreateCustomRenderPipelineState(
    const gpu::Layer& layer, const gpu::PixelFormat* pixelFormats, std::size_t colorAttachmentCount,
    const std::string& vertexFunctionName, const std::string& fragmentFunctionName, platform::ErrorPlace error,
    std::uint64_t subCode, const std::vector<std::uint32_t>& constants) {
    const auto device = layer.device();
    const auto library = loadLibrary(device.get(), error, subCode);
    if (library == nullptr) {
        return nullptr;
    }
    gpu::RenderPipelineDescriptor descriptor;
    descriptor.vertexFunction = library->newFunction(vertexFunctionName, gpu::FunctionType::Vertex);
    descriptor.fragmentFunction = library->newFunction(fragmentFunctionName, gpu::FunctionType::Fragment);
    if (descriptor.vertexFunction == nullptr) {
        QZLReportError(error, QZLErrorVertexFunction, subCode);
        return nullptr;
    }
    if (descriptor.fragmentFunction == nullptr) {
        QZLReportError(error, QZLErrorFragmentFunction, subCode);
        return nullptr;
    }
    descriptor.colorAttachmentFormats.assign(pixelFormats, pixelFormats + colorAttachmentCount);
    descriptor.constants = constants;
    auto state = device->newRenderPipelineState(descriptor);
    if (state == nullptr) {
        QZLReportError(error, QZLErrorRenderPipeline, subCode);
    }
    return state;
}

std::shared_ptr<gpu::RenderPipelineState> QZLCreateRenderPipelineState(const gpu::Layer& layer,
                                                                       const std::string& vertexFunctionName,
                                                                       const std::string& fragmentFunctionName,
                                                                       platform::ErrorPlace error,
                                                                       std::uint64_t subCode) {
    const gpu::PixelFormat format = layer.pixelFormat();
    return QZLCreateCustomRenderPipelineState(layer, &format, 1, vertexFunctionName, fragmentFunctionName, error,
                                              subCode);
}

std::shared_ptr<gpu::RenderPipelineState> QZLCreateRenderToTexturePipelineState(
    const gpu::Layer& layer, const gpu::Texture& target, const std::string& vertexFunctionName,
    const std::string& fragmentFunctionName, platform::ErrorPlace error, std::uint64_t subCode) {
    const gpu::PixelFormat format = target.pixelFormat();
    return QZLCreateCustomRenderPipelineState(layer, &format, 1, vertexFunctionName, fragmentFunctionName, error,
                                              subCode);
}

std::shared_ptr<gpu::ComputePipelineState> QZLCreateComputePipelineState(const gpu::Layer& layer,
                                                                         const std::string& computeFunctionName,
                                                                         platform::ErrorPlace error,
                                                                         std::uint64_t subCode) {
    const auto device = layer.device();
    const auto library = loadLibrary(device.get(), error, subCode);
    if (library == nullptr) {
        return nullptr;
    }
    const auto function = library->newFunction(computeFunctionName, gpu::FunctionType::Kernel);
    if (function == nullptr) {
        QZLReportError(error, QZLErrorComputeFunction, subCode);
        return nullptr;
    }
    auto state = device->newComputePipelineState(function);
    if (state == nullptr) {
        QZLReportError(error, QZLErrorComputePipeline, subCode);
    }
    return state;
}
