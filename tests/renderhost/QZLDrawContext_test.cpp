#include "renderhost/QZLDrawContext.hpp"

#include "platform/gpu/Backend.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <vector>

using testing::ElementsAre;

namespace {

constexpr gpu::TextureUsage anyUsage = gpu::TextureUsage::ShaderReadRenderTarget;

class QZLDrawContextTest : public testing::Test {
protected:
    QZLDrawContextTest() {
        gpu->setFunctions({{"Vertex", gpu::FunctionType::Vertex},
                           {"Fragment", gpu::FunctionType::Fragment},
                           {"Kernel", gpu::FunctionType::Kernel}});
        layer->setDevice(device);
        layer->setDrawableSize({8, 6});
        drawable = layer->nextDrawable();
        descriptor->colorAttachments[0].texture = drawable->texture();
    }

    std::shared_ptr<gpu::Library> makeLibrary() const {
        const auto path = directory.path() / "default.metallib";
        std::ofstream(path) << "shaders";
        return device->newLibrary(path);
    }

    QZLDrawContext makeContext() { return {commandBuffer, descriptor, drawable}; }

    std::shared_ptr<gpu::Texture> texture(std::size_t width, std::size_t height, unsigned char value) {
        auto result =
            device->newTexture({gpu::PixelFormat::BGRA8Unorm, width, height, anyUsage, gpu::StorageMode::Managed});
        const std::vector<std::byte> bytes(width * height * 4, std::byte{value});
        result->replaceRegion({{0, 0}, {width, height}}, bytes, width * 4);
        return result;
    }

    fake::TemporaryDirectory directory;
    fake::ScopedGpu gpu;
    std::shared_ptr<gpu::Device> device = gpu::createSystemDefaultDevice();
    std::shared_ptr<gpu::CommandQueue> queue = device->newCommandQueue();
    std::shared_ptr<gpu::CommandBuffer> commandBuffer = queue->commandBuffer();
    std::shared_ptr<gpu::RenderPassDescriptor> descriptor = gpu::createRenderPassDescriptor();
    std::shared_ptr<gpu::Layer> layer = gpu::createLayer();
    std::shared_ptr<gpu::Drawable> drawable;
};

}  // namespace

TEST_F(QZLDrawContextTest, StartsBrightInTheFirstSlotWithFrameZero) {
    const QZLDrawContext context = makeContext();
    EXPECT_EQ(&context.commandBuffer(), commandBuffer.get());
    EXPECT_EQ(&context.drawable(), drawable.get());
    EXPECT_EQ(context.brightness(), 1.0F);
    EXPECT_EQ(context.bufferIndex(), 0);
    EXPECT_EQ(context.frameNumber(), 0U);
}

TEST_F(QZLDrawContextTest, TakesWhatTheFrameLoopSets) {
    QZLDrawContext context = makeContext();
    context.setBrightness(0.25F);
    context.setBufferIndex(2);
    context.setFrameNumber(UINT64_MAX);
    EXPECT_EQ(context.brightness(), 0.25F);
    EXPECT_EQ(context.bufferIndex(), 2);
    EXPECT_EQ(context.frameNumber(), UINT64_MAX);
}

TEST_F(QZLDrawContextTest, ARenderEncoderIsOfTheScreenPassAndHasTheStateSet) {
    const auto library = makeLibrary();
    const auto state = device->newRenderPipelineState({library->newFunction("Vertex", gpu::FunctionType::Vertex),
                                                       library->newFunction("Fragment", gpu::FunctionType::Fragment),
                                                       {gpu::PixelFormat::BGRA8Unorm}});
    ASSERT_NE(state, nullptr);
    gpu->clearCalls();
    auto* const encoder = makeContext().renderCommandEncoderWithState(state);
    ASSERT_NE(encoder, nullptr);
    EXPECT_TRUE(encoder->isOpen());
    encoder->endEncoding();
    EXPECT_THAT(gpu->calls(), ElementsAre("render [drawable 0 dontCare store]", "pipeline Vertex+Fragment", "end"));
}

TEST_F(QZLDrawContextTest, AComputeEncoderHasTheStateSet) {
    const auto library = makeLibrary();
    const auto state = device->newComputePipelineState(library->newFunction("Kernel", gpu::FunctionType::Kernel));
    ASSERT_NE(state, nullptr);
    gpu->clearCalls();
    auto* const encoder = makeContext().computeCommandEncoderWithState(state);
    ASSERT_NE(encoder, nullptr);
    EXPECT_TRUE(encoder->isOpen());
    encoder->endEncoding();
    EXPECT_THAT(gpu->calls(), ElementsAre("compute", "pipeline Kernel", "end"));
}

TEST_F(QZLDrawContextTest, ThereIsNoEncoderOfAPassWithoutTarget) {
    descriptor->colorAttachments[0].texture = nullptr;
    EXPECT_EQ(makeContext().renderCommandEncoderWithState(nullptr), nullptr);
}

TEST_F(QZLDrawContextTest, ThereIsNoEncoderAfterTheCommit) {
    commandBuffer->commit();
    QZLDrawContext context = makeContext();
    EXPECT_EQ(context.renderCommandEncoderWithState(nullptr), nullptr);
    EXPECT_EQ(context.computeCommandEncoderWithState(nullptr), nullptr);
    const auto source = texture(2, 2, 1);
    gpu->clearCalls();
    context.copyTexture(source, texture(2, 2, 2));
    EXPECT_THAT(gpu->calls(), testing::Not(testing::Contains("blit")));
}

TEST_F(QZLDrawContextTest, CopiesTheWholeSourceToTheOriginOfALargerDestination) {
    const auto source = texture(2, 1, 0x11);
    const auto destination = texture(3, 2, 0x22);
    source->setLabel("source");
    destination->setLabel("destination");
    gpu->clearCalls();
    makeContext().copyTexture(source, destination);
    EXPECT_THAT(gpu->calls(),
                ElementsAre("blit", "label BlitTextureToTexture", "copy source 0,0 2x1 to destination 0,0", "end"));
    commandBuffer->commit();
    gpu->completeAll();

    std::vector<std::byte> expected(3 * 2 * 4, std::byte{0x22});
    std::fill_n(expected.begin(), 2 * 4, std::byte{0x11});
    EXPECT_EQ(fake::Gpu::pixels(*destination), expected);
}

TEST_F(QZLDrawContextTest, ACopyOfOrToNothingDoesNothing) {
    const auto some = texture(2, 2, 1);
    gpu->clearCalls();
    makeContext().copyTexture(nullptr, some);
    makeContext().copyTexture(some, nullptr);
    EXPECT_THAT(gpu->calls(),
                ElementsAre("blit", "label BlitTextureToTexture", "end", "blit", "label BlitTextureToTexture", "end"));
}
