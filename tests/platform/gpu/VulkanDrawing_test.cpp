#include "tests/platform/gpu/VulkanDrawing.hpp"

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

using gpu::FunctionType;
using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::PrimitiveType;
using gpu::TextureUsage;

INSTANTIATE_TEST_SUITE_P(Vulkan, VulkanDrawing, testing::Values(vulkanBackend()));

TEST_P(VulkanDrawing, AGradientIsDrawnToItsFormula) {
    const Bytes pixels = drawTexture("GradientFragment", nullptr, {16, 8}, wholeTarget(0, 0, 1, 1));
    for (std::size_t y = 0; y < 8; ++y) {
        for (std::size_t x = 0; x < 16; ++x) {
            const auto red = static_cast<std::byte>(std::lround((x + 0.5) / 16 * 255));
            const auto green = static_cast<std::byte>(std::lround((y + 0.5) / 8 * 255));
            const std::byte* const pixel = &pixels[(y * 16 + x) * 4];
            EXPECT_LE(distance(pixel[0], red), 1) << x << ' ' << y;
            EXPECT_LE(distance(pixel[1], green), 1) << x << ' ' << y;
            EXPECT_EQ(pixel[2], std::byte{0});
            EXPECT_EQ(pixel[3], std::byte{255});
        }
    }
}

TEST_P(VulkanDrawing, ClipSpaceGrowsUpward) {
    const auto target = makeTarget({4, 4});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::Clear, {0, 0, 0, 0}));
    encoder->setRenderPipelineState(makePipeline("GradientFragment"));
    setQuad(*encoder, partOfTarget(-1, 0, 0, 1));  // the upper left quarter
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);

    const Bytes pixels = readBack(target);
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = 0; x < 4; ++x) {
            EXPECT_EQ(pixels[(y * 4 + x) * 4 + 3], std::byte(x < 2 && y < 2 ? 255 : 0)) << x << ' ' << y;
        }
    }
}

TEST_P(VulkanDrawing, ATriangleListTakesThreeVerticesFromItsStart) {
    const auto target = makeTarget({8, 8});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::Clear, {0, 0, 0, 0}));
    encoder->setRenderPipelineState(makePipeline("GradientFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->drawPrimitives(PrimitiveType::Triangle, 1, 3);  // bottom right, top left, top right
    commit(buffer);

    const Bytes pixels = readBack(target);
    EXPECT_EQ(pixels[(1 * 8 + 6) * 4 + 3], std::byte{255}) << "the upper right is inside";
    EXPECT_EQ(pixels[(6 * 8 + 1) * 4 + 3], std::byte{0}) << "the lower left is not";
}

TEST_P(VulkanDrawing, APassDrawsIntoTwoTargetsAndTheNextOneReadsThem) {
    const auto color = makeTarget({4, 4}, PixelFormat::RGB10A2Unorm);
    const auto height = makeTarget({4, 4}, PixelFormat::R16Unorm);
    const auto result = makeTarget({4, 4});
    gpu::RenderPassDescriptor descriptor = passInto(color, LoadAction::DontCare);
    descriptor.colorAttachments[1].texture = height;

    const auto buffer = queue->commandBuffer();
    auto* encoder = buffer->renderCommandEncoder(descriptor);
    encoder->setLabel("First");
    encoder->setRenderPipelineState(
        makePipeline("TwoTargetsFragment", {PixelFormat::RGB10A2Unorm, PixelFormat::R16Unorm}));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->endEncoding();
    encoder = buffer->renderCommandEncoder(passInto(result, LoadAction::DontCare));
    encoder->setLabel("Second");
    encoder->setRenderPipelineState(makePipeline("TexturesFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    for (const std::size_t index : {0, 2}) {
        encoder->setFragmentTexture(color, index);
        encoder->setFragmentTexture(height, index + 1);
    }
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->endEncoding();
    commit(buffer);

    const Bytes pixels = readBack(result);
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = 0; x < 4; ++x) {
            const auto red = static_cast<std::byte>(std::lround((x + 0.5) / 4 * 255));
            const auto green = static_cast<std::byte>(std::lround((y + 0.5) / 4 * 255));
            EXPECT_LE(distance(pixels[(y * 4 + x) * 4], red), 1) << x << ' ' << y;
            EXPECT_LE(distance(pixels[(y * 4 + x) * 4 + 1], green), 1) << x << ' ' << y;
        }
    }
}

TEST_P(VulkanDrawing, ShadersAreToldTheKindOfDeviceAndTheConstantsGiven) {
    const auto drawWith = [&](std::vector<std::uint32_t> constants) {
        const auto target = makeTarget({1, 1}, PixelFormat::RGBA8Uint);
        const auto buffer = queue->commandBuffer();
        auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
        encoder->setRenderPipelineState(
            device->newRenderPipelineState({library->newFunction("QuadVertex", gpu::FunctionType::Vertex),
                                            library->newFunction("ConstantsFragment", gpu::FunctionType::Fragment),
                                            {PixelFormat::RGBA8Uint},
                                            std::move(constants)}));
        setQuad(*encoder, wholeTarget(0, 0, 1, 1));
        encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
        commit(buffer);
        return readBack(target);
    };
    const Bytes pixel = drawWith({});
    EXPECT_LE(std::to_integer<int>(pixel[0]), 4) << "other, integrated, discrete, virtual or CPU";
    EXPECT_EQ(Bytes(pixel.begin() + 1, pixel.end()), bytesOf({98, 97, 7}));
    if (device->name().find("llvmpipe") != std::string::npos) {
        EXPECT_EQ(pixel[0], std::byte{4});
    }
    EXPECT_EQ(drawWith({11, 12}), (Bytes{pixel[0], std::byte{11}, std::byte{12}, std::byte{7}}));
    EXPECT_EQ(drawWith({11}), (Bytes{pixel[0], std::byte{11}, std::byte{97}, std::byte{7}}));
}

TEST_P(VulkanDrawing, AKernelWritesATextureThatIsReadAfterwards) {
    const std::array<float, 4> color{0.2F, 0.0F, 0.6F, 1.0F};
    const auto style = device->newBuffer(std::as_bytes(std::span(color)));
    const Bytes greens = countingBytes(6 * 5);
    const auto greenTexture = makeFilledTexture(PixelFormat::R8Unorm, {6, 5}, greens);
    const auto image = makeTexture(PixelFormat::BGRA8Unorm, {6, 5}, TextureUsage::ShaderReadWrite);
    const auto pipeline = device->newComputePipelineState(library->newFunction("FillKernel", FunctionType::Kernel));
    ASSERT_NE(pipeline, nullptr);

    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->computeCommandEncoder();
    encoder->setLabel("Fill");
    encoder->setComputePipelineState(pipeline);
    encoder->setBuffer(style, 0, 1);
    encoder->setTexture(greenTexture, 2);
    encoder->setTexture(image, 0);
    encoder->dispatchThreadgroups(2, 2);
    encoder->endEncoding();
    commit(buffer);

    const Bytes pixels = readBack(image);
    for (std::size_t index = 0; index < greens.size(); ++index) {
        EXPECT_EQ(Bytes(&pixels[index * 4], &pixels[index * 4] + 4),
                  (Bytes{std::byte{153}, greens[index], std::byte{51}, std::byte{255}}));
    }
    EXPECT_EQ(drawTexture("ClampingFragment", image, {6, 5}, wholeTarget(0, 0, 1, 1))[1], greens[0])
        << "and a later pass samples it";
}

TEST_P(VulkanDrawing, ADrawThatDoesNotFitItsPassIsLeftOut) {
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::Clear, {1, 1, 1, 1}));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->setRenderPipelineState(makePipeline("GradientFragment", {PixelFormat::R16Unorm}));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->setRenderPipelineState(
        makePipeline("TwoTargetsFragment", {PixelFormat::RGBA8Unorm, PixelFormat::R16Unorm}));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);
    EXPECT_EQ(readBack(target), bytesOf({255, 255, 255, 255}));
}
