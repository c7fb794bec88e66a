// The saver on the real driver, one of whose calls fails: each in turn, once for lack of memory and once for good.
#include "foundation/QZLError.hpp"
#include "tests/platform/gpu/vulkan/FaultyVulkan.hpp"
#include "tests/saver/StartedRenderer.hpp"
#include "tests/saver/VulkanTest.hpp"
#include "tests/support/FakeHostView.hpp"
#include "tests/support/Waiting.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace {

using fake::vulkan::Failure;
using testing::Ge;
using testing::IsSubsetOf;

std::string nameOf(const testing::TestParamInfo<Failure>& info) {
    switch (info.param) {
        case Failure::OutOfHostMemory: return "OutOfHostMemory";
        case Failure::OutOfDeviceMemory: return "OutOfDeviceMemory";
        default: return "DeviceLost";
    }
}

/// Counts the frames of a layer, and which of them were drawn.
class FrameCounter final : public gpu::FrameObserver {
public:
    std::atomic<int> committed = 0;
    std::atomic<int> completed = 0;
    std::atomic<int> succeeded = 0;

    void drawableTaken(const gpu::Drawable&) override {}
    void frameCommitted(const gpu::Drawable&) override { ++committed; }
    void frameScheduled(const gpu::Drawable&) override {}
    void frameCompleted(const gpu::Drawable&, bool hasSucceeded) override {
        succeeded += hasSucceeded ? 1 : 0;
        ++completed;
    }
};

class QZLCirraneFaultyDriver : public VulkanTest, public testing::WithParamInterface<Failure> {
protected:
    QZLCirraneFaultyDriver() {
        view->viewBounds = {0, 0, 32, 32};
        gpu::backend()->setDeviceLostHandler([this] { ++losses; });
    }
    ~QZLCirraneFaultyDriver() override { fake::vulkan::failNone(); }

    /// Draws that many frames and returns when all that were committed have completed.
    std::shared_ptr<FrameCounter> draw(int frames) {
        const auto counter = std::make_shared<FrameCounter>();
        view->layer->setFrameObserver(counter);
        for (int frame = 0; frame < frames; ++frame) {
            view->displayLink->fire();
        }
        EXPECT_TRUE(fake::eventually([&counter] { return counter->completed == counter->committed; }));
        view->layer->setFrameObserver(nullptr);
        return counter;
    }

    /// Detaches, and draws after a fresh start as if nothing had been.
    void expectRecovery(StartedRenderer& renderer) {
        fake::vulkan::failNone();
        renderer.stopAndDetach();
        view->layer.reset();
        const auto error = renderer.start();
        ASSERT_FALSE(error) << error->code();
        EXPECT_FALSE(view->layer->device()->isLost());
        EXPECT_EQ(draw(5)->succeeded, 5);
    }

    std::shared_ptr<fake::HostView> view = std::make_shared<fake::HostView>();
    std::atomic<int> losses = 0;
};

/// What may be reported when a resource fails, by sub-code.
const std::map<std::int64_t, std::set<std::int64_t>> codesOf{
    {0, {303}},    {1000, {101, 105}}, {1001, {101, 105}}, {1002, {108}},
    {1003, {108}}, {1004, {107}},      {1005, {107}},      {1006, {107}},
};

TEST_P(QZLCirraneFaultyDriver, EveryFailureOfAnAttachIsTheErrorOfItsResource) {
    std::set<std::int64_t> subCodes;
    for (std::uint64_t call = 0;; ++call) {
        StartedRenderer renderer(view);
        fake::vulkan::failCall(call, GetParam());
        const auto error = renderer.start();
        const std::string failed = fake::vulkan::failedCall();
        if (failed.empty()) {
            EXPECT_FALSE(error);
            break;
        }
        SCOPED_TRACE(std::to_string(call) + ": " + failed);
        ASSERT_TRUE(error);
        const std::int64_t subCode = QZLGetErrorSubCode(*error);
        ASSERT_TRUE(codesOf.contains(subCode)) << error->code() << ':' << subCode;
        EXPECT_TRUE(codesOf.at(subCode).contains(error->code())) << error->code() << ':' << subCode;
        EXPECT_TRUE(subCodes.empty() || subCode >= *subCodes.rbegin());
        subCodes.insert(subCode);
        expectRecovery(renderer);
    }
    EXPECT_EQ(subCodes, (std::set<std::int64_t>{0, 1000, 1001, 1002, 1003, 1004, 1005, 1006}));
}

TEST_P(QZLCirraneFaultyDriver, EveryFailureOfAFrameCostsNoMoreThanThatFrameAndItsSlot) {
    std::set<std::string> functions;
    for (std::uint64_t call = 0;; ++call) {
        StartedRenderer renderer(view);
        ASSERT_FALSE(renderer.start());
        const int lossesBefore = losses;
        fake::vulkan::failCall(call, GetParam());
        const auto counter = draw(12);
        const std::string failed = fake::vulkan::failedCall();
        if (failed.empty()) {
            EXPECT_EQ(counter->succeeded, 12);
            break;
        }
        SCOPED_TRACE(std::to_string(call) + ": " + failed);
        functions.insert(failed);
        EXPECT_GE(counter->committed, 11);
        if (losses == lossesBefore) {
            EXPECT_GE(counter->succeeded, 11);
        }
        expectRecovery(renderer);
    }
    EXPECT_THAT((std::set<std::string>{"vkAllocateCommandBuffers", "vkAllocateDescriptorSets", "vkAllocateMemory",
                                       "vkBeginCommandBuffer", "vkCreateCommandPool", "vkCreateDescriptorPool",
                                       "vkCreateImage", "vkEndCommandBuffer", "vkQueueSubmit2", "vkResetCommandPool",
                                       "vkWaitForFences", "vkWaitSemaphores"}),
                IsSubsetOf(functions));
}

TEST_P(QZLCirraneFaultyDriver, EveryFailureOfOpeningADeviceIsThatThereIsNone) {
    device.reset();
    for (std::uint64_t call = 0;; ++call) {
        gpu::setBackend(gpu::vulkan::makeVulkanBackend({}));
        fake::vulkan::failCall(call, GetParam());
        const auto opened = gpu::createSystemDefaultDevice();
        const std::string failed = fake::vulkan::failedCall();
        if (failed.empty()) {
            EXPECT_NE(opened, nullptr);
            break;
        }
        SCOPED_TRACE(std::to_string(call) + ": " + failed);
        EXPECT_EQ(opened, nullptr);
        fake::vulkan::failNone();
        EXPECT_NE(gpu::createSystemDefaultDevice(), nullptr) << "the next try";
    }
}

INSTANTIATE_TEST_SUITE_P(With, QZLCirraneFaultyDriver,
                         testing::Values(Failure::OutOfHostMemory, Failure::OutOfDeviceMemory, Failure::DeviceLost),
                         nameOf);

}  // namespace
