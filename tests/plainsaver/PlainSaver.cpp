// A second saver on the same framework: one plain colour. All that a saver must bring is in this file.
#include "platform/SaverModule.hpp"
#include "platform/gpu/Backend.hpp"
#include "platform/gpu/CommandBuffer.hpp"
#include "platform/gpu/RenderPassDescriptor.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "view/QZLScreenSaverView.hpp"

#include <exception>

namespace {

class PlainRenderer final : public QZLMetalRenderer {
public:
    void drawFrame(QZLDrawContext& context) override {
        const auto pass = gpu::createRenderPassDescriptor();
        gpu::ColorAttachment& attachment = pass->colorAttachments[0];
        attachment.texture = context.drawable().texture();
        attachment.loadAction = gpu::LoadAction::Clear;
        attachment.clearColor = {0.2, 0.4, 0.6, 1.0};
        attachment.storeAction = gpu::StoreAction::Store;
        if (gpu::RenderCommandEncoder* encoder = context.commandBuffer().renderCommandEncoder(*pass)) {
            encoder->endEncoding();
        }
    }
};

class PlainView final : public QZLScreenSaverView {
public:
    PlainView(const platform::Rect& frame, bool isPreview)
        : QZLScreenSaverView(QZLMakeRenderer<PlainRenderer>(), frame, isPreview) {
        setErrorBackground(Qt::darkBlue);
        setMultiScreen(true);
        setShowDiagnostics(QZLDefaultsManager::sharedInstance().diagnostics());
    }
};

platform::ScreenSaverView* createView(const platform::Rect& frame, bool isPreview) noexcept {
    try {
        return new PlainView(frame, isPreview);
    } catch (const std::exception&) {
        return nullptr;
    }
}

constexpr platform::SaverModule module{platform::SaverModule::currentVersion, createView, []() noexcept {}};

}  // namespace

extern "C" __attribute__((visibility("default"))) const platform::SaverModule* plainSaverModule() noexcept {
    return &module;
}
