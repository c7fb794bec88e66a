#pragma once

#include "platform/gpu/Resources.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <variant>
#include <vector>

namespace gpu {

class Layer;

/// One image of a layer, on its way from `nextDrawable` to the screen. The image is the layer's again when the last
/// reference to the drawable is gone and the layer no longer shows it.
class Drawable {
public:
    Drawable(const Drawable&) = delete;
    Drawable& operator=(const Drawable&) = delete;
    virtual ~Drawable() = default;

    const std::shared_ptr<Texture>& texture() const { return _texture; }
    /// Counts the drawables of a layer from 0.
    std::uint64_t identifier() const { return _identifier; }
    /// Null once the layer has gone.
    std::shared_ptr<Layer> layer() const { return _layer.lock(); }

protected:
    Drawable() = default;
    void assign(std::weak_ptr<Layer> layer, std::shared_ptr<Texture> texture, std::uint64_t identifier);

private:
    std::weak_ptr<Layer> _layer;
    std::shared_ptr<Texture> _texture;
    std::uint64_t _identifier = 0;
};

/// Sees every frame of a layer pass by. Called on the thread where the event happens: taken and committed on the
/// drawing thread, scheduled and completed on the queue's completion thread. Must be quick and must not call back into
/// the layer. `frameCompleted` comes before the completed handlers, so the drawable's texture may be read back in it.
class FrameObserver {
public:
    virtual ~FrameObserver() = default;
    virtual void drawableTaken(const Drawable& drawable) = 0;
    virtual void frameCommitted(const Drawable& drawable) = 0;
    virtual void frameScheduled(const Drawable& drawable) = 0;
    virtual void frameCompleted(const Drawable& drawable, bool succeeded) = 0;
};

/// An X11 window to show frames in. The connection is an `xcb_connection_t*` that outlives the layer's use of it.
struct XcbWindow {
    void* connection = nullptr;
    std::uint32_t window = 0;
};

/// A Wayland surface to show frames in, and what its owner and the presenter tell one another about it, as the window
/// system tells neither. Any thread. Held by both: it ends the surface when the last of them lets go, because a
/// presenter that hangs is left behind with it.
class WaylandSurface {
public:
    WaylandSurface(const WaylandSurface&) = delete;
    WaylandSurface& operator=(const WaylandSurface&) = delete;
    virtual ~WaylandSurface() = default;

    /// A `wl_display*`, which outlives every use of it.
    virtual void* display() const = 0;
    /// A `wl_surface*`.
    virtual void* surface() const = 0;

    /// In pixels; what pictures are stretched to.
    Extent size() const { return {_size.load() >> sizeBits, _size.load() & lowerSize}; }
    void setSize(Extent size) { _size.store(std::uint64_t{size.width} << sizeBits | (size.height & lowerSize)); }

    /// Counts the frames that were handed to the surface.
    std::uint64_t framesShown() const { return _framesShown; }
    void countShownFrame() { ++_framesShown; }

protected:
    WaylandSurface() = default;

private:
    static constexpr int sizeBits = 32;
    static constexpr std::uint64_t lowerSize = 0xFFFFFFFF;

    std::atomic<std::uint64_t> _size{0};
    std::atomic<std::uint64_t> _framesShown{0};
};

struct WaylandWindow {
    std::shared_ptr<WaylandSurface> surface;
};

/// What frames are shown in; `std::monostate` is nothing.
using PresentationWindow = std::variant<std::monostate, XcbWindow, WaylandWindow>;

/// Where finished frames are shown.
struct PresentationTarget {
    PresentationWindow window;
    /// Called on the presenter thread just before the first frame is shown, to map the window. May be empty.
    std::function<void()> willPresentFirstFrame;
};

/// A picture that lies over the frames of a layer in its window, and in no drawable. Immutable once handed over.
struct Overlay {
    /// Its top left in pixels of the window, from the window's top left. May lie outside.
    int x = 0;
    int y = 0;
    Extent size;
    /// size.width * size.height * 4 bytes, row 0 first: blue, green, red, alpha, the colours multiplied by alpha.
    std::vector<std::byte> pixels;
    bool operator==(const Overlay&) const = default;
};

/// A drawing surface: a small ring of images that frames are drawn into, and the window that shows them.
/// Set up on the main thread before drawing; `nextDrawable` belongs to the drawing thread. The target and the drawable
/// size may change at any time; images of the old size live on until their frames are done.
class Layer : public std::enable_shared_from_this<Layer> {
public:
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;
    virtual ~Layer() = default;

    std::shared_ptr<Device> device() const;
    void setDevice(std::shared_ptr<Device> device);
    PixelFormat pixelFormat() const;
    void setPixelFormat(PixelFormat format);
    bool framebufferOnly() const;
    void setFramebufferOnly(bool framebufferOnly);
    ClearColor backgroundColor() const;
    void setBackgroundColor(ClearColor color);
    /// In pixels. Width and height below 1 yield no drawable.
    Extent drawableSize() const;
    void setDrawableSize(Extent size);

    /// The next image to draw into, or null when there is no device, no size or no memory. Where frames are drawn
    /// faster than the window can show them it waits for room, for a second at most; not once frames are held back.
    std::shared_ptr<Drawable> nextDrawable();

    /// Shows finished frames in this window from now on. Returns when the former window is no longer used, so that the
    /// caller may destroy it. Letting go of the layer is no substitute: a frame in flight may hold it a while longer.
    void setPresentationTarget(PresentationTarget target);

    /// False holds back every frame that is finished from now on, and the window keeps the picture that it has. Then no
    /// frame is on its way to the window any more when this returns, unless the window is stuck. True at first.
    void setShowsFrames(bool showsFrames);

    /// Lies over every frame that is shown from now on, at its own size however frames are stretched; null for nothing.
    /// One whose pixels do not fill its size counts as null. The frame that is on show keeps what it was shown with.
    void setOverlay(std::shared_ptr<const Overlay> overlay);

    /// Null takes the observer away; once this returns no call of the former one is running.
    void setFrameObserver(std::shared_ptr<FrameObserver> observer);

    /// Copies a drawable's pixels: width * height * 4 bytes in the layer's byte order, row 0 first. Blocks until the
    /// GPU has copied. Works also when `framebufferOnly` is set; empty on failure.
    std::vector<std::byte> readPixels(const Drawable& drawable);

protected:
    Layer() = default;

    struct Configuration {
        std::shared_ptr<Device> device;
        PixelFormat pixelFormat = PixelFormat::BGRA8Unorm;
        bool framebufferOnly = true;
        ClearColor backgroundColor;
        Extent drawableSize;
    };
    Configuration configuration() const;

private:
    friend class CommandBuffer;
    void notify(void (FrameObserver::*event)(const Drawable&), const Drawable& drawable);
    void notifyCompleted(const Drawable& drawable, bool succeeded);

    virtual std::shared_ptr<Drawable> makeDrawable(const Configuration& configuration) = 0;
    virtual void presentFinished(std::shared_ptr<Drawable> drawable) = 0;
    virtual void changePresentationTarget(PresentationTarget target) = 0;
    virtual void changeShowsFrames(bool showsFrames) = 0;
    virtual void changeOverlay(std::shared_ptr<const Overlay> overlay) = 0;
    virtual std::vector<std::byte> copyPixels(const Drawable& drawable) = 0;

    mutable std::mutex _mutex;
    Configuration _configuration;
    std::recursive_mutex _observerMutex;
    std::shared_ptr<FrameObserver> _observer;
};

}  // namespace gpu
