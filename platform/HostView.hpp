#pragma once

#include "platform/DisplayLink.hpp"
#include "platform/Geometry.hpp"

#include <cstdint>
#include <memory>
#include <optional>

namespace gpu {
class Layer;
}

namespace platform {

/// What a renderer needs of the view it draws in. Main thread only. Renderers hold it weakly.
class HostView {
public:
    HostView(const HostView&) = delete;
    HostView& operator=(const HostView&) = delete;
    virtual ~HostView() = default;

    /// In points.
    virtual Rect bounds() const = 0;
    /// From points to device pixels.
    virtual Rect convertRectToBacking(const Rect& rect) const = 0;
    /// The number of the screen that the view's window is on; nothing when the view is in no window.
    virtual std::optional<std::uint32_t> screenNumber() const = 0;

    /// A stopped link for that display in `link`, and `displayLinkSuccess`; or another result and a null link.
    virtual int createDisplayLink(std::uint32_t displayIdentifier, std::unique_ptr<DisplayLink>& link) = 0;

    /// From now on the layer's frames are what the view shows. The view keeps the layer alive.
    virtual void setLayer(std::shared_ptr<gpu::Layer> layer) = 0;
    virtual void setWantsLayer(bool wantsLayer) = 0;

protected:
    HostView() = default;
};

}  // namespace platform
