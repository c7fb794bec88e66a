#include "platform/ui/WaylandVisibility.hpp"

#include <wayland-client.h>

#include <utility>

namespace platform {

WaylandVisibility::WaylandVisibility(std::shared_ptr<gpu::WaylandSurface> surface,
                                     std::function<void(bool isVisible)> handler)
    : _surface(std::move(surface)), _handler(std::move(handler)) {
    constexpr std::chrono::milliseconds interval{250};
    QObject::connect(&_timer, &QTimer::timeout, &_timer, [this] { look(); });
    _timer.start(interval);
    ask();
}

WaylandVisibility::~WaylandVisibility() {
    if (_question != nullptr) {
        wl_callback_destroy(_question);
    }
}

void WaylandVisibility::look() {
    if (!_answers.isWaiting()) {
        ask();
    } else if (_answers.isOverdue(_surface->framesShown(), std::chrono::steady_clock::now())) {
        tell(false);
    }
}

/// The presenter's next commit takes the question along.
void WaylandVisibility::ask() {
    static constexpr wl_callback_listener listener{.done = &WaylandVisibility::answer};
    _answers.asked(_surface->framesShown());
    _question = wl_surface_frame(static_cast<wl_surface*>(_surface->surface()));
    wl_callback_add_listener(_question, &listener, this);
}

void WaylandVisibility::answer(void* self, wl_callback* callback, std::uint32_t) {
    auto& watch = *static_cast<WaylandVisibility*>(self);
    wl_callback_destroy(callback);
    watch._question = nullptr;
    watch._answers.answered();
    watch.tell(true);
}

void WaylandVisibility::tell(bool isVisible) {
    if (std::exchange(_isVisible, isVisible) != isVisible) {
        _handler(isVisible);
    }
}

}  // namespace platform
