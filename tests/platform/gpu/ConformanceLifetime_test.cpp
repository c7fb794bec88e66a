#include "tests/platform/gpu/Conformance.hpp"

#include <atomic>

using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::TextureUsage;

TEST_P(Conformance, WhatABufferUsesLivesUntilItHasCompletedAndNoLonger) {
    const Bytes bytes = countingBytes(16);
    const auto destination = device->newBuffer(16);
    auto source = makeFilledTexture(PixelFormat::R8Unorm, {4, 4}, bytes);
    auto target = makeTexture(PixelFormat::R8Unorm, {4, 4}, TextureUsage::ShaderReadRenderTarget);
    const std::weak_ptr<gpu::Texture> usedSource = source;
    const std::weak_ptr<gpu::Texture> usedTarget = target;

    auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(passInto(target, LoadAction::Clear))->endEncoding();
    buffer->blitCommandEncoder()->copyTextureToBuffer(source, wholeOf(*source), destination, 0, 4);
    source.reset();
    target.reset();
    EXPECT_FALSE(usedSource.expired());
    EXPECT_FALSE(usedTarget.expired());
    commit(buffer);
    buffer.reset();
    finish();

    EXPECT_EQ(Bytes(destination->contents(), destination->contents() + 16), bytes);
    EXPECT_TRUE(eventually([&] { return usedSource.expired() && usedTarget.expired(); }));
}

TEST_P(Conformance, HandlersAreDroppedWithWhatTheyHoldOnceTheyHaveRun) {
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> token = held;
    const auto buffer = queue->commandBuffer();
    buffer->addScheduledHandler([held](gpu::CommandBuffer&) {});
    buffer->addCompletedHandler([held](gpu::CommandBuffer&) {});
    held.reset();
    commit(buffer);
    finish();
    EXPECT_TRUE(eventually([&token] { return token.expired(); }));
}

TEST_P(Conformance, AQueueMayGoWithItsWorkInFlight) {
    const Bytes bytes = countingBytes(16);
    const auto source = makeFilledTexture(PixelFormat::R8Unorm, {4, 4}, bytes);
    const auto destination = device->newBuffer(16);
    std::atomic<int> completed = 0;
    for (int count = 0; count < 3; ++count) {
        const auto buffer = queue->commandBuffer();
        buffer->blitCommandEncoder()->copyTextureToBuffer(source, wholeOf(*source), destination, 0, 4);
        buffer->addCompletedHandler([&completed](gpu::CommandBuffer&) { ++completed; });
        commit(buffer);
    }
    queue.reset();
    finish();
    EXPECT_EQ(completed, 3);
    EXPECT_EQ(Bytes(destination->contents(), destination->contents() + 16), bytes);
    queue = device->newCommandQueue();
}

TEST_P(Conformance, ACompletedHandlerMayLetGoOfTheLastReferenceToItsQueue) {
    const long holdersBefore = device.use_count();
    auto ownQueue = device->newCommandQueue();
    auto buffer = ownQueue->commandBuffer();
    buffer->addCompletedHandler([&ownQueue](gpu::CommandBuffer&) { ownQueue.reset(); });
    commit(buffer);
    finish();
    EXPECT_EQ(ownQueue, nullptr);
    buffer.reset();
    EXPECT_TRUE(eventually([&] { return device.use_count() == holdersBefore; })) << "something still holds the device";
}

TEST_P(Conformance, ABufferThatIsNotCommittedRunsNothing) {
    std::atomic<int> ran = 0;
    auto buffer = queue->commandBuffer();
    buffer->addScheduledHandler([&ran](gpu::CommandBuffer&) { ++ran; });
    buffer->addCompletedHandler([&ran](gpu::CommandBuffer&) { ++ran; });
    buffer->blitCommandEncoder();
    buffer.reset();
    commit(queue->commandBuffer());
    finish();
    EXPECT_EQ(ran, 0);
}
