#pragma once

#include "platform/DisplayLink.hpp"

#include <functional>
#include <memory>
#include <string>

namespace fake {

/// The wires to a display link that a test pulls by hand. Shared with the link, so that it outlives it.
struct DisplayLinkControl {
    platform::RefreshPeriod period{1, 60};
    int createResult = platform::displayLinkSuccess;
    int setOutputCallbackResult = platform::displayLinkSuccess;
    int stopResult = platform::displayLinkSuccess;
    bool exists = false;
    bool running = false;
    int starts = 0;
    int stops = 0;
    std::uint32_t display = 0;
    platform::DisplayLink::OutputCallback callback = nullptr;
    void* context = nullptr;
    platform::DisplayLink* link = nullptr;
    /// Called with "createDisplayLink", "startDisplayLink", "stopDisplayLink", "releaseDisplayLink".
    std::function<void(const std::string&)> record;

    /// One display refresh on the calling thread, if the link is running. Returns the callback's result.
    int fire();
};

/// What `HostView::createDisplayLink` of a fake view calls.
int createManualDisplayLink(const std::shared_ptr<DisplayLinkControl>& control, std::uint32_t display,
                            std::unique_ptr<platform::DisplayLink>& link);

}  // namespace fake
