#include "renderhost/QZLDrawContext.hpp"

#include <utility>

QZLDrawContext::QZLDrawContext(std::shared_ptr<gpu::CommandBuffer> commandBuffer,
                               std::shared_ptr<gpu::RenderPassDescriptor> descriptor,
                               std::shared_ptr<gpu::Drawable> drawable)
    : _commandBuffer(std::move(commandBuffer)), _descriptor(std::move(descriptor)), _drawable(std::move(drawable)) {}

gpu::RenderCommandEncoder* QZLDrawContext::renderCommandEncoderWithState(
    const std::shared_ptr<gpu::RenderPipelineState>& state) {
    gpu::RenderCommandEncoder* encoder = _commandBuffer->renderCommandEncoder(*_descriptor);
    if (encoder != nullptr) {
        encoder->setRenderPipelineState(state);
    }
    return encoder;
}

gpu::ComputeCommandEncoder* QZLDrawContext::computeCommandEncoderWithState(
    const std::shared_ptr<gpu::ComputePipelineState>& state) {
    gpu::ComputeCommandEncoder* encoder = _commandBuffer->computeCommandEncoder();
    if (encoder != nullptr) {
        encoder->setComputePipelineState(state);
    }
    return encoder;
}

void QZLDrawContext::copyTexture(const std::shared_ptr<gpu::Texture>& source,
                                 const std::shared_ptr<gpu::Texture>& destination) {
    gpu::BlitCommandEncoder* encoder = _commandBuffer->blitCommandEncoder();
    if (encoder == nullptr) {
        return;
    }
    encoder->setLabel("BlitTextureToTexture");
    const gpu::Region whole{{0, 0}, source != nullptr ? source->size() : gpu::Extent{}};
    encoder->copyTextureToTexture(source, whole, destination, {0, 0});
    encoder->endEncoding();
}
