// Showing frames in a window when one call of the presentation fails: each in turn.
#include "PresentationTest.hpp"
#include "tests/platform/gpu/vulkan/FaultyVulkan.hpp"

#include <set>

namespace {

using fake::vulkan::Failure;

constexpr std::uint32_t red = 0xFF0000;
constexpr std::uint32_t green = 0x00FF00;

class FaultyPresentation : public PresentationTest, public testing::WithParamInterface<Failure> {
protected:
    ~FaultyPresentation() override { fake::vulkan::failNone(); }

    /// Draws frames of the colour until the point shows it or frames are no longer shown at all; false if neither
    /// comes.
    bool drawUntilShownOrGone(const TestWindow& window, std::uint32_t color) {
        return eventually([&] {
            return drawFrame(color) && waitUntilCompleted() && (isGone() || window.pixel({0, 0}) == color);
        });
    }

    /// True once the log has told so.
    bool isGone() {
        for (const std::string& line : takeLog()) {
            _isGone = _isGone || line == "gpu: a window has gone; its frames are no longer shown";
        }
        return _isGone;
    }

    /// Shows frames in a window of their own while that call fails. The function that failed, if the call was made.
    std::string showWhileFailing(std::uint64_t call) {
        _isGone = false;
        TestWindow window(_server, _server, defaultSize);
        fake::vulkan::failCall(call, GetParam(), fake::vulkan::Calls::OfPresentation);
        _layer->setPresentationTarget(window.target());
        EXPECT_TRUE(drawUntilShownOrGone(window, red));
        EXPECT_TRUE(drawUntilShownOrGone(window, green));
        _layer->setPresentationTarget({});  // the presentation has ended
        const std::string failed = fake::vulkan::failedCall();
        fake::vulkan::failNone();
        return failed;
    }

private:
    bool _isGone = false;
};

std::string nameOf(const testing::TestParamInfo<Failure>& info) {
    switch (info.param) {
        case Failure::OutOfHostMemory: return "OutOfHostMemory";
        case Failure::OutOfDate: return "OutOfDate";
        default: return "SurfaceLost";
    }
}

TEST_P(FaultyPresentation, NoFailureCostsAFrameAndOnlyALostWindowIsGivenUp) {
    std::set<std::string> functions;
    for (std::uint64_t call = 0;; ++call) {
        const std::string failed = showWhileFailing(call);
        SCOPED_TRACE(std::to_string(call) + ": " + failed);
        EXPECT_EQ(isGone(), GetParam() == Failure::SurfaceLost && !failed.empty());
        if (failed.empty()) {
            break;
        }
        functions.insert(failed);
    }
    EXPECT_EQ(functions, (std::set<std::string>{
                             "vkAcquireNextImageKHR", "vkCreateSwapchainKHR", "vkCreateXcbSurfaceKHR",
                             "vkGetPhysicalDeviceSurfaceCapabilitiesKHR", "vkGetPhysicalDeviceSurfaceFormatsKHR",
                             "vkGetPhysicalDeviceSurfacePresentModesKHR", "vkGetPhysicalDeviceSurfaceSupportKHR",
                             "vkGetSwapchainImagesKHR", "vkQueuePresentKHR"}));
}

INSTANTIATE_TEST_SUITE_P(With, FaultyPresentation,
                         testing::Values(Failure::OutOfHostMemory, Failure::OutOfDate, Failure::SurfaceLost), nameOf);

using CountedPresentation = PresentationTest;

TEST_F(CountedPresentation, HardlyAFrameIsDrawnThatIsNotShownHoweverFastTheyCome) {
    constexpr std::uint64_t frames = 60;
    TestWindow window(_server, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    const std::uint64_t before = fake::vulkan::submissions();
    for (std::uint64_t frame = 0; frame < frames; ++frame) {
        ASSERT_TRUE(drawFrame(frame + 1 == frames ? green : red));
    }
    ASSERT_TRUE(waitUntilShown(window, {0, 0}, green));
    _layer->setPresentationTarget({});
    // One for drawing it, one for copying it to the window, one for presenting it. The server may lack an image for
    // one.
    EXPECT_GE(fake::vulkan::submissions() - before, 3 * frames - 2 * (frames / 5));
}

}  // namespace
