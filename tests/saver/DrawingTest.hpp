#pragma once

#include "tests/saver/RecordingCommandBuffer.hpp"
#include "tests/saver/SaverTest.hpp"

#include <memory>

/// A renderer attached at 640 x 480 and 60 Hz, with speed multiplier 1, whose frames are drawn one at a time.
class DrawingTest : public SaverTest {
protected:
    DrawingTest() { defaults().setSpeed(0.5F); }

    void SetUp() override { attachRenderer(); }

    void attachRenderer() {
        renderer = makeRenderer();
        EXPECT_FALSE(attach(*renderer));
        screenPass = std::make_shared<gpu::RenderPassDescriptor>();
        screenPass->colorAttachments[0].texture = renderer->layer()->device()->newTexture(
            {gpu::PixelFormat::BGRA8Unorm, 640, 480, gpu::TextureUsage::ShaderReadRenderTarget,
             gpu::StorageMode::Private});
        screenPass->colorAttachments[0].texture->setLabel("Screen");
    }

    QZLDrawContext contextOf(const std::shared_ptr<RecordingCommandBuffer>& commands, int slot) {
        QZLDrawContext context(commands, screenPass, nullptr);
        context.setBufferIndex(slot);
        return context;
    }

    /// Draws one frame and lets the GPU finish it.
    std::shared_ptr<RecordingCommandBuffer> drawFrame(int slot = 0, float fade = 1.0F) {
        auto commands = std::make_shared<RecordingCommandBuffer>();
        QZLDrawContext context = contextOf(commands, slot);
        context.setBrightness(fade);
        renderer->drawFrame(context);
        commands->complete();
        return commands;
    }

    std::shared_ptr<QZLCirraneRenderer> renderer;
    std::shared_ptr<gpu::RenderPassDescriptor> screenPass;
};
