#pragma once

#include "platform/Geometry.hpp"

#include <cstdint>
#include <memory>

namespace platform {

class ScreenSaverView;

/// What a module offers its host. Returned by the entry point that the bundle's Info.json names.
struct SaverModule {
    static constexpr std::uint32_t currentVersion = 2;

    std::uint32_t version = currentVersion;
    /// A view of that place in its window, or null. The caller owns it. Never throws. Main thread, with the application
    /// object made.
    ScreenSaverView* (*createView)(const Rect& frame, bool isPreview) noexcept = nullptr;
    /// Tells every view that the stored settings were changed from outside.
    void (*settingsChanged)() noexcept = nullptr;
};

using SaverModuleEntryPoint = const SaverModule* (*)() noexcept;

}  // namespace platform
