#pragma once

#include "platform/gpu/CommandEncoder.hpp"
#include "tests/support/FakeGpu.hpp"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fake {

class CommandBuffer;
class Texture;

/// How a recorded call tells of a pass's targets.
std::string targetsOf(const gpu::RenderPassDescriptor& descriptor);

class RenderEncoder final : public gpu::RenderCommandEncoder {
public:
    explicit RenderEncoder(CommandBuffer& buffer);
    void begin(const gpu::RenderPassDescriptor& descriptor);

private:
    void encodeLabel(std::string_view label) override;
    void encodeEnd() override;
    void encodePipelineState(const std::shared_ptr<gpu::RenderPipelineState>& state) override;
    void encodeVertexBytes(std::span<const std::byte> bytes, std::size_t index) override;
    void encodeFragmentBuffer(const std::shared_ptr<gpu::Buffer>& buffer, std::size_t offset,
                              std::size_t index) override;
    void encodeFragmentTexture(const std::shared_ptr<gpu::Texture>& texture, std::size_t index) override;
    void encodeDraw(gpu::PrimitiveType type, std::size_t vertexStart, std::size_t vertexCount) override;

    void load(const gpu::ColorAttachment& attachment);

    CommandBuffer& _buffer;
    Draw _draw;
    std::map<std::size_t, std::pair<std::shared_ptr<gpu::Buffer>, std::size_t>> _boundBuffers;
    std::vector<std::shared_ptr<Texture>> _unstoredTargets;
};

class ComputeEncoder final : public gpu::ComputeCommandEncoder {
public:
    explicit ComputeEncoder(CommandBuffer& buffer);

private:
    void encodeLabel(std::string_view label) override;
    void encodeEnd() override;
    void encodePipelineState(const std::shared_ptr<gpu::ComputePipelineState>& state) override;
    void encodeBuffer(const std::shared_ptr<gpu::Buffer>& buffer, std::size_t offset, std::size_t index) override;
    void encodeTexture(const std::shared_ptr<gpu::Texture>& texture, std::size_t index) override;
    void encodeDispatch(std::size_t columns, std::size_t rows) override;

    CommandBuffer& _buffer;
};

class BlitEncoder final : public gpu::BlitCommandEncoder {
public:
    explicit BlitEncoder(CommandBuffer& buffer);

private:
    void encodeLabel(std::string_view label) override;
    void encodeEnd() override;
    void encodeTextureToTexture(const std::shared_ptr<gpu::Texture>& source, const gpu::Region& sourceRegion,
                                const std::shared_ptr<gpu::Texture>& destination,
                                gpu::Origin destinationOrigin) override;
    void encodeTextureToBuffer(const std::shared_ptr<gpu::Texture>& source, const gpu::Region& sourceRegion,
                               const std::shared_ptr<gpu::Buffer>& destination, std::size_t destinationOffset,
                               std::size_t destinationBytesPerRow) override;

    CommandBuffer& _buffer;
};

}  // namespace fake
