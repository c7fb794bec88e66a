// The bundle's entry point, the only name that can be seen from outside.
#include "platform/NotificationCenter.hpp"
#include "platform/SaverModule.hpp"
#include "platform/SystemLog.hpp"
#include "saver/QZLCirraneSession.hpp"
#include "settings/QZLDefaultsManager.hpp"

#include <exception>

namespace {

std::unique_ptr<platform::SaverSession> createSession(std::shared_ptr<platform::HostView> view, bool isPreview,
                                                      std::int64_t screenIndex) noexcept {
    try {
        return std::make_unique<QZLCirraneSession>(std::move(view), isPreview, screenIndex);
    } catch (const std::exception& exception) {
        platform::systemLog(exception.what());
        return nullptr;
    }
}

void settingsChanged() noexcept {
    try {
        QZLDefaultsManager::sharedInstance().synchronize();  // takes in what was written from outside
        platform::NotificationCenter::defaultCenter().post(QZLCirraneSettingsChangedNotification);
    } catch (const std::exception& exception) {
        platform::systemLog(exception.what());
    }
}

constexpr platform::SaverModule module{platform::SaverModule::currentVersion, createSession, settingsChanged};

}  // namespace

extern "C" __attribute__((visibility("default"))) const platform::SaverModule* cirraneSaverModule() noexcept {
    return &module;
}
