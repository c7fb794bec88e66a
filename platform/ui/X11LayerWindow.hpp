#pragma once

#include "platform/gpu/Layer.hpp"

#include <cstdint>

namespace platform {

/// A place inside a window, in device pixels with the origin at the top left.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 1;
    int height = 1;
    bool operator==(const PixelRect&) const = default;
};

/// The X11 window that a layer's frames are shown in: a child of a top-level window that asks for no events, so that
/// all input reaches the parent. It is mapped when the first frame is there. Main thread; the connection (an
/// `xcb_connection_t*`) must outlive it, and no layer may present to it any more when it is destroyed.
class X11LayerWindow {
public:
    X11LayerWindow(void* connection, std::uint32_t parent, const PixelRect& place);
    ~X11LayerWindow();
    X11LayerWindow(const X11LayerWindow&) = delete;
    X11LayerWindow& operator=(const X11LayerWindow&) = delete;

    void setPlace(const PixelRect& place);
    gpu::PresentationTarget presentationTarget() const;

private:
    void* _connection;
    std::uint32_t _window;
    PixelRect _place;
};

}  // namespace platform
