#include "platform/gpu/CommandEncoder.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/CommandBuffer.hpp"
#include "platform/gpu/Regions.hpp"

#include <string>
#include <utility>

namespace gpu {

void CommandEncoder::setLabel(std::string_view label) {
    if (checkOpen("setLabel")) {
        encodeLabel(label);
    }
}

void CommandEncoder::endEncoding() {
    if (_open) {
        _open = false;
        encodeEnd();
    }
}

void CommandEncoder::refuse(const char* message) {
    platform::systemLog(std::string("gpu: refused: ") + message);
}

void CommandEncoder::keep(std::shared_ptr<const void> object) {
    _commandBuffer._kept.push_back(std::move(object));
}

void RenderCommandEncoder::setRenderPipelineState(const std::shared_ptr<RenderPipelineState>& state) {
    if (checkOpen("setRenderPipelineState after the end") && check(state != nullptr, "a null render pipeline state")) {
        keep(state);
        _hasPipeline = true;
        encodePipelineState(state);
    }
}

void RenderCommandEncoder::setVertexBytes(std::span<const std::byte> bytes, std::size_t index) {
    if (checkOpen("setVertexBytes after the end") &&
        check(index == 0 && !bytes.empty() && bytes.size() <= maximumVertexBytes && bytes.size() % 4 == 0,
              "vertex bytes beyond index 0 or 128 bytes, none, or not whole words")) {
        encodeVertexBytes(bytes, index);
    }
}

void RenderCommandEncoder::setFragmentBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset,
                                             std::size_t index) {
    if (checkOpen("setFragmentBuffer after the end") &&
        check(buffer != nullptr && offset < buffer->length() && index < maximumBindings,
              "a fragment buffer that is null, or an offset or index out of range")) {
        keep(buffer);
        encodeFragmentBuffer(buffer, offset, index);
    }
}

void RenderCommandEncoder::setFragmentTexture(const std::shared_ptr<Texture>& texture, std::size_t index) {
    if (checkOpen("setFragmentTexture after the end") &&
        check(texture != nullptr && contains(texture->usage(), TextureUsage::ShaderRead) && index < maximumBindings,
              "a fragment texture that is null or not readable, or an index out of range")) {
        keep(texture);
        encodeFragmentTexture(texture, index);
    }
}

void RenderCommandEncoder::drawPrimitives(PrimitiveType type, std::size_t vertexStart, std::size_t vertexCount) {
    if (checkOpen("drawPrimitives after the end") && check(_hasPipeline, "a draw without a pipeline state") &&
        vertexCount > 0) {
        encodeDraw(type, vertexStart, vertexCount);
    }
}

void ComputeCommandEncoder::setComputePipelineState(const std::shared_ptr<ComputePipelineState>& state) {
    if (checkOpen("setComputePipelineState after the end") &&
        check(state != nullptr, "a null compute pipeline state")) {
        keep(state);
        _hasPipeline = true;
        encodePipelineState(state);
    }
}

void ComputeCommandEncoder::setBuffer(const std::shared_ptr<Buffer>& buffer, std::size_t offset, std::size_t index) {
    if (checkOpen("setBuffer after the end") &&
        check(buffer != nullptr && offset < buffer->length() && index < RenderCommandEncoder::maximumBindings,
              "a buffer that is null, or an offset or index out of range")) {
        keep(buffer);
        encodeBuffer(buffer, offset, index);
    }
}

void ComputeCommandEncoder::setTexture(const std::shared_ptr<Texture>& texture, std::size_t index) {
    if (checkOpen("setTexture after the end") &&
        check(texture != nullptr && contains(texture->usage(), TextureUsage::ShaderReadWrite) &&
                  index < RenderCommandEncoder::maximumBindings,
              "a texture that is null or not for shaders, or an index out of range")) {
        keep(texture);
        encodeTexture(texture, index);
    }
}

void ComputeCommandEncoder::dispatchThreadgroups(std::size_t columns, std::size_t rows) {
    if (checkOpen("dispatchThreadgroups after the end") && check(_hasPipeline, "a dispatch without a pipeline state") &&
        columns > 0 && rows > 0) {
        encodeDispatch(columns, rows);
    }
}

void BlitCommandEncoder::copyTextureToTexture(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                                              const std::shared_ptr<Texture>& destination, Origin destinationOrigin) {
    if (!checkOpen("copyTextureToTexture after the end") ||
        !check(source != nullptr && destination != nullptr && source != destination,
               "a copy of a null texture, to one, or of one to itself")) {
        return;
    }
    if (check(isInside(sourceRegion, source->size()) &&
                  isInside({destinationOrigin, sourceRegion.size}, destination->size()) &&
                  bytesPerPixel(source->pixelFormat()) == bytesPerPixel(destination->pixelFormat()),
              "a copy outside a texture or between formats of different size")) {
        keep(source);
        keep(destination);
        encodeTextureToTexture(source, sourceRegion, destination, destinationOrigin);
    }
}

void BlitCommandEncoder::copyTextureToBuffer(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                                             const std::shared_ptr<Buffer>& destination, std::size_t destinationOffset,
                                             std::size_t destinationBytesPerRow) {
    if (!checkOpen("copyTextureToBuffer after the end") ||
        !check(source != nullptr && destination != nullptr, "a copy from a null texture or to a null buffer")) {
        return;
    }
    const std::size_t pixelBytes = bytesPerPixel(source->pixelFormat());
    const std::size_t rowBytes = sourceRegion.size.width * pixelBytes;
    if (check(isInside(sourceRegion, source->size()) && destinationOffset <= destination->length() &&
                  holdsRows(destination->length() - destinationOffset, sourceRegion.size.height, destinationBytesPerRow,
                            rowBytes),
              "a copy outside a texture or a buffer") &&
        check(destinationOffset % pixelBytes == 0 && destinationBytesPerRow % pixelBytes == 0,
              "a copy to an offset or with a row length that is not whole pixels")) {
        keep(source);
        keep(destination);
        encodeTextureToBuffer(source, sourceRegion, destination, destinationOffset, destinationBytesPerRow);
    }
}

}  // namespace gpu
