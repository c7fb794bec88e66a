// Starts a saver without a display, on the Vulkan of this machine: start_probe BUNDLE
// Prints "CODE:SUB-CODE TEXT" of the error that kept it from starting, or "started".
#include "host/HeadlessView.hpp"
#include "host/ModuleLoader.hpp"
#include "platform/PreferencesStore.hpp"
#include "platform/gpu/Backend.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "platform/ui/ScreenSaverView.hpp"

#include <QtWidgets/QApplication>
#include <iostream>
#include <memory>
#include <variant>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argumentCount, arguments);
    gpu::setBackend(gpu::vulkan::makeVulkanBackend({}));
    platform::setPreferencesStore(platform::makeMemoryPreferencesStore());
    const auto loaded = host::loadSaverModule(arguments[1]);
    const auto* const module = std::get_if<const platform::SaverModule*>(&loaded);
    if (module == nullptr) {
        std::cerr << std::get<std::string>(loaded) << '\n';
        return 2;
    }
    const std::unique_ptr<platform::ScreenSaverView> view((*module)->createView({0, 0, 64, 64}, false));
    view->setHostView(std::make_shared<host::HeadlessView>(gpu::Extent{64, 64}, host::HeadlessView::Display{},
                                                           std::make_shared<host::FrameRecorder>(1)));
    view->startAnimation();
    const auto error = view->shownError();
    view->stopAnimation();
    if (error) {
        std::cout << error->code() << ':' << error->userInfoText("QZLErrorSubCodeKey").value_or("none") << ' '
                  << error->localizedDescription() << '\n';
    } else {
        std::cout << "started\n";
    }
    return 0;
}
