// The bundle's entry point, the only name that can be seen from outside.
#include "platform/NotificationCenter.hpp"
#include "platform/SaverModule.hpp"
#include "platform/SystemLog.hpp"
#include "saver/QZLCirraneView.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "settings/QZLNotifications.hpp"

#include <exception>

namespace {

platform::ScreenSaverView* createView(const platform::Rect& frame, bool isPreview) noexcept {
    try {
        return new QZLCirraneView(frame, isPreview);
    } catch (const std::exception& exception) {
        platform::systemLog(exception.what());
        return nullptr;
    }
}

void settingsChanged() noexcept {
    try {
        QZLDefaultsManager::sharedInstance().synchronize();  // takes in what was written from outside
        platform::NotificationCenter::defaultCenter().post(QZLConfigurationStoredNotification);
    } catch (const std::exception& exception) {
        platform::systemLog(exception.what());
    }
}

constexpr platform::SaverModule module{platform::SaverModule::currentVersion, createView, settingsChanged};

}  // namespace

extern "C" __attribute__((visibility("default"))) const platform::SaverModule* cirraneSaverModule() noexcept {
    return &module;
}
