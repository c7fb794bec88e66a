// Screenshots through the machine's real driver, under validation.
#include "foundation/QZLEnvironment.hpp"
#include "platform/SystemLog.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "renderhost/QZLMetalRenderer.hpp"
#include "renderhost/QZLScreenshot.hpp"
#include "tests/support/FakeHostView.hpp"
#include "tests/support/ScopedEnvironment.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>
#include <QImage>

#include <filesystem>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace {

/// Clears its frames, each to another colour, and wants all of them saved.
class ClearingRenderer final : public QZLMetalRenderer {
public:
    void drawFrame(QZLDrawContext& context) override {
        if (auto* const encoder = context.renderCommandEncoderWithState(nullptr)) {
            encoder->endEncoding();
        }
    }
    bool shouldSaveScreenshot() override { return true; }
};

/// Fails for every message of the validation layer.
class QZLScreenshotOnDevice : public testing::Test {
protected:
    QZLScreenshotOnDevice() {
        std::filesystem::create_directory(desktop());
        platform::setSystemLogSink([](std::string_view) {});
        gpu::vulkan::VulkanOptions options;
        options.validate = true;
        options.validationMessage = [this](std::string_view message) {
            const std::lock_guard lock(_mutex);
            _messages.emplace_back(message);
        };
        gpu::setBackend(gpu::vulkan::makeVulkanBackend(std::move(options)));
        QZLForgetMacOsVersion();
    }

    ~QZLScreenshotOnDevice() override {
        device.reset();
        gpu::setBackend(nullptr);
        QZLForgetMacOsVersion();
        platform::setSystemLogSink({});
        for (const std::string& message : _messages) {
            ADD_FAILURE() << message;
        }
    }

    void SetUp() override {
        device = gpu::createSystemDefaultDevice();
        ASSERT_NE(device, nullptr) << "this test needs a Vulkan driver";
    }

    std::filesystem::path desktop() const { return home.path() / "Desktop"; }
    QImage screenshot(int number) const {
        const auto path = desktop() / ("Cirrane " + std::to_string(number) + ".bmp");
        return QImage(QString::fromStdString(path.string()), "BMP");
    }

    fake::TemporaryDirectory home;
    fake::ScopedEnvironment homeVariable{"HOME", home.path().string()};
    fake::Bundle bundle;
    std::shared_ptr<gpu::Device> device;
    std::shared_ptr<fake::HostView> view = std::make_shared<fake::HostView>();

private:
    std::mutex _mutex;
    std::vector<std::string> _messages;
};

void expectAll(const QImage& image, int width, int height, QRgb color) {
    ASSERT_EQ(image.size(), QSize(width, height));
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            ASSERT_EQ(image.pixel(column, row), color) << column << ", " << row;
        }
    }
}

}  // namespace

TEST_F(QZLScreenshotOnDevice, EachFrameIsSavedWithItsOwnPixels) {
    view->viewBounds = {0, 0, 37, 21};
    const auto renderer = QZLMakeRenderer<ClearingRenderer>();
    renderer->setScreenshotsEnabled(true);
    ASSERT_FALSE(renderer->attachToView(view, false, 0, std::make_shared<QZLStatistics>()));
    for (const double red : {0.0, 0.2, 0.4, 0.6, 0.8, 1.0}) {
        renderer->setClearFrameColor({red, 1.0, 0.4, 1.0});
        renderer->presentFrame();
    }
    renderer->detachFromView();  // waits for the frames in flight
    for (int frame = 0; frame < 6; ++frame) {
        expectAll(screenshot(frame), 37, 21, qRgb(51 * frame, 255, 102));
    }
}

TEST_F(QZLScreenshotOnDevice, AFramebufferOnlyLayerYieldsNone) {
    const auto renderer = QZLMakeRenderer<ClearingRenderer>();
    ASSERT_FALSE(renderer->attachToView(view, false, 0, nullptr));
    renderer->setScreenshotsEnabled(true);  // too late for this layer
    for (int frame = 0; frame < 5; ++frame) {
        renderer->presentFrame();
    }
    renderer->detachFromView();
    EXPECT_TRUE(std::filesystem::is_empty(desktop()));
}

TEST_F(QZLScreenshotOnDevice, FramesInFlightSurviveRendererAndView) {
    const std::weak_ptr<gpu::Device> weak = device;
    auto renderer = QZLMakeRenderer<ClearingRenderer>();
    renderer->setScreenshotsEnabled(true);
    ASSERT_FALSE(renderer->attachToView(view, false, 0, std::make_shared<QZLStatistics>()));
    for (int frame = 0; frame < 3; ++frame) {
        renderer->presentFrame();
    }
    device.reset();
    renderer.reset();
    view.reset();
    expectAll(screenshot(2), 640, 480, qRgb(0, 0, 0));
    EXPECT_TRUE(weak.expired());
}

TEST_F(QZLScreenshotOnDevice, BothChannelOrdersComeOutRight) {
    for (const auto format : {gpu::PixelFormat::RGBA8Unorm, gpu::PixelFormat::BGRA8Unorm}) {
        const auto texture =
            device->newTexture({format, 3, 2, gpu::TextureUsage::ShaderRead, gpu::StorageMode::Managed});
        ASSERT_NE(texture, nullptr);
        const bool blueFirst = format == gpu::PixelFormat::BGRA8Unorm;
        std::vector<unsigned char> pixels;
        for (unsigned char index = 0; index < 6; ++index) {
            const auto red = static_cast<unsigned char>(10 + index);
            const auto blue = static_cast<unsigned char>(200 + index);
            pixels.insert(pixels.end(), {blueFirst ? blue : red, 100, blueFirst ? red : blue, 255});
        }
        ASSERT_TRUE(texture->replaceRegion({{0, 0}, {3, 2}}, std::as_bytes(std::span(pixels)), 12));
        const auto path = (desktop() / "orders.bmp").string();
        ASSERT_TRUE(QZLSaveScreenshot(path, texture));
        const QImage image(QString::fromStdString(path), "BMP");
        ASSERT_EQ(image.size(), QSize(3, 2));
        for (int index = 0; index < 6; ++index) {
            EXPECT_EQ(image.pixel(index % 3, index / 3), qRgb(10 + index, 100, 200 + index));
        }
    }
}
