#pragma once

#include "platform/HostView.hpp"
#include "platform/gpu/Layer.hpp"
#include "tests/support/ManualDisplayLink.hpp"

#include <memory>
#include <optional>

namespace fake {

/// A view without a window system. Its display link is driven by hand through `displayLink`.
class HostView final : public platform::HostView {
public:
    platform::Rect viewBounds{0, 0, 640, 480};
    double backingScale = 1.0;
    std::optional<std::uint32_t> screen = 1;
    std::shared_ptr<DisplayLinkControl> displayLink = std::make_shared<DisplayLinkControl>();
    std::shared_ptr<gpu::Layer> layer;
    bool wantsLayer = false;

    platform::Rect bounds() const override { return viewBounds; }
    platform::Rect convertRectToBacking(const platform::Rect& rect) const override {
        return {rect.x * backingScale, rect.y * backingScale, rect.width * backingScale, rect.height * backingScale};
    }
    std::optional<std::uint32_t> screenNumber() const override { return screen; }
    int createDisplayLink(std::uint32_t display, std::unique_ptr<platform::DisplayLink>& link) override {
        return createManualDisplayLink(displayLink, display, link);
    }
    void setLayer(std::shared_ptr<gpu::Layer> newLayer) override { layer = std::move(newLayer); }
    void setWantsLayer(bool wants) override { wantsLayer = wants; }
};

}  // namespace fake
