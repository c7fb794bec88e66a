#include "tests/platform/gpu/VulkanDrawing.hpp"

#include <algorithm>
#include <array>

using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::PrimitiveType;

TEST_P(VulkanDrawing, EachBufferIsAtItsOwnBindingAndOffset) {
    const std::array<float, 4> even{0.2F, 0.4F, 0.6F, 0.8F};
    const auto plain = device->newBuffer(std::as_bytes(std::span(even)));
    std::array<float, 68> shifted{};
    std::copy(even.rbegin(), even.rend(), shifted.begin() + 64);
    const auto offset = device->newBuffer(std::as_bytes(std::span(shifted)));

    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("BuffersFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->setFragmentBuffer(plain, 0, 0);
    encoder->setFragmentBuffer(offset, 256, 1);
    encoder->setFragmentBuffer(plain, 0, 2);
    encoder->setFragmentBuffer(offset, 256, 3);
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);

    EXPECT_EQ(readBack(target), bytesOf({51, 153, 153, 51}));
}

TEST_P(VulkanDrawing, AVertexFunctionSeesTheFragmentBuffers) {
    const std::array<float, 4> value{0.2F, 0.4F, 0.6F, 0.8F};
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(
        device->newRenderPipelineState({library->newFunction("BufferVertex", gpu::FunctionType::Vertex),
                                        library->newFunction("FlatFragment", gpu::FunctionType::Fragment),
                                        {PixelFormat::RGBA8Unorm}}));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->setFragmentBuffer(device->newBuffer(std::as_bytes(std::span(value))), 0, 0);
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);
    EXPECT_EQ(readBack(target), bytesOf({51, 102, 153, 204}));
}

TEST_P(VulkanDrawing, ABufferMayBeWrittenUntilTheCommit) {
    const auto style = device->newBuffer(16);
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("BuffersFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    for (std::size_t index = 0; index < 4; ++index) {
        encoder->setFragmentBuffer(style, 0, index);
    }
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->endEncoding();
    const std::array<float, 4> late{1.0F, 0.2F, 0.4F, 0.6F};
    std::copy_n(std::as_bytes(std::span(late)).begin(), 16, style->contents());
    commit(buffer);
    EXPECT_EQ(readBack(target), bytesOf({255, 51, 102, 153}));
}

TEST_P(VulkanDrawing, EachTextureIsAtItsOwnBinding) {
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("TexturesFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    for (unsigned index = 0; index < 4; ++index) {
        encoder->setFragmentTexture(makeFilledTexture(PixelFormat::R8Unorm, {1, 1}, bytesOf({10 + index})), index);
    }
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);
    EXPECT_EQ(readBack(target), bytesOf({10, 11, 12, 13}));
}

TEST_P(VulkanDrawing, OneSamplerRepeatsAndTheOthersClamp) {
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {4, 1}, bytesOf({0, 80, 160, 240}));
    const Quad twice = wholeTarget(0, 0, 2, 1);
    EXPECT_EQ(redsOf(drawTexture("RepeatingFragment", texture, {8, 1}, twice)),
              bytesOf({0, 80, 160, 240, 0, 80, 160, 240}));
    EXPECT_EQ(redsOf(drawTexture("ClampingFragment", texture, {8, 1}, twice)),
              bytesOf({0, 80, 160, 240, 240, 240, 240, 240}));
    EXPECT_EQ(redsOf(drawTexture("NearestFragment", texture, {8, 1}, twice)),
              bytesOf({0, 80, 160, 240, 240, 240, 240, 240}));
}

TEST_P(VulkanDrawing, TheNearestSamplerYieldsTexelsAsTheyAre) {
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {4, 1}, bytesOf({0, 80, 160, 240}));
    const Quad almostHalfATexelOn = wholeTarget(0.115F, 0, 1.115F, 1);
    EXPECT_EQ(redsOf(drawTexture("NearestFragment", texture, {4, 1}, almostHalfATexelOn)), bytesOf({0, 80, 160, 240}));
}

TEST_P(VulkanDrawing, TheRepeatingAndTheFirstClampingSamplerAreLinear) {
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {4, 1}, bytesOf({0, 80, 160, 240}));
    const Quad halfATexelOn = wholeTarget(0.125F, 0, 1.125F, 1);
    const auto expectNear = [](const Bytes& actual, const Bytes& expected) {
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t index = 0; index < actual.size(); ++index) {
            EXPECT_LE(distance(actual[index], expected[index]), 1) << index;
        }
    };
    expectNear(redsOf(drawTexture("RepeatingFragment", texture, {4, 1}, halfATexelOn)), bytesOf({40, 120, 200, 120}));
    expectNear(redsOf(drawTexture("ClampingFragment", texture, {4, 1}, halfATexelOn)), bytesOf({40, 120, 200, 240}));
}

TEST_P(VulkanDrawing, AGatherYieldsTheFourTexelsAroundAPointInTheirOrder) {
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {2, 2}, bytesOf({10, 20, 30, 40}));
    const Quad middle = wholeTarget(0.5F, 0.5F, 0.5F, 0.5F);
    const Quad corner = wholeTarget(0, 0, 0, 0);
    EXPECT_EQ(drawTexture("RepeatingGatherFragment", texture, {1, 1}, middle), bytesOf({30, 40, 20, 10}));
    EXPECT_EQ(drawTexture("RepeatingGatherFragment", texture, {1, 1}, corner), bytesOf({20, 10, 30, 40}));
    EXPECT_EQ(drawTexture("ClampingGatherFragment", texture, {1, 1}, corner), bytesOf({10, 10, 10, 10}));
}

TEST_P(VulkanDrawing, SignedTexturesAreReadWithTheirSign) {
    const auto texture = makeFilledTexture(PixelFormat::R8Snorm, {4, 1}, bytesOf({0x81, 0x80, 0x7F, 0x00}));
    EXPECT_EQ(redsOf(drawTexture("NegatedFragment", texture, {4, 1}, wholeTarget(0, 0, 1, 1))),
              bytesOf({255, 255, 0, 0}));
}

TEST_P(VulkanDrawing, ManyDrawsOfOnePassKeepTheirOwnBindings) {
    constexpr std::size_t count = 200;
    std::vector<float> values(count * 64);  // each 256 bytes after the one before it
    for (std::size_t index = 0; index < count; ++index) {
        std::fill_n(values.begin() + static_cast<std::ptrdiff_t>(index * 64), 4, static_cast<float>(index) / 255.0F);
    }
    const auto styles = device->newBuffer(std::as_bytes(std::span(values)));
    const auto target = makeTarget({count, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("BuffersFragment"));
    for (std::size_t index = 0; index < count; ++index) {
        const auto left = -1.0F + 2.0F * static_cast<float>(index) / static_cast<float>(count);
        setQuad(*encoder, partOfTarget(left, -1, left + 2.0F / static_cast<float>(count), 1));
        for (std::size_t binding = 0; binding < 4; ++binding) {
            encoder->setFragmentBuffer(styles, index * 256, binding);
        }
        encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    }
    commit(buffer);

    const Bytes reds = redsOf(readBack(target));
    for (std::size_t index = 0; index < count; ++index) {
        EXPECT_EQ(reds[index], static_cast<std::byte>(index));
    }
}
