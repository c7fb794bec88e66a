#include "platform/gpu/Device.hpp"

#include <algorithm>

namespace gpu {

std::shared_ptr<CommandQueue> Device::newCommandQueue() {
    return makeCommandQueue();
}

std::shared_ptr<Texture> Device::newTexture(const TextureDescriptor& descriptor) {
    const std::size_t limit = maximumTextureSize();
    if (descriptor.pixelFormat == PixelFormat::Invalid || descriptor.width == 0 || descriptor.height == 0 ||
        descriptor.width > limit || descriptor.height > limit) {
        return nullptr;
    }
    return makeTexture(descriptor);
}

std::shared_ptr<Buffer> Device::newBuffer(std::size_t length) {
    return length == 0 ? nullptr : makeBuffer(length);
}

std::shared_ptr<Buffer> Device::newBuffer(std::span<const std::byte> bytes) {
    std::shared_ptr<Buffer> buffer = newBuffer(bytes.size());
    if (buffer != nullptr) {
        std::copy(bytes.begin(), bytes.end(), buffer->contents());
    }
    return buffer;
}

std::shared_ptr<Library> Device::newLibrary(const std::filesystem::path& file) {
    return makeLibrary(file);
}

std::shared_ptr<RenderPipelineState> Device::newRenderPipelineState(const RenderPipelineDescriptor& descriptor) {
    const bool usable = descriptor.vertexFunction != nullptr && descriptor.fragmentFunction != nullptr &&
                        descriptor.vertexFunction->functionType() == FunctionType::Vertex &&
                        descriptor.fragmentFunction->functionType() == FunctionType::Fragment &&
                        descriptor.colorAttachmentFormats.size() <= RenderPassDescriptor::maximumColorAttachments;
    return usable ? makeRenderPipelineState(descriptor) : nullptr;
}

std::shared_ptr<ComputePipelineState> Device::newComputePipelineState(const std::shared_ptr<Function>& function) {
    const bool usable = function != nullptr && function->functionType() == FunctionType::Kernel;
    return usable ? makeComputePipelineState(function) : nullptr;
}

}  // namespace gpu
