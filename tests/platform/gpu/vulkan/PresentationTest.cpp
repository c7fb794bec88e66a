#include "PresentationTest.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/RenderPassDescriptor.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"

#include <dlfcn.h>

#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

namespace {

/// Keeps the driver and the validation layer loaded to the end, because a leak report can name, and so pass over, only
/// libraries that are still there.
void keepLibrariesLoaded() {
    for (const char* const library : {"libvulkan_lvp.so", "libVkLayer_khronos_validation.so"}) {
        dlopen(library, RTLD_LAZY | RTLD_NODELETE);
    }
}

}  // namespace

PresentationTest::PresentationTest() {
    keepLibrariesLoaded();
    platform::setSystemLogSink([this](std::string_view line) {
        const std::lock_guard lock(_mutex);
        _log.emplace_back(line);
    });
    gpu::vulkan::VulkanOptions options;
    options.presentation = gpu::vulkan::XcbServer{_server.connection(), _server.screen().root_visual};
    options.validate = true;
    options.validationMessage = [this](std::string_view message) {
        const std::lock_guard lock(_mutex);
        _validation.emplace_back(message);
    };
    _backend = gpu::vulkan::makeVulkanBackend(options);
    _device = _backend->systemDefaultDevice();
    if (_device == nullptr) {
        throw std::runtime_error("No Vulkan device that can present to this X server.");
    }
    _queue = _device->newCommandQueue();
    _layer = _backend->newLayer();
    _layer->setDevice(_device);
    _layer->setDrawableSize(defaultSize);
}

PresentationTest::~PresentationTest() {
    EXPECT_TRUE(waitUntilCompleted());
    _layer.reset();
    _queue.reset();
    _device.reset();
    _backend.reset();
    platform::setSystemLogSink({});
    EXPECT_EQ(_server.errors(), "");
    EXPECT_EQ(_otherServer.errors(), "");
    EXPECT_EQ(_validation, std::vector<std::string>());
    EXPECT_EQ(_log, std::vector<std::string>());
}

bool PresentationTest::drawFrame(std::uint32_t color) {
    if (!eventually([this] { return _framesCommitted - _framesCompleted < framesInFlight; })) {
        return false;
    }
    const auto drawable = _layer->nextDrawable();
    const auto commands = _queue->commandBuffer();
    if (drawable == nullptr || commands == nullptr) {
        return false;
    }
    gpu::RenderPassDescriptor pass;
    pass.colorAttachments[0].texture = drawable->texture();
    pass.colorAttachments[0].loadAction = gpu::LoadAction::Clear;
    pass.colorAttachments[0].clearColor = {(color >> 16 & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0,
                                           (color & 0xFF) / 255.0, 1.0};
    gpu::RenderCommandEncoder* encoder = commands->renderCommandEncoder(pass);
    if (encoder == nullptr) {
        return false;
    }
    encoder->endEncoding();
    commands->addCompletedHandler([this](gpu::CommandBuffer& done) {
        EXPECT_EQ(done.status(), gpu::CommandBufferStatus::Completed);
        ++_framesCompleted;
    });
    commands->presentDrawable(drawable);
    ++_framesCommitted;
    commands->commit();
    return true;
}

bool PresentationTest::waitUntilCompleted() {
    return eventually([this] { return _framesCompleted == _framesCommitted; });
}

bool PresentationTest::drawUntilShown(const TestWindow& window, gpu::Origin point, std::uint32_t color) {
    return eventually([&] { return drawFrame(color) && waitUntilCompleted() && window.pixel(point) == color; });
}

bool PresentationTest::waitUntilShown(const TestWindow& window, gpu::Origin point, std::uint32_t color) {
    return eventually([&] { return window.pixel(point) == color; });
}

std::vector<std::string> PresentationTest::takeLog() {
    const std::lock_guard lock(_mutex);
    return std::exchange(_log, {});
}
