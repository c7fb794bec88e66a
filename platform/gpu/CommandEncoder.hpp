#pragma once

#include "platform/gpu/RenderPassDescriptor.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace gpu {

class CommandBuffer;

/// Records commands into a command buffer. Owned by that buffer and valid until it ends; a buffer has at most one open
/// encoder, and opening the next or committing ends it. One thread at a time. Wrong arguments are logged and skipped.
class CommandEncoder {
public:
    CommandEncoder(const CommandEncoder&) = delete;
    CommandEncoder& operator=(const CommandEncoder&) = delete;
    virtual ~CommandEncoder() = default;

    void setLabel(std::string_view label);
    void endEncoding();
    bool isOpen() const { return _open; }

protected:
    explicit CommandEncoder(CommandBuffer& commandBuffer) : _commandBuffer(commandBuffer) {}
    CommandBuffer& commandBuffer() { return _commandBuffer; }
    bool checkOpen(const char* operation) const { return check(_open, operation); }
    /// The condition; when it does not hold, the message is logged.
    bool check(bool condition, const char* message) const {
        if (!condition) {
            refuse(message);
        }
        return condition;
    }
    void keep(std::shared_ptr<const void> object);

private:
    friend class CommandBuffer;
    virtual void encodeLabel(std::string_view label) = 0;
    virtual void encodeEnd() = 0;
    static void refuse(const char* message);

    CommandBuffer& _commandBuffer;
    bool _open = false;
};

/// One render pass. Binding layout: vertex bytes (at most 128) become push constants; fragment buffer n is binding n of
/// set 0, fragment texture n binding n of set 1; set 2 holds a repeating linear, a clamping linear and a clamping
/// nearest sampler. The vertex function sees all that too, for what need not be worked out pixel by pixel.
class RenderCommandEncoder : public CommandEncoder {
public:
    static constexpr std::size_t maximumVertexBytes = 128;
    static constexpr std::size_t maximumBindings = 4;

    void setRenderPipelineState(const std::shared_ptr<RenderPipelineState>& state);
    void setVertexBytes(std::span<const std::byte> bytes, std::size_t index);
    void setFragmentBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset, std::size_t index);
    void setFragmentTexture(const std::shared_ptr<Texture>& texture, std::size_t index);
    void drawPrimitives(PrimitiveType type, std::size_t vertexStart, std::size_t vertexCount);

protected:
    using CommandEncoder::CommandEncoder;

private:
    virtual void encodePipelineState(const std::shared_ptr<RenderPipelineState>& state) = 0;
    virtual void encodeVertexBytes(std::span<const std::byte> bytes, std::size_t index) = 0;
    virtual void encodeFragmentBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset, std::size_t index) = 0;
    virtual void encodeFragmentTexture(const std::shared_ptr<Texture>& texture, std::size_t index) = 0;
    virtual void encodeDraw(PrimitiveType type, std::size_t vertexStart, std::size_t vertexCount) = 0;

    friend class CommandBuffer;
    bool _hasPipeline = false;
};

/// Compute dispatches. Buffer n is binding n of set 0; a texture made for writing is storage image n of set 3, any
/// other is binding n of set 1.
class ComputeCommandEncoder : public CommandEncoder {
public:
    void setComputePipelineState(const std::shared_ptr<ComputePipelineState>& state);
    void setBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset, std::size_t index);
    void setTexture(const std::shared_ptr<Texture>& texture, std::size_t index);
    void dispatchThreadgroups(std::size_t columns, std::size_t rows);

protected:
    using CommandEncoder::CommandEncoder;

private:
    virtual void encodePipelineState(const std::shared_ptr<ComputePipelineState>& state) = 0;
    virtual void encodeBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset, std::size_t index) = 0;
    virtual void encodeTexture(const std::shared_ptr<Texture>& texture, std::size_t index) = 0;
    virtual void encodeDispatch(std::size_t columns, std::size_t rows) = 0;

    friend class CommandBuffer;
    bool _hasPipeline = false;
};

/// Copies between textures and buffers, slice 0 and level 0 only. Formats must agree in bytes per pixel, and the
/// regions must lie inside both sides.
class BlitCommandEncoder : public CommandEncoder {
public:
    void copyTextureToTexture(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                              const std::shared_ptr<Texture>& destination, Origin destinationOrigin);
    void copyTextureToBuffer(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                             const std::shared_ptr<Buffer>& destination, std::size_t destinationOffset,
                             std::size_t destinationBytesPerRow);

protected:
    using CommandEncoder::CommandEncoder;

private:
    virtual void encodeTextureToTexture(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                                        const std::shared_ptr<Texture>& destination, Origin destinationOrigin) = 0;
    virtual void encodeTextureToBuffer(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                                       const std::shared_ptr<Buffer>& destination, std::size_t destinationOffset,
                                       std::size_t destinationBytesPerRow) = 0;
};

}  // namespace gpu
