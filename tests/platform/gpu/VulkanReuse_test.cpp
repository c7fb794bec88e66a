// Command buffers come again with the descriptor sets of their former frames.
#include "tests/platform/gpu/VulkanDrawing.hpp"

using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::PrimitiveType;

TEST_P(VulkanDrawing, FramesThatBindTheSameAgainDrawTheSame) {
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {2, 1}, bytesOf({70, 140}));
    for (int frame = 0; frame < 20; ++frame) {
        EXPECT_EQ(redsOf(drawTexture("ClampingFragment", texture, {2, 1}, wholeTarget(0, 0, 1, 1))),
                  bytesOf({70, 140}));
    }
}

TEST_P(VulkanDrawing, ATextureThatReplacesAnotherIsNotTakenForIt) {
    // Some are still there when the next is made; of the others drivers give the handle to a new one.
    std::vector<std::shared_ptr<gpu::Texture>> kept;
    for (unsigned value = 0; value < 200; ++value) {
        const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {1, 1}, bytesOf({value}));
        if (value % 3 == 0) {
            kept.push_back(texture);
        }
        EXPECT_EQ(redsOf(drawTexture("ClampingFragment", texture, {1, 1}, wholeTarget(0, 0, 1, 1))), bytesOf({value}));
    }
}

TEST_P(VulkanDrawing, ABufferThatReplacesAnotherIsNotTakenForIt) {
    const auto pipeline = makePipeline("BuffersFragment");
    std::vector<std::shared_ptr<gpu::Buffer>> kept;
    for (unsigned value = 0; value < 200; ++value) {
        const std::vector<float> filling(4, static_cast<float>(value) / 255.0F);
        const auto style = device->newBuffer(std::as_bytes(std::span(filling)));
        if (value % 3 == 0) {
            kept.push_back(style);
        }
        const auto target = makeTarget({1, 1});
        const auto buffer = queue->commandBuffer();
        auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
        encoder->setRenderPipelineState(pipeline);
        setQuad(*encoder, wholeTarget(0, 0, 1, 1));
        for (std::size_t index = 0; index < 4; ++index) {
            encoder->setFragmentBuffer(style, 0, index);
        }
        encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
        commit(buffer);
        EXPECT_EQ(redsOf(readBack(target)), bytesOf({value}));
        finish();
    }
}

TEST_P(VulkanDrawing, WhatABufferThatWasGivenUpHasBegunIsNotGoneOnWithInTheNextOne) {
    const auto target = makeTarget({1, 1});
    clear(target, {0.2, 0, 0, 1});
    finish();
    for (int round = 0; round < 5; ++round) {
        const auto abandoned = makeTarget({1, 1});
        queue->commandBuffer()->renderCommandEncoder(passInto(abandoned, LoadAction::Clear))->endEncoding();
        queue->commandBuffer()->renderCommandEncoder(passInto(target, LoadAction::Clear))->endEncoding();
    }
    EXPECT_EQ(redsOf(readBack(target)), bytesOf({51}));
}

TEST_P(VulkanDrawing, PassesOverTheSameTargetFollowOneAnother) {
    const auto target = makeTarget({4, 1});
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {1, 1}, bytesOf({200}));
    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(passInto(target, LoadAction::Clear, {0.2, 0.4, 0.6, 0.8}))->endEncoding();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::Load));
    encoder->setRenderPipelineState(makePipeline("ClampingFragment"));
    setQuad(*encoder, partOfTarget(0, -1, 1, 1));
    encoder->setFragmentTexture(texture, 0);
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);
    EXPECT_EQ(redsOf(readBack(target)), bytesOf({51, 51, 200, 200}));
}

TEST_P(VulkanDrawing, APassSamplesWhatTheOneBeforeItDrew) {
    const auto drawn = makeTarget({1, 1});
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(passInto(drawn, LoadAction::Clear, {0.6, 0, 0, 1}))->endEncoding();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("ClampingFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->setFragmentTexture(drawn, 0);
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);
    EXPECT_EQ(redsOf(readBack(target)), bytesOf({153}));
}

TEST_P(VulkanDrawing, ACopyTakesWhatThePassBeforeItDrew) {
    const auto drawn = makeTarget({1, 1});
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(passInto(drawn, LoadAction::Clear, {0.6, 0, 0, 1}))->endEncoding();
    buffer->blitCommandEncoder()->copyTextureToTexture(drawn, wholeOf(*drawn), target, {0, 0});
    commit(buffer);
    EXPECT_EQ(redsOf(readBack(target)), bytesOf({153}));
}
