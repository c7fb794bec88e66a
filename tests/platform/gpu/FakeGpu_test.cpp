#include "tests/support/FakeGpu.hpp"

#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>

using gpu::FunctionType;
using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::StoreAction;
using gpu::TextureUsage;

/// What tests that use the fake rely on.
class FakeGpu : public testing::Test {
protected:
    using Calls = std::vector<std::string>;

    FakeGpu() { std::ofstream(directory.path() / "default.metallib") << "library"; }

    std::shared_ptr<gpu::Texture> makeTarget(const std::string& label) {
        auto texture = device->newTexture(
            {PixelFormat::BGRA8Unorm, 2, 2, TextureUsage::ShaderReadRenderTarget, gpu::StorageMode::Private});
        texture->setLabel(label);
        return texture;
    }
    std::shared_ptr<gpu::RenderPipelineState> makePipeline() {
        const auto library = device->newLibrary(directory.path() / "default.metallib");
        return device->newRenderPipelineState({library->newFunction("QZLColorVertexShader", FunctionType::Vertex),
                                               library->newFunction("QZLColorFragmentShader", FunctionType::Fragment),
                                               {PixelFormat::RGB10A2Unorm, PixelFormat::R16Unorm}});
    }
    static std::byte firstByte(const gpu::Texture& texture) { return fake::Gpu::pixels(texture).front(); }

    fake::TemporaryDirectory directory;
    fake::ScopedGpu gpu;
    std::shared_ptr<gpu::Device> device = gpu::createSystemDefaultDevice();
    std::shared_ptr<gpu::CommandQueue> queue = device->newCommandQueue();
};

TEST_F(FakeGpu, IsAKnownDevice) {
    EXPECT_EQ(gpu->platformVersion(), "10.13.239");
    EXPECT_EQ(device->name(), "Fake GPU");
    EXPECT_EQ(device->driverDescription(), "fake 1.0");
}

TEST_F(FakeGpu, RecordsCreationsWithWhatWasAskedFor) {
    makePipeline();
    makeTarget("color");
    device->newBuffer(64);
    gpu::createLayer();
    gpu::createRenderPassDescriptor();
    EXPECT_EQ(
        gpu->calls(),
        (Calls{"openDevice", "newCommandQueue", "newLibrary default.metallib", "newFunction QZLColorVertexShader",
               "newFunction QZLColorFragmentShader",
               "newRenderPipeline QZLColorVertexShader+QZLColorFragmentShader [RGB10A2Unorm, R16Unorm]",
               "newTexture BGRA8Unorm 2x2 usage 5 storage 2", "newBuffer 64", "newLayer", "newRenderPassDescriptor"}));
}

TEST_F(FakeGpu, RecordsAFrameCallByCall) {
    const auto layer = gpu::createLayer();
    layer->setDevice(device);
    layer->setDrawableSize({2, 2});
    const auto pipeline = makePipeline();
    const auto style = device->newBuffer(16);
    style->setLabel("style0");
    const auto noise = device->newTexture({PixelFormat::R8Snorm, 2, 2, TextureUsage::ShaderRead});
    gpu::RenderPassDescriptor colorPass;
    colorPass.colorAttachments[0] = {makeTarget("RenderTarget0"), LoadAction::DontCare, StoreAction::Store, {}};
    colorPass.colorAttachments[1] = {makeTarget("RenderTarget1"), LoadAction::Load, StoreAction::DontCare, {}};
    gpu->clearCalls();

    const auto drawable = layer->nextDrawable();
    const auto buffer = queue->commandBuffer();
    buffer->addScheduledHandler([](gpu::CommandBuffer&) {});
    buffer->addCompletedHandler([](gpu::CommandBuffer&) {});
    gpu::RenderCommandEncoder* encoder = buffer->renderCommandEncoder(colorPass);
    encoder->setLabel("ColorShader");
    encoder->setRenderPipelineState(pipeline);
    encoder->setVertexBytes(std::vector<std::byte>(64), 0);
    encoder->setFragmentBuffer(style, 0, 0);
    encoder->setFragmentTexture(noise, 0);
    encoder->drawPrimitives(gpu::PrimitiveType::TriangleStrip, 0, 4);
    encoder->endEncoding();
    gpu::RenderPassDescriptor screenPass;
    screenPass.colorAttachments[0] = {drawable->texture(), LoadAction::Clear, StoreAction::Store, {0.5, 0, 0, 1}};
    buffer->renderCommandEncoder(screenPass)->endEncoding();
    buffer->presentDrawable(drawable);
    gpu->record("notifyFrameQueued");
    buffer->commit();

    EXPECT_EQ(gpu->calls(),
              (Calls{"nextDrawable 0", "commandBuffer", "addScheduledHandler", "addCompletedHandler",
                     "render [RenderTarget0 dontCare store, RenderTarget1 load dontCare]", "label ColorShader",
                     "pipeline QZLColorVertexShader+QZLColorFragmentShader", "vertexBytes 64 @0",
                     "fragmentBuffer style0+0 @0", "fragmentTexture R8Snorm 2x2 @0", "draw triangleStrip 0 4", "end",
                     "render [drawable 0 clear(0.5 0 0 1) store]", "end", "present 0", "notifyFrameQueued", "commit"}));
}

TEST_F(FakeGpu, RecordsUploadsAndCopies) {
    const auto noise =
        device->newTexture({PixelFormat::R8Snorm, 2, 2, TextureUsage::ShaderRead, gpu::StorageMode::Managed});
    const auto copied = device->newTexture({PixelFormat::R8Snorm, 4, 4, TextureUsage::ShaderRead});
    const auto bytes = device->newBuffer(16);
    gpu->clearCalls();
    noise->replaceRegion({{0, 1}, {2, 1}}, std::vector<std::byte>(2), 2);
    const auto buffer = queue->commandBuffer();
    gpu::BlitCommandEncoder* const encoder = buffer->blitCommandEncoder();
    encoder->copyTextureToTexture(noise, {{0, 0}, {2, 2}}, copied, {1, 1});
    encoder->copyTextureToBuffer(noise, {{0, 0}, {2, 2}}, bytes, 8, 4);
    EXPECT_EQ(gpu->calls(),
              (Calls{"replaceRegion R8Snorm 2x2 0,1 2x1", "commandBuffer", "blit",
                     "copy R8Snorm 2x2 0,0 2x2 to R8Snorm 4x4 1,1", "copy R8Snorm 2x2 0,0 2x2 to 16 bytes+8 4"}));
}

TEST_F(FakeGpu, KeepsWhatDrawsWereGivenAsItWasAtTheCommit) {
    const auto style = device->newBuffer(std::vector<std::byte>{std::byte{1}, std::byte{2}, std::byte{3}});
    gpu::RenderPassDescriptor descriptor;
    descriptor.colorAttachments[0].texture = makeTarget("color");
    const auto buffer = queue->commandBuffer();
    gpu::RenderCommandEncoder* const encoder = buffer->renderCommandEncoder(descriptor);
    encoder->setRenderPipelineState(makePipeline());
    encoder->setVertexBytes(std::vector<std::byte>(4, std::byte{9}), 0);
    encoder->setFragmentBuffer(style, 1, 2);
    encoder->setFragmentTexture(makeTarget("image"), 1);
    encoder->drawPrimitives(gpu::PrimitiveType::TriangleStrip, 1, 3);
    style->contents()[1] = std::byte{7};
    EXPECT_TRUE(gpu->draws().empty());
    buffer->commit();
    style->contents()[1] = std::byte{8};

    ASSERT_EQ(gpu->draws().size(), 1u);
    const fake::Draw draw = gpu->draws().front();
    EXPECT_EQ(draw.pipeline, "QZLColorVertexShader+QZLColorFragmentShader");
    EXPECT_EQ(draw.primitiveType, gpu::PrimitiveType::TriangleStrip);
    EXPECT_EQ(draw.vertexStart, 1u);
    EXPECT_EQ(draw.vertexCount, 3u);
    EXPECT_EQ(draw.vertexBytes, std::vector<std::byte>(4, std::byte{9}));
    EXPECT_EQ(draw.fragmentBuffers.at(2), (std::vector<std::byte>{std::byte{7}, std::byte{3}}));
    EXPECT_EQ(draw.fragmentTextures.at(1), "image");
    EXPECT_EQ(draw.targets, std::vector<std::string>{"color"});
}

TEST_F(FakeGpu, ABindingHoldsForItsPassOnly) {
    gpu::RenderPassDescriptor descriptor;
    descriptor.colorAttachments[0].texture = makeTarget("color");
    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(descriptor)->setFragmentTexture(makeTarget("image"), 0);
    gpu::RenderCommandEncoder* const encoder = buffer->renderCommandEncoder(descriptor);
    encoder->setRenderPipelineState(makePipeline());
    encoder->drawPrimitives(gpu::PrimitiveType::Triangle, 0, 3);
    buffer->commit();
    EXPECT_TRUE(gpu->draws().front().fragmentTextures.empty());
}

TEST_F(FakeGpu, DoesItsWorkWhenTheBufferCompletesAndNotBefore) {
    const auto texture = makeTarget("color");
    gpu::RenderPassDescriptor descriptor;
    descriptor.colorAttachments[0] = {texture, LoadAction::Clear, StoreAction::Store, {1, 1, 1, 1}};
    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(descriptor);
    buffer->commit();
    EXPECT_EQ(firstByte(*texture), std::byte{0});
    EXPECT_EQ(gpu->committedButIncomplete(), 1u);
    EXPECT_TRUE(gpu->completeNext());
    EXPECT_EQ(firstByte(*texture), std::byte{255});
    EXPECT_EQ(gpu->committedButIncomplete(), 0u);
    EXPECT_FALSE(gpu->completeNext());
}

TEST_F(FakeGpu, LeavesGarbageWhereAPassDoesNotCare) {
    const auto texture = makeTarget("color");
    gpu::RenderPassDescriptor descriptor;
    descriptor.colorAttachments[0] = {texture, LoadAction::DontCare, StoreAction::Store, {}};
    const auto first = queue->commandBuffer();
    first->renderCommandEncoder(descriptor);
    first->commit();
    gpu->completeAll();
    EXPECT_EQ(firstByte(*texture), fake::Gpu::garbage);

    descriptor.colorAttachments[0] = {texture, LoadAction::Clear, StoreAction::DontCare, {}};
    const auto second = queue->commandBuffer();
    second->renderCommandEncoder(descriptor);
    second->commit();
    gpu->completeAll();
    EXPECT_EQ(firstByte(*texture), fake::Gpu::garbage);
}

TEST_F(FakeGpu, CompletesTheBuffersOfAllQueuesInTheOrderCommitted) {
    std::string order;
    const auto otherQueue = device->newCommandQueue();
    const auto commit = [&order](gpu::CommandQueue& on, char name) {
        const auto buffer = on.commandBuffer();
        buffer->addScheduledHandler([&order, name](gpu::CommandBuffer&) { order += name; });
        buffer->addCompletedHandler(
            [&order, name](gpu::CommandBuffer&) { order += static_cast<char>(std::toupper(name)); });
        buffer->commit();
    };
    commit(*queue, 'a');
    commit(*otherQueue, 'b');
    commit(*queue, 'c');
    EXPECT_EQ(order, "ab") << "each is the first on its queue";
    gpu->completeNext();
    EXPECT_EQ(order, "abAc");
    gpu->completeAll();
    EXPECT_EQ(order, "abAcBC");
}

TEST_F(FakeGpu, CompletesWithinTheCommitWhenTold) {
    gpu->setCompletesAtCommit(true);
    const auto buffer = queue->commandBuffer();
    buffer->commit();
    EXPECT_EQ(buffer->status(), gpu::CommandBufferStatus::Completed);
}

TEST_F(FakeGpu, CompletesWithinTheCommitWhatHandlersCommit) {
    gpu->setCompletesAtCommit(true);
    const auto second = queue->commandBuffer();
    const auto first = queue->commandBuffer();
    first->addCompletedHandler([&second](gpu::CommandBuffer&) { second->commit(); });
    first->commit();
    EXPECT_EQ(second->status(), gpu::CommandBufferStatus::Completed);
    EXPECT_EQ(gpu->committedButIncomplete(), 0u);
}

TEST_F(FakeGpu, WhoeverWaitsCompletesTheBufferAndThoseBeforeItOnItsQueue) {
    const auto otherQueue = device->newCommandQueue();
    const auto other = otherQueue->commandBuffer();
    const auto first = queue->commandBuffer();
    const auto second = queue->commandBuffer();
    const auto third = queue->commandBuffer();
    for (const auto& buffer : {other, first, second, third}) {
        buffer->commit();
    }
    second->waitUntilCompleted();
    EXPECT_EQ(first->status(), gpu::CommandBufferStatus::Completed);
    EXPECT_EQ(second->status(), gpu::CommandBufferStatus::Completed);
    EXPECT_EQ(gpu->committedButIncomplete(), 2u) << "the later one and that of the other queue";
}

TEST_F(FakeGpu, RemembersTheFrameThatALayerShows) {
    const auto layer = gpu::createLayer();
    layer->setDevice(device);
    layer->setDrawableSize({2, 2});
    EXPECT_EQ(fake::Gpu::lastPresented(*layer), nullptr);
    for (int frame = 0; frame < 6; ++frame) {
        const auto buffer = queue->commandBuffer();
        buffer->presentDrawable(layer->nextDrawable());
        buffer->commit();
    }
    gpu->completeNext();
    gpu->completeNext(false);
    EXPECT_EQ(fake::Gpu::lastPresented(*layer)->identifier(), 0u) << "a failed frame is not shown";
    gpu->completeAll();
    EXPECT_EQ(fake::Gpu::lastPresented(*layer)->identifier(), 5u);
}

TEST_F(FakeGpu, OffersTheFunctionsItWasTold) {
    gpu->setFunctions({{"Kernel", FunctionType::Kernel}});
    const auto library = device->newLibrary(directory.path() / "default.metallib");
    EXPECT_NE(library->newFunction("Kernel", FunctionType::Kernel), nullptr);
    EXPECT_EQ(library->newFunction("Kernel", FunctionType::Vertex), nullptr);
    EXPECT_EQ(library->newFunction("QZLColorVertexShader", FunctionType::Vertex), nullptr);
}

TEST_F(FakeGpu, GoesWithWorkInFlightWithoutRunningItsHandlers) {
    int ran = 0;
    {
        fake::Gpu other;
        const auto buffer = other.systemDefaultDevice()->newCommandQueue()->commandBuffer();
        buffer->addCompletedHandler([&ran](gpu::CommandBuffer&) { ++ran; });
        buffer->commit();
    }
    EXPECT_EQ(ran, 0);
}
