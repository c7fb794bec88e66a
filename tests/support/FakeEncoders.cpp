#include "tests/support/FakeEncoders.hpp"

#include "tests/support/FakeCommandBuffer.hpp"
#include "tests/support/FakeDevice.hpp"
#include "tests/support/FakePixels.hpp"
#include "tests/support/FakeTexture.hpp"

#include <cstring>
#include <sstream>

namespace fake {
namespace {

std::shared_ptr<Texture> fakeTexture(const std::shared_ptr<gpu::Texture>& texture) {
    return std::static_pointer_cast<Texture>(texture);
}

std::string targetText(const gpu::ColorAttachment& attachment) {
    std::ostringstream name;
    name << nameOf(*attachment.texture);
    switch (attachment.loadAction) {
        case gpu::LoadAction::DontCare: name << " dontCare"; break;
        case gpu::LoadAction::Load: name << " load"; break;
        case gpu::LoadAction::Clear: {
            const gpu::ClearColor& color = attachment.clearColor;
            name << " clear(" << color.red << ' ' << color.green << ' ' << color.blue << ' ' << color.alpha << ')';
            break;
        }
    }
    name << (attachment.storeAction == gpu::StoreAction::Store ? " store" : " dontCare");
    return name.str();
}

std::string primitiveText(gpu::PrimitiveType type) {
    return type == gpu::PrimitiveType::Triangle ? "triangle" : "triangleStrip";
}

std::string at(std::size_t index) {
    return " @" + std::to_string(index);
}

std::string placeIn(const gpu::Buffer& buffer, std::size_t offset) {
    return nameOf(buffer) + "+" + std::to_string(offset);
}

}  // namespace

std::string targetsOf(const gpu::RenderPassDescriptor& descriptor) {
    std::string targets;
    for (const gpu::ColorAttachment& attachment : descriptor.colorAttachments) {
        if (attachment.texture != nullptr) {
            targets += (targets.empty() ? "" : ", ") + targetText(attachment);
        }
    }
    return "[" + targets + "]";
}

RenderEncoder::RenderEncoder(CommandBuffer& buffer) : RenderCommandEncoder(buffer), _buffer(buffer) {}

void RenderEncoder::begin(const gpu::RenderPassDescriptor& descriptor) {
    _draw = {};
    _boundBuffers.clear();
    _unstoredTargets.clear();
    for (const gpu::ColorAttachment& attachment : descriptor.colorAttachments) {
        if (attachment.texture != nullptr) {
            _draw.targets.push_back(nameOf(*attachment.texture));
            load(attachment);
        }
    }
}

void RenderEncoder::load(const gpu::ColorAttachment& attachment) {
    const std::shared_ptr<Texture> target = fakeTexture(attachment.texture);
    if (attachment.loadAction == gpu::LoadAction::Clear) {
        _buffer.addWork(
            [target, color = attachment.clearColor] { target->fill(encodedPixel(target->pixelFormat(), color)); });
    } else if (attachment.loadAction == gpu::LoadAction::DontCare) {
        _buffer.addWork([target] { target->fillWithGarbage(); });
    }
    if (attachment.storeAction == gpu::StoreAction::DontCare) {
        _unstoredTargets.push_back(target);
    }
}

void RenderEncoder::encodeLabel(std::string_view label) {
    _buffer.record("label " + std::string(label));
}

void RenderEncoder::encodeEnd() {
    for (const std::shared_ptr<Texture>& target : _unstoredTargets) {
        _buffer.addWork([target] { target->fillWithGarbage(); });
    }
    _unstoredTargets.clear();
    _boundBuffers.clear();
    _buffer.record("end");
}

void RenderEncoder::encodePipelineState(const std::shared_ptr<gpu::RenderPipelineState>& state) {
    _draw.pipeline = static_cast<const RenderPipelineState&>(*state).name();
    _buffer.record("pipeline " + _draw.pipeline);
}

void RenderEncoder::encodeVertexBytes(std::span<const std::byte> bytes, std::size_t index) {
    _draw.vertexBytes.assign(bytes.begin(), bytes.end());
    _buffer.record("vertexBytes " + std::to_string(bytes.size()) + at(index));
}

void RenderEncoder::encodeFragmentBuffer(const std::shared_ptr<gpu::Buffer>& buffer, std::size_t offset,
                                         std::size_t index) {
    _boundBuffers[index] = {buffer, offset};
    _buffer.record("fragmentBuffer " + placeIn(*buffer, offset) + at(index));
}

void RenderEncoder::encodeFragmentTexture(const std::shared_ptr<gpu::Texture>& texture, std::size_t index) {
    _draw.fragmentTextures[index] = nameOf(*texture);
    _buffer.record("fragmentTexture " + nameOf(*texture) + at(index));
}

void RenderEncoder::encodeDraw(gpu::PrimitiveType type, std::size_t vertexStart, std::size_t vertexCount) {
    _draw.primitiveType = type;
    _draw.vertexStart = vertexStart;
    _draw.vertexCount = vertexCount;
    _buffer.addDraw(_draw, _boundBuffers);
    _buffer.record("draw " + primitiveText(type) + " " + std::to_string(vertexStart) + " " +
                   std::to_string(vertexCount));
}

ComputeEncoder::ComputeEncoder(CommandBuffer& buffer) : ComputeCommandEncoder(buffer), _buffer(buffer) {}

void ComputeEncoder::encodeLabel(std::string_view label) {
    _buffer.record("label " + std::string(label));
}

void ComputeEncoder::encodeEnd() {
    _buffer.record("end");
}

void ComputeEncoder::encodePipelineState(const std::shared_ptr<gpu::ComputePipelineState>& state) {
    _buffer.record("pipeline " + static_cast<const ComputePipelineState&>(*state).name());
}

void ComputeEncoder::encodeBuffer(const std::shared_ptr<gpu::Buffer>& buffer, std::size_t offset, std::size_t index) {
    _buffer.record("buffer " + placeIn(*buffer, offset) + at(index));
}

void ComputeEncoder::encodeTexture(const std::shared_ptr<gpu::Texture>& texture, std::size_t index) {
    _buffer.record("texture " + nameOf(*texture) + at(index));
}

void ComputeEncoder::encodeDispatch(std::size_t columns, std::size_t rows) {
    _buffer.record("dispatch " + nameOf(gpu::Extent{columns, rows}));
}

BlitEncoder::BlitEncoder(CommandBuffer& buffer) : BlitCommandEncoder(buffer), _buffer(buffer) {}

void BlitEncoder::encodeLabel(std::string_view label) {
    _buffer.record("label " + std::string(label));
}

void BlitEncoder::encodeEnd() {
    _buffer.record("end");
}

void BlitEncoder::encodeTextureToTexture(const std::shared_ptr<gpu::Texture>& source, const gpu::Region& sourceRegion,
                                         const std::shared_ptr<gpu::Texture>& destination,
                                         gpu::Origin destinationOrigin) {
    _buffer.record("copy " + nameOf(*source) + " " + nameOf(sourceRegion.origin) + " " + nameOf(sourceRegion.size) +
                   " to " + nameOf(*destination) + " " + nameOf(destinationOrigin));
    _buffer.addWork([from = fakeTexture(source), sourceRegion, to = fakeTexture(destination), destinationOrigin] {
        const std::size_t rowBytes = sourceRegion.size.width * bytesPerPixel(from->pixelFormat());
        to->write({destinationOrigin, sourceRegion.size}, from->read(sourceRegion), rowBytes);
    });
}

void BlitEncoder::encodeTextureToBuffer(const std::shared_ptr<gpu::Texture>& source, const gpu::Region& sourceRegion,
                                        const std::shared_ptr<gpu::Buffer>& destination, std::size_t destinationOffset,
                                        std::size_t destinationBytesPerRow) {
    _buffer.record("copy " + nameOf(*source) + " " + nameOf(sourceRegion.origin) + " " + nameOf(sourceRegion.size) +
                   " to " + placeIn(*destination, destinationOffset) + " " + std::to_string(destinationBytesPerRow));
    _buffer.addWork([from = fakeTexture(source), sourceRegion, destination, destinationOffset, destinationBytesPerRow] {
        const std::vector<std::byte> pixels = from->read(sourceRegion);
        const std::size_t rowBytes = pixels.size() / sourceRegion.size.height;
        for (std::size_t row = 0; row < sourceRegion.size.height; ++row) {
            std::memcpy(destination->contents() + destinationOffset + row * destinationBytesPerRow,
                        pixels.data() + row * rowBytes, rowBytes);
        }
    });
}

}  // namespace fake
