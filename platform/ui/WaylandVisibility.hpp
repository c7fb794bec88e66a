#pragma once

#include "platform/gpu/Layer.hpp"
#include "platform/ui/FrameAnswers.hpp"

#include <QtCore/QTimer>
#include <functional>
#include <memory>

struct wl_callback;

namespace platform {

/// Watches whether a Wayland surface can be seen. Compositors do not say so, but they answer a question about when to
/// draw the next frame only while the surface is on show. Main thread.
class WaylandVisibility {
public:
    WaylandVisibility(std::shared_ptr<gpu::WaylandSurface> surface, std::function<void(bool isVisible)> handler);
    ~WaylandVisibility();
    WaylandVisibility(const WaylandVisibility&) = delete;
    WaylandVisibility& operator=(const WaylandVisibility&) = delete;

private:
    static void answer(void* self, wl_callback* callback, std::uint32_t time);
    void look();
    void ask();
    void tell(bool isVisible);

    std::shared_ptr<gpu::WaylandSurface> _surface;
    std::function<void(bool)> _handler;
    wl_callback* _question = nullptr;
    FrameAnswers _answers;
    bool _isVisible = true;
    QTimer _timer;
};

}  // namespace platform
