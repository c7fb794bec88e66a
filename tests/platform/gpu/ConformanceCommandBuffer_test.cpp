#include "tests/platform/gpu/Conformance.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <new>
#include <thread>

using gpu::CommandBufferStatus;
using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::TextureUsage;

namespace {

/// Lines noted by handlers, on whatever thread.
class Notes {
public:
    void add(std::string line) {
        const std::lock_guard lock(_mutex);
        _lines.push_back(std::move(line));
    }
    std::vector<std::string> lines() const {
        const std::lock_guard lock(_mutex);
        return _lines;
    }

private:
    mutable std::mutex _mutex;
    std::vector<std::string> _lines;
};

using Lines = std::vector<std::string>;

}  // namespace

TEST_P(Conformance, HandlersRunOnceInTheOrderAddedTheScheduledOnesFirst) {
    Notes notes;
    const auto buffer = queue->commandBuffer();
    buffer->addCompletedHandler([&notes](gpu::CommandBuffer&) { notes.add("completed 0"); });
    buffer->addScheduledHandler([&notes](gpu::CommandBuffer&) { notes.add("scheduled 0"); });
    buffer->addCompletedHandler([&notes](gpu::CommandBuffer&) { notes.add("completed 1"); });
    buffer->addScheduledHandler([&notes](gpu::CommandBuffer&) { notes.add("scheduled 1"); });
    EXPECT_EQ(notes.lines(), Lines());
    commit(buffer);
    finish();
    EXPECT_EQ(notes.lines(), (Lines{"scheduled 0", "scheduled 1", "completed 0", "completed 1"}));
}

TEST_P(Conformance, AHandlerThatThrowsKeepsNoOtherFromRunning) {
    Notes notes;
    for (const char* name : {"a", "b"}) {
        const auto buffer = queue->commandBuffer();
        buffer->addScheduledHandler([](gpu::CommandBuffer&) { throw std::bad_alloc(); });
        buffer->addScheduledHandler(
            [&notes, name](gpu::CommandBuffer&) { notes.add(std::string("scheduled ") + name); });
        buffer->addCompletedHandler([](gpu::CommandBuffer&) { throw std::bad_alloc(); });
        buffer->addCompletedHandler(
            [&notes, name](gpu::CommandBuffer&) { notes.add(std::string("completed ") + name); });
        commit(buffer);
    }
    finish();
    EXPECT_EQ(notes.lines(), (Lines{"scheduled a", "completed a", "scheduled b", "completed b"}));
}

TEST_P(Conformance, AnObserverThatThrowsKeepsNoFrameFromCompleting) {
    class Thrower final : public gpu::FrameObserver {
        void drawableTaken(const gpu::Drawable&) override {}
        void frameCommitted(const gpu::Drawable&) override { throw std::bad_alloc(); }
        void frameScheduled(const gpu::Drawable&) override { throw std::bad_alloc(); }
        void frameCompleted(const gpu::Drawable&, bool) override { throw std::bad_alloc(); }
    };
    const auto layer = makeLayer({4, 4});
    layer->setFrameObserver(std::make_shared<Thrower>());
    EXPECT_NE(drawFrame(*layer, {}), nullptr);
    finish();
    EXPECT_NE(drawFrame(*layer, {}), nullptr);
    finish();
}

TEST_P(Conformance, ABufferIsScheduledWhenItsPredecessorHasCompleted) {
    Notes notes;
    for (const char* name : {"a", "b", "c"}) {
        const auto buffer = queue->commandBuffer();
        buffer->addScheduledHandler(
            [&notes, name](gpu::CommandBuffer&) { notes.add(std::string("scheduled ") + name); });
        buffer->addCompletedHandler(
            [&notes, name](gpu::CommandBuffer&) { notes.add(std::string("completed ") + name); });
        commit(buffer);
    }
    finish();
    EXPECT_EQ(notes.lines(),
              (Lines{"scheduled a", "completed a", "scheduled b", "completed b", "scheduled c", "completed c"}));
}

TEST_P(Conformance, ABufferOnAnIdleQueueIsScheduledWithoutWaitingForItsEnd) {
    std::atomic<bool> scheduled = false;
    const auto buffer = queue->commandBuffer();
    buffer->addScheduledHandler([&scheduled](gpu::CommandBuffer&) { scheduled = true; });
    commit(buffer);
    EXPECT_TRUE(eventually([&scheduled] { return scheduled.load(); }));
}

TEST_P(Conformance, TheStatusFollowsTheBuffersLife) {
    const auto buffer = queue->commandBuffer();
    std::atomic<CommandBufferStatus> whenScheduled{};
    std::atomic<CommandBufferStatus> whenCompleted{};
    buffer->addScheduledHandler([&whenScheduled](gpu::CommandBuffer& running) { whenScheduled = running.status(); });
    buffer->addCompletedHandler([&whenCompleted](gpu::CommandBuffer& done) { whenCompleted = done.status(); });
    EXPECT_EQ(buffer->status(), CommandBufferStatus::NotEnqueued);
    commit(buffer);
    EXPECT_NE(buffer->status(), CommandBufferStatus::NotEnqueued);
    finish();
    EXPECT_EQ(whenScheduled, CommandBufferStatus::Scheduled);
    EXPECT_EQ(whenCompleted, CommandBufferStatus::Completed);
    EXPECT_EQ(buffer->status(), CommandBufferStatus::Completed);
}

TEST_P(Conformance, WaitingForABufferThatWasNotCommittedReturnsAtOnce) {
    queue->commandBuffer()->waitUntilCompleted();
}

TEST_P(Conformance, WaitingReturnsWhenTheWorkIsDone) {
    const Bytes bytes = countingBytes(16);
    const auto source = makeFilledTexture(PixelFormat::R8Unorm, {4, 4}, bytes);
    const auto destination = device->newBuffer(16);
    const auto buffer = queue->commandBuffer();
    buffer->blitCommandEncoder()->copyTextureToBuffer(source, wholeOf(*source), destination, 0, 4);
    commit(buffer);
    buffer->waitUntilCompleted();
    EXPECT_EQ(Bytes(destination->contents(), destination->contents() + 16), bytes);
}

TEST_P(Conformance, ACompletedHandlerMayReadBackThroughAQueueOfItsOwn) {
    const auto target = makeTexture(PixelFormat::BGRA8Unorm, {2, 1}, TextureUsage::ShaderReadRenderTarget);
    const auto destination = device->newBuffer(8);
    Bytes seen;
    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(passInto(target, LoadAction::Clear, {0.2, 0.4, 0.6, 1.0}))->endEncoding();
    buffer->addCompletedHandler([&](gpu::CommandBuffer&) {
        const auto ownQueue = device->newCommandQueue();
        const auto copy = ownQueue->commandBuffer();
        copy->blitCommandEncoder()->copyTextureToBuffer(target, wholeOf(*target), destination, 0, 8);
        copy->commit();
        copy->waitUntilCompleted();
        seen.assign(destination->contents(), destination->contents() + 8);
    });
    commit(buffer);
    finish();
    constexpr std::byte red{51}, green{102}, blue{153}, alpha{255};
    EXPECT_EQ(seen, (Bytes{blue, green, red, alpha, blue, green, red, alpha}));
}

TEST_P(Conformance, ACompletedHandlerMayWaitForALaterBufferOfItsOwnQueue) {
    const auto source = makeFilledTexture(PixelFormat::R8Unorm, {4, 1}, countingBytes(4));
    const auto destination = device->newBuffer(Bytes(4, std::byte{0}));
    const auto later = queue->commandBuffer();
    later->blitCommandEncoder()->copyTextureToBuffer(source, wholeOf(*source), destination, 0, 4);
    const auto committed = std::make_shared<std::atomic<bool>>(false);
    Bytes seen;
    const auto first = queue->commandBuffer();
    first->addCompletedHandler([&, committed](gpu::CommandBuffer&) {
        ASSERT_TRUE(eventually([&committed] { return committed->load(); }));
        later->waitUntilCompleted();
        seen.assign(destination->contents(), destination->contents() + 4);
    });
    commit(first);
    commit(later);
    *committed = true;
    finish();
    EXPECT_EQ(seen, countingBytes(4));
}

TEST_P(Conformance, ACompletedHandlerMayCommitTheNextBuffer) {
    std::atomic<bool> completed = false;
    const auto next = queue->commandBuffer();
    next->addCompletedHandler([&completed](gpu::CommandBuffer&) { completed = true; });
    const auto first = queue->commandBuffer();
    first->addCompletedHandler([this, &next](gpu::CommandBuffer&) { commit(next); });
    commit(first);
    finish();
    finish();
    EXPECT_TRUE(completed);
}

TEST_P(Conformance, AfterTheCommitNothingMoreIsAccepted) {
    std::atomic<int> late = 0;
    const auto texture = makeTexture(PixelFormat::R8Unorm, {1, 1}, TextureUsage::ShaderReadRenderTarget);
    const auto buffer = queue->commandBuffer();
    commit(buffer);
    EXPECT_EQ(buffer->renderCommandEncoder(passInto(texture, LoadAction::Clear)), nullptr);
    EXPECT_EQ(buffer->computeCommandEncoder(), nullptr);
    EXPECT_EQ(buffer->blitCommandEncoder(), nullptr);
    buffer->addScheduledHandler([&late](gpu::CommandBuffer&) { ++late; });
    buffer->addCompletedHandler([&late](gpu::CommandBuffer&) { ++late; });
    buffer->commit();
    finish();
    EXPECT_EQ(late, 0);
}

TEST_P(Conformance, OpeningAnEncoderOrCommittingEndsTheOneThatIsOpen) {
    const auto texture = makeTexture(PixelFormat::R8Unorm, {1, 1}, TextureUsage::ShaderReadRenderTarget);
    const auto buffer = queue->commandBuffer();
    gpu::CommandEncoder* const render = buffer->renderCommandEncoder(passInto(texture, LoadAction::Clear));
    EXPECT_TRUE(render->isOpen());
    gpu::CommandEncoder* const blit = buffer->blitCommandEncoder();
    EXPECT_FALSE(render->isOpen());
    EXPECT_TRUE(blit->isOpen());
    gpu::CommandEncoder* const compute = buffer->computeCommandEncoder();
    EXPECT_FALSE(blit->isOpen());
    commit(buffer);
    EXPECT_FALSE(compute->isOpen());
}

TEST_P(Conformance, PassesWithoutProperTargetsAreRefused) {
    const auto target = makeTexture(PixelFormat::R8Unorm, {1, 1}, TextureUsage::ShaderReadRenderTarget);
    const auto buffer = queue->commandBuffer();
    EXPECT_EQ(buffer->renderCommandEncoder({}), nullptr) << "none";

    const auto readable = makeTexture(PixelFormat::R8Unorm, {1, 1}, TextureUsage::ShaderRead);
    EXPECT_EQ(buffer->renderCommandEncoder(passInto(readable, LoadAction::Clear)), nullptr) << "no render target";

    gpu::RenderPassDescriptor gap = passInto(target, LoadAction::Clear);
    gap.colorAttachments[2] = gap.colorAttachments[0];
    gap.colorAttachments[2].texture = makeTexture(PixelFormat::R8Unorm, {1, 1}, TextureUsage::RenderTarget);
    EXPECT_EQ(buffer->renderCommandEncoder(gap), nullptr) << "a gap";

    gpu::RenderPassDescriptor twice = passInto(target, LoadAction::Clear);
    twice.colorAttachments[1] = twice.colorAttachments[0];
    EXPECT_EQ(buffer->renderCommandEncoder(twice), nullptr) << "one texture twice";
    commit(buffer);
}

TEST_P(Conformance, ManyBuffersOfOneQueueCompleteInTheOrderCommitted) {
    std::vector<int> completed;  // touched by handlers of one queue only, which never run at once
    constexpr int count = 100;
    for (int number = 0; number < count; ++number) {
        const auto buffer = queue->commandBuffer();
        buffer->addCompletedHandler([&completed, number](gpu::CommandBuffer&) { completed.push_back(number); });
        commit(buffer);
    }
    finish();
    ASSERT_EQ(completed.size(), static_cast<std::size_t>(count));
    EXPECT_TRUE(std::is_sorted(completed.begin(), completed.end()));
}

TEST_P(Conformance, ManyThreadsMayShareAQueue) {
    constexpr int threadCount = 4;
    constexpr int buffersPerThread = 25;
    std::array<std::vector<int>, threadCount> completed;
    std::vector<std::thread> threads;
    for (auto& ownCompleted : completed) {
        threads.emplace_back([this, &ownCompleted] {
            for (int number = 0; number < buffersPerThread; ++number) {
                const auto buffer = queue->commandBuffer();
                buffer->addCompletedHandler(
                    [&ownCompleted, number](gpu::CommandBuffer&) { ownCompleted.push_back(number); });
                commit(buffer);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    finish();
    for (const auto& ownCompleted : completed) {
        EXPECT_EQ(ownCompleted.size(), static_cast<std::size_t>(buffersPerThread));
        EXPECT_TRUE(std::is_sorted(ownCompleted.begin(), ownCompleted.end()));
    }
}
