#include "platform/gpu/CommandEncoder.hpp"

#include "platform/SystemLog.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <array>
#include <fstream>

using gpu::FunctionType;
using gpu::PixelFormat;
using gpu::TextureUsage;

/// What reaches a backend of the calls made on encoders: everything proper, and nothing else, which is logged instead.
class CommandEncoder : public testing::Test {
protected:
    using Calls = std::vector<std::string>;

    CommandEncoder() {
        platform::setSystemLogSink([this](std::string_view line) { log.emplace_back(line); });
        gpu.setFunctions(
            {{"Vertex", FunctionType::Vertex}, {"Fragment", FunctionType::Fragment}, {"Kernel", FunctionType::Kernel}});
        std::ofstream(directory.path() / "default.metallib") << "library";
        const auto library = device->newLibrary(directory.path() / "default.metallib");
        renderPipeline = device->newRenderPipelineState({library->newFunction("Vertex", FunctionType::Vertex),
                                                         library->newFunction("Fragment", FunctionType::Fragment),
                                                         {PixelFormat::R8Unorm}});
        computePipeline = device->newComputePipelineState(library->newFunction("Kernel", FunctionType::Kernel));
    }
    ~CommandEncoder() override { platform::setSystemLogSink({}); }

    std::shared_ptr<gpu::Texture> makeTexture(TextureUsage usage) {
        return device->newTexture({PixelFormat::R8Unorm, 4, 4, usage, gpu::StorageMode::Private});
    }

    gpu::RenderCommandEncoder& beginRenderPass() {
        gpu::RenderPassDescriptor descriptor;
        descriptor.colorAttachments[0].texture = target;
        gpu::RenderCommandEncoder* const encoder = commandBuffer->renderCommandEncoder(descriptor);
        gpu.clearCalls();
        return *encoder;
    }
    gpu::ComputeCommandEncoder& beginComputePass() {
        gpu::ComputeCommandEncoder* const encoder = commandBuffer->computeCommandEncoder();
        gpu.clearCalls();
        return *encoder;
    }

    fake::TemporaryDirectory directory;
    fake::Gpu gpu;
    std::vector<std::string> log;
    std::shared_ptr<gpu::Device> device = gpu.systemDefaultDevice();
    std::shared_ptr<gpu::CommandQueue> queue = device->newCommandQueue();
    std::shared_ptr<gpu::CommandBuffer> commandBuffer = queue->commandBuffer();
    std::shared_ptr<gpu::Texture> target = makeTexture(TextureUsage::ShaderReadRenderTarget);
    std::shared_ptr<gpu::Buffer> style = device->newBuffer(32);
    std::shared_ptr<gpu::RenderPipelineState> renderPipeline;
    std::shared_ptr<gpu::ComputePipelineState> computePipeline;
    const std::array<std::byte, 132> bytes{};
};

TEST_F(CommandEncoder, ADrawNeedsAPipelineState) {
    gpu::RenderCommandEncoder& encoder = beginRenderPass();
    encoder.drawPrimitives(gpu::PrimitiveType::Triangle, 0, 3);
    EXPECT_EQ(gpu.calls(), Calls());
    EXPECT_EQ(log.size(), 1u);
    encoder.setRenderPipelineState(renderPipeline);
    encoder.drawPrimitives(gpu::PrimitiveType::Triangle, 0, 3);
    EXPECT_EQ(gpu.calls(), (Calls{"pipeline Vertex+Fragment", "draw triangle 0 3"}));
}

TEST_F(CommandEncoder, APipelineStateHoldsForItsPassOnly) {
    beginRenderPass().setRenderPipelineState(renderPipeline);
    beginRenderPass().drawPrimitives(gpu::PrimitiveType::Triangle, 0, 3);
    EXPECT_EQ(gpu.calls(), Calls());
    beginComputePass().setComputePipelineState(computePipeline);
    beginComputePass().dispatchThreadgroups(1, 1);
    EXPECT_EQ(gpu.calls(), Calls());
}

TEST_F(CommandEncoder, ADrawOfNothingIsNotADraw) {
    gpu::RenderCommandEncoder& encoder = beginRenderPass();
    encoder.setRenderPipelineState(renderPipeline);
    encoder.drawPrimitives(gpu::PrimitiveType::Triangle, 0, 0);
    EXPECT_EQ(gpu.calls(), Calls{"pipeline Vertex+Fragment"});
    EXPECT_EQ(log, Calls());
}

TEST_F(CommandEncoder, VertexBytesAreWholeWordsUpToTheLimitAtIndexZero) {
    gpu::RenderCommandEncoder& encoder = beginRenderPass();
    const std::span<const std::byte> all(bytes);
    encoder.setVertexBytes(all.first(128), 0);
    encoder.setVertexBytes(all.first(4), 0);
    EXPECT_EQ(gpu.calls(), (Calls{"vertexBytes 128 @0", "vertexBytes 4 @0"}));
    encoder.setVertexBytes(all.first(132), 0);
    encoder.setVertexBytes(all.first(6), 0);
    encoder.setVertexBytes(all.first(0), 0);
    encoder.setVertexBytes(all.first(4), 1);
    EXPECT_EQ(gpu.calls().size(), 2u);
    EXPECT_EQ(log.size(), 4u);
}

TEST_F(CommandEncoder, FragmentBuffersAreTakenWithinTheirLengthAtTheFirstFourIndices) {
    gpu::RenderCommandEncoder& encoder = beginRenderPass();
    style->setLabel("style");
    encoder.setFragmentBuffer(style, 0, 0);
    encoder.setFragmentBuffer(style, 31, 3);
    EXPECT_EQ(gpu.calls(), (Calls{"fragmentBuffer style+0 @0", "fragmentBuffer style+31 @3"}));
    encoder.setFragmentBuffer(nullptr, 0, 0);
    encoder.setFragmentBuffer(style, 32, 0);
    encoder.setFragmentBuffer(style, 0, 4);
    EXPECT_EQ(gpu.calls().size(), 2u);
    EXPECT_EQ(log.size(), 3u);
}

TEST_F(CommandEncoder, FragmentTexturesAreTakenWhenReadableAtTheFirstFourIndices) {
    gpu::RenderCommandEncoder& encoder = beginRenderPass();
    const auto readable = makeTexture(TextureUsage::ShaderRead);
    gpu.clearCalls();
    encoder.setFragmentTexture(readable, 3);
    EXPECT_EQ(gpu.calls(), Calls{"fragmentTexture R8Unorm 4x4 @3"});
    encoder.setFragmentTexture(nullptr, 0);
    encoder.setFragmentTexture(readable, 4);
    const auto drawable = makeTexture(TextureUsage::RenderTarget);
    gpu.clearCalls();
    encoder.setFragmentTexture(drawable, 0);
    EXPECT_EQ(gpu.calls(), Calls());
    EXPECT_EQ(log.size(), 3u);
}

TEST_F(CommandEncoder, AKernelTakesTexturesThatShadersMayUse) {
    const auto writable = makeTexture(TextureUsage::ShaderWrite);
    const auto drawable = makeTexture(TextureUsage::RenderTarget);
    writable->setLabel("image");
    gpu::ComputeCommandEncoder& encoder = beginComputePass();
    encoder.setTexture(writable, 0);
    EXPECT_EQ(gpu.calls(), Calls{"texture image @0"});
    encoder.setTexture(drawable, 0);
    encoder.setTexture(writable, 4);
    encoder.setTexture(nullptr, 0);
    encoder.setBuffer(nullptr, 0, 0);
    encoder.setBuffer(style, 32, 0);
    encoder.setBuffer(style, 0, 4);
    EXPECT_EQ(gpu.calls().size(), 1u);
    EXPECT_EQ(log.size(), 6u);
}

TEST_F(CommandEncoder, ADispatchNeedsAPipelineStateAndThreadgroups) {
    gpu::ComputeCommandEncoder& encoder = beginComputePass();
    encoder.dispatchThreadgroups(1, 1);
    EXPECT_EQ(log.size(), 1u);
    encoder.setComputePipelineState(computePipeline);
    encoder.dispatchThreadgroups(0, 1);
    encoder.dispatchThreadgroups(1, 0);
    encoder.dispatchThreadgroups(3, 2);
    EXPECT_EQ(gpu.calls(), (Calls{"pipeline Kernel", "dispatch 3x2"}));
}

TEST_F(CommandEncoder, NullPipelineStatesAreRefused) {
    beginRenderPass().setRenderPipelineState(nullptr);
    beginComputePass().setComputePipelineState(nullptr);
    EXPECT_EQ(gpu.calls(), Calls());
    EXPECT_EQ(log.size(), 2u);
}

TEST_F(CommandEncoder, AfterItsEndAnEncoderTakesNothing) {
    gpu::RenderCommandEncoder& encoder = beginRenderPass();
    encoder.endEncoding();
    encoder.endEncoding();
    encoder.setLabel("late");
    encoder.setRenderPipelineState(renderPipeline);
    encoder.setVertexBytes(std::span<const std::byte>(bytes).first(4), 0);
    encoder.setFragmentBuffer(style, 0, 0);
    encoder.setFragmentTexture(target, 0);
    encoder.drawPrimitives(gpu::PrimitiveType::Triangle, 0, 3);
    EXPECT_EQ(gpu.calls(), Calls{"end"});
    EXPECT_EQ(log.size(), 6u);
}

TEST_F(CommandEncoder, ABlitEncoderEndsOnceAndThenCopiesNothing) {
    gpu::BlitCommandEncoder* const encoder = commandBuffer->blitCommandEncoder();
    encoder->endEncoding();
    gpu.clearCalls();
    encoder->copyTextureToTexture(target, {{0, 0}, {1, 1}}, makeTexture(TextureUsage::ShaderRead), {0, 0});
    encoder->copyTextureToBuffer(target, {{0, 0}, {1, 1}}, style, 0, 4);
    commandBuffer->commit();
    EXPECT_EQ(gpu.calls(), (Calls{"newTexture R8Unorm 4x4 usage 1 storage 2", "commit"}));
    EXPECT_EQ(log.size(), 2u);
}

TEST_F(CommandEncoder, ARefusalIsLoggedWithItsReason) {
    beginRenderPass().drawPrimitives(gpu::PrimitiveType::Triangle, 0, 3);
    EXPECT_EQ(log, Calls{"gpu: refused: a draw without a pipeline state"});
}
