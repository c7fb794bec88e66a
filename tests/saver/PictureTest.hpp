#pragma once

#include "saver/QZLCirraneRenderer.hpp"
#include "tests/saver/VulkanTest.hpp"
#include "tests/support/FakeHostView.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <vector>

/// BGRA, row 0 first.
using Pixels = std::vector<std::byte>;

inline int level(const Pixels& pixels, std::size_t index) {
    return std::to_integer<int>(pixels[index]);
}

struct Difference {
    double mean = 0.0;
    int largest = 0;
};

inline Difference differenceBetween(const Pixels& first, const Pixels& second) {
    Difference difference;
    for (std::size_t index = 0; index < first.size(); ++index) {
        const int distance = std::abs(level(first, index) - level(second, index));
        difference.mean += distance / static_cast<double>(first.size());
        difference.largest = std::max(difference.largest, distance);
    }
    return difference;
}

/// Frames of the clouds, drawn one at a time and read back.
class PictureTest : public VulkanTest {
protected:
    void SetUp() override {
        VulkanTest::SetUp();
        queue = device->newCommandQueue();
        ASSERT_NE(queue, nullptr);
    }

    std::shared_ptr<QZLCirraneRenderer> attachedRenderer(double width, double height) {
        view->viewBounds = {0, 0, width, height};
        auto renderer = QZLMakeRenderer<QZLCirraneRenderer>();
        const auto error = renderer->attachToView(view, false, 0, nullptr);
        EXPECT_FALSE(error) << error->code();
        return renderer;
    }

    /// Draws one frame and reads it back.
    Pixels draw(QZLCirraneRenderer& renderer, float fade = 1.0F) {
        const auto drawable = renderer.layer()->nextDrawable();
        const auto commands = queue->commandBuffer();
        const auto pass = std::make_shared<gpu::RenderPassDescriptor>();
        pass->colorAttachments[0].texture = drawable->texture();
        QZLDrawContext context(commands, pass, drawable);
        context.setBrightness(fade);
        renderer.drawFrame(context);
        commands->commit();
        commands->waitUntilCompleted();
        return renderer.layer()->readPixels(*drawable);
    }

    std::shared_ptr<gpu::CommandQueue> queue;
    std::shared_ptr<fake::HostView> view = std::make_shared<fake::HostView>();
};
