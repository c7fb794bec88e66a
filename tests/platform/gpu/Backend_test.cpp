#include "platform/gpu/Backend.hpp"

#include "tests/support/FakeGpu.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

/// Opens devices of a fake, and lets a test step in when it opens one and when it ends.
class SteppingInBackend final : public gpu::Backend {
public:
    ~SteppingInBackend() override {
        if (atItsEnd) {
            atItsEnd();
        }
    }
    std::string platformVersion() override { return "10.11.0"; }
    std::shared_ptr<gpu::Layer> newLayer() override { return nullptr; }
    using Backend::deviceWasLost;

    std::function<void(gpu::Device&)> whileOpening;
    std::function<void()> atItsEnd;

private:
    std::shared_ptr<gpu::Device> openDevice() override {
        auto device = _fake.systemDefaultDevice();
        if (whileOpening) {
            whileOpening(*device);
        }
        return device;
    }

    fake::Gpu _fake;
};

}  // namespace

TEST(Backend, UntilOneIsSetThereIsAMachineWithoutGraphics) {
    gpu::setBackend(nullptr);
    ASSERT_NE(gpu::backend(), nullptr);
    EXPECT_EQ(gpu::backend()->platformVersion(), "");
    EXPECT_EQ(gpu::createSystemDefaultDevice(), nullptr);
    EXPECT_EQ(gpu::createLayer(), nullptr);
    EXPECT_NE(gpu::createRenderPassDescriptor(), nullptr);
}

TEST(Backend, TheOneInForceMakesWhatTheRenderersAskFor) {
    const fake::ScopedGpu gpu;
    EXPECT_EQ(gpu::createSystemDefaultDevice()->name(), "Fake GPU");
    EXPECT_NE(gpu::createLayer(), nullptr);
    EXPECT_NE(gpu::createRenderPassDescriptor(), nullptr);
}

TEST(Backend, ARenderPassDescriptorStartsWithoutTargets) {
    const auto descriptor = gpu::createRenderPassDescriptor();
    for (const gpu::ColorAttachment& attachment : descriptor->colorAttachments) {
        EXPECT_EQ(attachment.texture, nullptr);
        EXPECT_EQ(attachment.loadAction, gpu::LoadAction::DontCare);
        EXPECT_EQ(attachment.storeAction, gpu::StoreAction::Store);
        EXPECT_EQ(attachment.clearColor, (gpu::ClearColor{0, 0, 0, 1}));
    }
}

TEST(Backend, OneThatGoesOutOfForceMayAskForTheOneThatFollows) {
    bool ended = false;
    auto former = std::make_shared<SteppingInBackend>();
    former->atItsEnd = [&ended] { ended = gpu::backend() != nullptr; };
    gpu::setBackend(std::move(former));
    gpu::setBackend(nullptr);
    EXPECT_TRUE(ended);
}

TEST(Backend, ADeviceMayBeLostWhileItIsOpened) {
    SteppingInBackend backend;
    int reports = 0;
    backend.setDeviceLostHandler([&reports] { ++reports; });
    backend.whileOpening = [&backend](gpu::Device& device) { backend.deviceWasLost(device); };
    EXPECT_NE(backend.systemDefaultDevice(), nullptr);
    EXPECT_EQ(reports, 1);
}

TEST(Backend, TheLossOfAFormerDeviceLeavesTheKnownOneAlone) {
    SteppingInBackend backend;
    fake::Gpu other;
    const auto known = backend.systemDefaultDevice();
    const auto former = other.systemDefaultDevice();
    backend.deviceWasLost(*former);
    int openings = 0;
    backend.whileOpening = [&openings](gpu::Device&) { ++openings; };
    EXPECT_EQ(backend.systemDefaultDevice(), known);
    EXPECT_EQ(openings, 0);
    backend.deviceWasLost(*known);
    backend.systemDefaultDevice();
    EXPECT_EQ(openings, 1);
}

TEST(Backend, AHandlerOfLostDevicesMayOpenTheNextOne) {
    SteppingInBackend backend;
    std::shared_ptr<gpu::Device> next;
    backend.setDeviceLostHandler([&] { next = backend.systemDefaultDevice(); });
    const auto device = backend.systemDefaultDevice();
    backend.deviceWasLost(*device);
    EXPECT_NE(next, nullptr);
}
