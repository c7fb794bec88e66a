// Overlays when one call of the driver fails: each in turn.
#include "PresentationTest.hpp"
#include "tests/platform/gpu/vulkan/FaultyVulkan.hpp"

#include <set>

namespace {

using fake::vulkan::Failure;

constexpr std::uint32_t red = 0xFF0000;
constexpr std::uint32_t green = 0x00FF00;

std::shared_ptr<const gpu::Overlay> redDot() {
    return std::make_shared<const gpu::Overlay>(gpu::Overlay{
        .x = 0, .y = 0, .size = {1, 1}, .pixels = {std::byte{0}, std::byte{0}, std::byte{0xFF}, std::byte{0xFF}}});
}

class FaultyOverlay : public PresentationTest {
protected:
    ~FaultyOverlay() override { fake::vulkan::failNone(); }

    bool drawUntil(const TestWindow& window, std::uint32_t corner) {
        return eventually([&] {
            return drawFrame(green) && waitUntilCompleted() && window.pixel({5, 5}) == green &&
                   window.pixel({0, 0}) == corner;
        });
    }

    /// Shows frames with an overlay while that call fails. The function that failed, if the call was made.
    std::string showWhileFailing(std::uint64_t call) {
        TestWindow window(_server, _server, defaultSize);
        _layer->setPresentationTarget(window.target());
        EXPECT_TRUE(drawUntil(window, green));
        fake::vulkan::failCall(call, Failure::OutOfDeviceMemory, fake::vulkan::Calls::OfDescriptorsAndPipelines);
        _layer->setOverlay(redDot());
        EXPECT_TRUE(eventually([&] {
            return drawFrame(green) && waitUntilCompleted() &&
                   (!fake::vulkan::failedCall().empty() || window.pixel({0, 0}) == red);
        }));
        const std::string failed = fake::vulkan::failedCall();
        fake::vulkan::failNone();
        EXPECT_TRUE(drawUntil(window, failed.empty() ? red : green)) << "frames go on";
        _layer->setOverlay(redDot());
        EXPECT_TRUE(drawUntil(window, red)) << "a new overlay is tried anew";
        _layer->setOverlay(nullptr);
        _layer->setPresentationTarget({});
        return failed;
    }
};

TEST_F(FaultyOverlay, OneThatCannotBePaintedIsLeftOutAndCostsNoFrame) {
    std::set<std::string> functions;
    for (std::uint64_t call = 0;; ++call) {
        const std::string failed = showWhileFailing(call);
        SCOPED_TRACE(std::to_string(call) + ": " + failed);
        if (failed.empty()) {
            break;
        }
        functions.insert(failed);
    }
    takeLog();
    EXPECT_EQ(functions, (std::set<std::string>{"vkAllocateDescriptorSets", "vkCreateDescriptorPool",
                                                "vkCreateDescriptorSetLayout", "vkCreateGraphicsPipelines",
                                                "vkCreatePipelineLayout", "vkCreateShaderModule"}));
}

TEST_F(FaultyOverlay, WithoutAnOverlayNothingIsMadeForOne) {
    TestWindow window(_server, _server, defaultSize);
    fake::vulkan::failCall(0, Failure::OutOfDeviceMemory, fake::vulkan::Calls::OfDescriptorsAndPipelines);
    _layer->setPresentationTarget(window.target());
    EXPECT_TRUE(drawUntil(window, green));
    EXPECT_EQ(fake::vulkan::failedCall(), "");
    _layer->setPresentationTarget({});
}

}  // namespace
