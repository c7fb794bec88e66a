#include "LayerPainter.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/RenderPassDescriptor.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "platform/ui/ApplicationDisplay.hpp"
#include "tests/support/Waiting.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

LayerPainter::LayerPainter() {
    platform::setSystemLogSink([this](std::string_view line) {
        const std::lock_guard lock(_mutex);
        _messages.emplace_back(line);
    });
    gpu::vulkan::VulkanOptions options;
    options.presentation = platform::applicationPresentationServer();
    options.validate = true;
    _backend = gpu::vulkan::makeVulkanBackend(options);
    const auto device = _backend->systemDefaultDevice();
    if (device == nullptr) {
        throw std::runtime_error("no Vulkan device that can present to this display");
    }
    _queue = device->newCommandQueue();
    _layer = _backend->newLayer();
    _layer->setDevice(device);
    _layer->setDrawableSize({32, 32});
}

LayerPainter::~LayerPainter() {
    _layer.reset();
    _queue.reset();
    _backend.reset();
    platform::setSystemLogSink({});
    EXPECT_EQ(_messages, std::vector<std::string>());
}

void LayerPainter::draw(std::uint32_t color) {
    const auto drawable = _layer->nextDrawable();
    const auto commands = _queue->commandBuffer();
    ASSERT_NE(drawable, nullptr);
    gpu::RenderPassDescriptor pass;
    pass.colorAttachments[0].texture = drawable->texture();
    pass.colorAttachments[0].loadAction = gpu::LoadAction::Clear;
    pass.colorAttachments[0].clearColor = {(color >> 16 & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0,
                                           (color & 0xFF) / 255.0, 1.0};
    commands->renderCommandEncoder(pass)->endEncoding();
    fake::Gate completed;
    commands->addCompletedHandler([&completed](gpu::CommandBuffer&) { completed.open(); });
    commands->presentDrawable(drawable);
    commands->commit();
    ASSERT_TRUE(completed.wait());
}

void LayerPainter::forgetMessage(const std::string& message) {
    const std::lock_guard lock(_mutex);
    std::erase(_messages, message);
}

std::vector<std::string> LayerPainter::messages() const {
    const std::lock_guard lock(_mutex);
    return _messages;
}
