#pragma once

#include "platform/gpu/CommandBuffer.hpp"

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

/// What one draw was given.
struct RecordedDraw {
    std::vector<std::byte> vertexBytes;
    std::map<std::size_t, std::shared_ptr<gpu::Buffer>> buffers;
    std::map<std::size_t, std::shared_ptr<gpu::Texture>> textures;
    std::vector<std::shared_ptr<gpu::Texture>> targets;
};

/// A command buffer that draws nothing and notes everything: as a line per call and as what each draw was given.
class RecordingCommandBuffer final : public gpu::CommandBuffer {
public:
    RecordingCommandBuffer() : _encoder(*this) {}

    /// From now on no encoder can be made.
    void refuseEncoders() { _refusesEncoders = true; }
    /// That many encoders can still be made; the next one throws.
    void throwAfterEncoders(int count) { _encodersBeforeThrow = count; }
    /// As if the GPU had finished.
    void complete() {
        didSchedule();
        didComplete(true);
    }

    std::vector<std::string> calls;
    std::vector<RecordedDraw> draws;

private:
    class Encoder final : public gpu::RenderCommandEncoder {
    public:
        explicit Encoder(RecordingCommandBuffer& owner) : RenderCommandEncoder(owner), _owner(owner) {}
        RecordedDraw draw;

    private:
        void encodeLabel(std::string_view label) override { note("label " + std::string(label)); }
        void encodeEnd() override { note("end"); }
        void encodePipelineState(const std::shared_ptr<gpu::RenderPipelineState>&) override { note("pipeline"); }
        void encodeVertexBytes(std::span<const std::byte> bytes, std::size_t index) override {
            draw.vertexBytes.assign(bytes.begin(), bytes.end());
            note(std::to_string(bytes.size()) + " vertex bytes at " + std::to_string(index));
        }
        void encodeFragmentBuffer(const std::shared_ptr<gpu::Buffer>& buffer, std::size_t offset,
                                  std::size_t index) override {
            draw.buffers[index] = buffer;
            note(buffer->label() + " from " + std::to_string(offset) + " at " + std::to_string(index));
        }
        void encodeFragmentTexture(const std::shared_ptr<gpu::Texture>& texture, std::size_t index) override {
            draw.textures[index] = texture;
            note("texture " + describe(*texture) + " at " + std::to_string(index));
        }
        void encodeDraw(gpu::PrimitiveType type, std::size_t start, std::size_t count) override {
            _owner.draws.push_back(draw);
            note("draw type " + std::to_string(static_cast<int>(type)) + " from " + std::to_string(start) + " count " +
                 std::to_string(count));
        }
        void note(const std::string& call) { _owner.calls.push_back(call); }

        RecordingCommandBuffer& _owner;
    };

    static std::string describe(const gpu::Texture& texture) {
        return texture.label() + " of format " + std::to_string(static_cast<int>(texture.pixelFormat()));
    }

    gpu::RenderCommandEncoder* beginRenderPass(const gpu::RenderPassDescriptor& descriptor) override {
        if (_encodersBeforeThrow && (*_encodersBeforeThrow)-- == 0) {
            throw std::bad_alloc();
        }
        if (_refusesEncoders) {
            return nullptr;
        }
        _encoder.draw = {};
        std::string call = "pass";
        for (const gpu::ColorAttachment& attachment : descriptor.colorAttachments) {
            if (attachment.texture != nullptr) {
                _encoder.draw.targets.push_back(attachment.texture);
                call += " [" + describe(*attachment.texture) + " load " +
                        std::to_string(static_cast<int>(attachment.loadAction)) + " store " +
                        std::to_string(static_cast<int>(attachment.storeAction)) + "]";
            }
        }
        calls.push_back(call);
        return &_encoder;
    }
    gpu::ComputeCommandEncoder* beginComputePass() override { return nullptr; }
    gpu::BlitCommandEncoder* beginBlitPass() override { return nullptr; }
    void didAddCompletedHandler() override { calls.emplace_back("addCompletedHandler"); }
    void submit() override {}
    void waitForGpu() override {}

    Encoder _encoder;
    bool _refusesEncoders = false;
    std::optional<int> _encodersBeforeThrow;
};
