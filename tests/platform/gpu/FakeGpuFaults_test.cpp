#include "tests/support/FakeGpu.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <fstream>

using gpu::FunctionType;
using gpu::PixelFormat;

/// Every fault that the fake can be told, one by one.
class FakeGpuFaults : public testing::Test {
protected:
    FakeGpuFaults() {
        std::ofstream(file) << "library";
        gpu.setFunctions(
            {{"Vertex", FunctionType::Vertex}, {"Fragment", FunctionType::Fragment}, {"Kernel", FunctionType::Kernel}});
    }

    std::shared_ptr<gpu::Device> device() { return _device != nullptr ? _device : _device = gpu.systemDefaultDevice(); }
    std::shared_ptr<gpu::CommandQueue> queue() {
        return _queue != nullptr ? _queue : _queue = device()->newCommandQueue();
    }
    std::shared_ptr<gpu::RenderPipelineState> makeRenderPipeline() {
        const auto library = device()->newLibrary(file);
        return device()->newRenderPipelineState({library->newFunction("Vertex", FunctionType::Vertex),
                                                 library->newFunction("Fragment", FunctionType::Fragment),
                                                 {PixelFormat::R8Unorm}});
    }
    std::shared_ptr<gpu::Layer> makeLayer() {
        auto layer = gpu.newLayer();
        layer->setDevice(device());
        layer->setDrawableSize({2, 2});
        return layer;
    }

    fake::TemporaryDirectory directory;
    const std::filesystem::path file = directory.path() / "default.metallib";
    fake::Gpu gpu;

private:
    std::shared_ptr<gpu::Device> _device;
    std::shared_ptr<gpu::CommandQueue> _queue;
};

TEST_F(FakeGpuFaults, ThePlatformCanBeOfAnyVersion) {
    gpu.plan().platformVersion = "10.11.0";
    EXPECT_EQ(gpu.platformVersion(), "10.11.0");
}

TEST_F(FakeGpuFaults, ThereMayBeNoDevice) {
    gpu.plan().noDevice = true;
    EXPECT_EQ(gpu.systemDefaultDevice(), nullptr);
    EXPECT_EQ(gpu.calls(), std::vector<std::string>{"openDevice failed"});
}

TEST_F(FakeGpuFaults, ThereMayBeNoQueue) {
    gpu.plan().noCommandQueue = true;
    EXPECT_EQ(device()->newCommandQueue(), nullptr);
}

TEST_F(FakeGpuFaults, TheFeatureSetMayBeMissing) {
    EXPECT_TRUE(device()->supportsFeatureSet(gpu::FeatureSet::MacOsGpuFamily1V3));
    gpu.plan().noFeatureSet = true;
    EXPECT_FALSE(device()->supportsFeatureSet(gpu::FeatureSet::MacOsGpuFamily1V3));
}

TEST_F(FakeGpuFaults, TheLibraryMayBeUnusable) {
    gpu.plan().noLibrary = true;
    EXPECT_EQ(device()->newLibrary(file), nullptr);
}

TEST_F(FakeGpuFaults, AFunctionMayBeMissing) {
    gpu.plan().missingFunctions = {"Fragment"};
    const auto library = device()->newLibrary(file);
    EXPECT_NE(library->newFunction("Vertex", FunctionType::Vertex), nullptr);
    EXPECT_EQ(library->newFunction("Fragment", FunctionType::Fragment), nullptr);
    EXPECT_EQ(gpu.calls().back(), "newFunction Fragment failed");
}

TEST_F(FakeGpuFaults, TheChosenCreationsFail) {
    gpu.plan().failingBuffers = {1};
    gpu.plan().failingTextures = {1};
    gpu.plan().failingCommandBuffers = {1};
    gpu.plan().failingRenderPipelines = {1};
    gpu.plan().failingComputePipelines = {1};
    gpu.plan().failingRenderPassDescriptors = {1};
    gpu.plan().failingDrawables = {1};
    gpu.plan().failingEncoders = {1};
    const auto layer = makeLayer();
    const auto encoding = queue()->commandBuffer();
    const auto kernel = device()->newLibrary(file)->newFunction("Kernel", FunctionType::Kernel);
    for (const bool succeeds : {true, false, true}) {
        EXPECT_EQ(device()->newBuffer(4) != nullptr, succeeds);
        EXPECT_EQ(device()->newTexture({PixelFormat::R8Unorm, 2, 2}) != nullptr, succeeds);
        EXPECT_EQ(encoding->blitCommandEncoder() != nullptr, succeeds);
        EXPECT_EQ(makeRenderPipeline() != nullptr, succeeds);
        EXPECT_EQ(device()->newComputePipelineState(kernel) != nullptr, succeeds);
        EXPECT_EQ(gpu.newRenderPassDescriptor() != nullptr, succeeds);
        EXPECT_EQ(layer->nextDrawable() != nullptr, succeeds);
    }
    EXPECT_EQ(queue()->commandBuffer(), nullptr);
    EXPECT_NE(queue()->commandBuffer(), nullptr);
    EXPECT_EQ(layer->nextDrawable()->identifier(), 2u) << "a drawable that failed is not counted";
}

TEST_F(FakeGpuFaults, EncodersOfEveryKindFail) {
    const auto target = device()->newTexture({PixelFormat::R8Unorm, 2, 2, gpu::TextureUsage::RenderTarget});
    gpu::RenderPassDescriptor descriptor;
    descriptor.colorAttachments[0] = {target, gpu::LoadAction::Clear, gpu::StoreAction::Store, {1, 1, 1, 1}};
    gpu.plan().failingEncoders = {0, 1, 2};
    const auto buffer = queue()->commandBuffer();
    gpu.clearCalls();
    EXPECT_EQ(buffer->renderCommandEncoder(descriptor), nullptr);
    EXPECT_EQ(buffer->computeCommandEncoder(), nullptr);
    EXPECT_EQ(buffer->blitCommandEncoder(), nullptr);
    EXPECT_EQ(gpu.calls(), (std::vector<std::string>{"render [R8Unorm 2x2 clear(1 1 1 1) store] failed",
                                                     "compute failed", "blit failed"}));
    buffer->commit();
    gpu.completeAll();
    EXPECT_EQ(fake::Gpu::pixels(*target), std::vector<std::byte>(4)) << "a pass that was not begun clears nothing";
}

TEST_F(FakeGpuFaults, TheChosenCallsFailWhateverTheyAskFor) {
    gpu.plan().failingCalls = {1, 3, 4};
    const auto texture = device()->newTexture({PixelFormat::R8Unorm, 2, 2});
    EXPECT_EQ(texture, nullptr);
    EXPECT_NE(device()->newTexture({PixelFormat::R8Unorm, 2, 2}), nullptr);
    EXPECT_EQ(gpu.newLayer(), nullptr);
    EXPECT_EQ(gpu.newRenderPassDescriptor(), nullptr);
    EXPECT_NE(gpu.newRenderPassDescriptor(), nullptr);
}

TEST_F(FakeGpuFaults, ObjectsAreCountedWhileAnybodyHoldsThem) {
    EXPECT_EQ(gpu.liveObjects(), 0u);
    auto buffer = device()->newBuffer(4);
    EXPECT_EQ(gpu.liveObjects(), 2u) << "the device and the buffer";
    auto layer = makeLayer();
    auto drawable = layer->nextDrawable();
    EXPECT_EQ(gpu.liveObjects(), 5u) << "and a layer, its image and a drawable";
    drawable.reset();
    EXPECT_EQ(gpu.liveObjects(), 4u) << "the image is the layer's";
    layer.reset();
    buffer.reset();
    EXPECT_EQ(gpu.liveObjects(), 1u);
    auto descriptor = gpu.newRenderPassDescriptor();
    auto commands = queue()->commandBuffer();
    EXPECT_EQ(gpu.liveObjects(), 4u);
    commands->commit();
    commands.reset();
    EXPECT_EQ(gpu.liveObjects(), 4u) << "what was committed lives until it has completed";
    gpu.completeAll();
    EXPECT_EQ(gpu.liveObjects(), 3u);
}

TEST_F(FakeGpuFaults, ABufferMayFail) {
    gpu::CommandBufferStatus status{};
    const auto texture = device()->newTexture({PixelFormat::R8Unorm, 2, 2, gpu::TextureUsage::RenderTarget});
    gpu::RenderPassDescriptor descriptor;
    descriptor.colorAttachments[0] = {texture, gpu::LoadAction::Clear, gpu::StoreAction::Store, {1, 1, 1, 1}};
    const auto buffer = queue()->commandBuffer();
    buffer->renderCommandEncoder(descriptor);
    buffer->addCompletedHandler([&status](gpu::CommandBuffer& failed) { status = failed.status(); });
    buffer->commit();
    EXPECT_TRUE(gpu.completeNext(false));
    EXPECT_EQ(status, gpu::CommandBufferStatus::Error);
    EXPECT_EQ(fake::Gpu::pixels(*texture), std::vector<std::byte>(4)) << "nothing was done";
}

TEST_F(FakeGpuFaults, TheDeviceIsLostWithTheCommitAfterTheLastGoodOnes) {
    int reports = 0;
    std::string order;
    gpu.setDeviceLostHandler([&reports] { ++reports; });
    gpu.plan().lostAfterCommits = 2;
    const auto commit = [&](char name) {
        const auto buffer = queue()->commandBuffer();
        buffer->addCompletedHandler([&order, name](gpu::CommandBuffer& completed) {
            order += name;
            order += completed.status() == gpu::CommandBufferStatus::Error ? " failed " : " completed ";
        });
        buffer->commit();
    };
    commit('0');
    commit('1');
    EXPECT_FALSE(device()->isLost());
    gpu.completeNext();
    commit('2');
    EXPECT_TRUE(device()->isLost());
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(order, "0 completed 1 failed 2 failed ") << "what was in flight fails with it, in order";
    commit('3');
    EXPECT_EQ(order, "0 completed 1 failed 2 failed 3 failed ");
    EXPECT_EQ(reports, 1);
}

TEST_F(FakeGpuFaults, ADeviceOpenedAfterALossIsSound) {
    gpu.plan().lostAfterCommits = 0;
    queue()->commandBuffer()->commit();
    EXPECT_EQ(device()->newCommandQueue(), nullptr);
    EXPECT_EQ(device()->newLibrary(file), nullptr);
    const auto next = gpu.systemDefaultDevice();
    EXPECT_NE(next, device());
    next->newCommandQueue()->commandBuffer()->commit();
    EXPECT_FALSE(next->isLost());
    EXPECT_NE(next->newBuffer(4), nullptr);
}
