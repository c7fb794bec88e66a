#pragma once

#include "platform/gpu/CommandBuffer.hpp"
#include "platform/gpu/Layer.hpp"

#include <cstdint>
#include <memory>

/// What one frame is drawn with. Made by the frame loop for a single `drawFrame` and used on its thread only.
class QZLDrawContext {
public:
    QZLDrawContext(std::shared_ptr<gpu::CommandBuffer> commandBuffer,
                   std::shared_ptr<gpu::RenderPassDescriptor> descriptor, std::shared_ptr<gpu::Drawable> drawable);

    gpu::CommandBuffer& commandBuffer() const { return *_commandBuffer; }
    gpu::Drawable& drawable() const { return *_drawable; }

    /// The in-flight slot, 0 to 2, that picks the frame's own resources.
    std::int32_t bufferIndex() const { return _bufferIndex; }
    void setBufferIndex(std::int32_t bufferIndex) { _bufferIndex = bufferIndex; }
    /// The fade level, 0 to 1.
    float brightness() const { return _brightness; }
    void setBrightness(float brightness) { _brightness = brightness; }
    /// 0 for the first frame after a reset.
    std::uint64_t frameNumber() const { return _frameNumber; }
    void setFrameNumber(std::uint64_t frameNumber) { _frameNumber = frameNumber; }

    /// An encoder of the screen pass with that state set; null when none could be made. The caller ends it.
    gpu::RenderCommandEncoder* renderCommandEncoderWithState(const std::shared_ptr<gpu::RenderPipelineState>& state);
    gpu::ComputeCommandEncoder* computeCommandEncoderWithState(const std::shared_ptr<gpu::ComputePipelineState>& state);

    /// Copies the whole source to the destination's origin. The caller gives compatible textures.
    void copyTexture(const std::shared_ptr<gpu::Texture>& source, const std::shared_ptr<gpu::Texture>& destination);

private:
    std::shared_ptr<gpu::CommandBuffer> _commandBuffer;
    std::shared_ptr<gpu::RenderPassDescriptor> _descriptor;
    std::shared_ptr<gpu::Drawable> _drawable;
    std::int32_t _bufferIndex = 0;
    float _brightness = 1.0F;
    std::uint64_t _frameNumber = 0;
};
