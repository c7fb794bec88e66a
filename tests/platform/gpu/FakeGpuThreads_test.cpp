#include "platform/gpu/Layer.hpp"
#include "tests/support/FakeGpu.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <semaphore>
#include <thread>
#include <vector>

/// The frame loop's shape: one thread draws, with at most three frames in flight, and another completes.
TEST(FakeGpuThreads, OneThreadDrawsWhileAnotherCompletes) {
    constexpr int frames = 300;
    fake::Gpu gpu;
    const auto device = gpu.systemDefaultDevice();
    const auto queue = device->newCommandQueue();
    const auto layer = gpu.newLayer();
    layer->setDevice(device);
    layer->setDrawableSize({4, 4});
    std::counting_semaphore<3> slots(3);
    std::atomic<int> scheduled = 0;
    std::atomic<int> completed = 0;
    int lastIdentifier = -1;  // handlers of one queue never run at once

    std::thread drawing([&] {
        for (int frame = 0; frame < frames; ++frame) {
            slots.acquire();
            const auto drawable = layer->nextDrawable();
            const auto buffer = queue->commandBuffer();
            gpu::RenderPassDescriptor descriptor;
            descriptor.colorAttachments[0] = {drawable->texture(), gpu::LoadAction::Clear, gpu::StoreAction::Store, {}};
            buffer->renderCommandEncoder(descriptor)->endEncoding();
            buffer->addScheduledHandler([&scheduled](gpu::CommandBuffer&) { ++scheduled; });
            buffer->addCompletedHandler(
                [&, identifier = static_cast<int>(drawable->identifier())](gpu::CommandBuffer&) {
                    EXPECT_EQ(identifier, lastIdentifier + 1);
                    lastIdentifier = identifier;
                    ++completed;
                    slots.release();
                });
            buffer->presentDrawable(drawable);
            buffer->commit();
        }
    });
    while (completed < frames) {
        if (!gpu.completeNext()) {
            std::this_thread::yield();
        }
    }
    drawing.join();
    EXPECT_EQ(scheduled, frames);
    EXPECT_EQ(gpu.committedButIncomplete(), 0u);
}

TEST(FakeGpuThreads, ManyThreadsMayCompleteAtOnce) {
    constexpr int buffers = 200;
    fake::Gpu gpu;
    const auto queue = gpu.systemDefaultDevice()->newCommandQueue();
    std::vector<int> completed;  // handlers of one queue never run at once
    for (int number = 0; number < buffers; ++number) {
        const auto buffer = queue->commandBuffer();
        buffer->addCompletedHandler([&completed, number](gpu::CommandBuffer&) { completed.push_back(number); });
        buffer->commit();
    }
    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count) {
        threads.emplace_back([&gpu] { gpu.completeAll(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_EQ(completed.size(), static_cast<std::size_t>(buffers));
    EXPECT_TRUE(std::is_sorted(completed.begin(), completed.end()));
}

TEST(FakeGpuThreads, OneThreadWaitsWhileAnotherCompletes) {
    constexpr int rounds = 200;
    fake::Gpu gpu;
    const auto queue = gpu.systemDefaultDevice()->newCommandQueue();
    std::atomic<bool> done = false;
    std::thread completing([&] {
        while (!done) {
            gpu.completeNext();
        }
    });
    for (int round = 0; round < rounds; ++round) {
        std::atomic<bool> ran = false;
        const auto buffer = queue->commandBuffer();
        buffer->addCompletedHandler([&ran](gpu::CommandBuffer&) { ran = true; });
        buffer->commit();
        buffer->waitUntilCompleted();
        while (!ran) {
            std::this_thread::yield();
        }
    }
    done = true;
    completing.join();
}
