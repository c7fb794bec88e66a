#pragma once

struct wl_compositor;
struct wl_display;
struct wl_subcompositor;
struct wp_viewporter;

namespace platform {

/// What the compositor offers for surfaces of our own inside the application's windows. One per application, which it
/// ends before; its objects' events come with the application's own. Main thread.
class WaylandConnection {
public:
    /// Null where the application is not on Wayland, and, with the reason in the system log, where the compositor lacks
    /// something. The first call asks the compositor and waits for the answer, as the application does when it starts.
    static const WaylandConnection* ofApplication();

    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;
    ~WaylandConnection();

    wl_display* display() const { return _display; }
    wl_compositor* compositor() const { return _compositor; }
    wl_subcompositor* subcompositor() const { return _subcompositor; }
    wp_viewporter* viewporter() const { return _viewporter; }

private:
    explicit WaylandConnection(wl_display* display);
    void bindAll();
    bool isComplete() const;

    wl_display* _display;
    wl_compositor* _compositor = nullptr;
    wl_subcompositor* _subcompositor = nullptr;
    wp_viewporter* _viewporter = nullptr;
};

}  // namespace platform
