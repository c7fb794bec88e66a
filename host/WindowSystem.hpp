#pragma once

#include <memory>
#include <optional>
#include <string>

class QApplication;

namespace host {

/// The application and its connection to the display. Made before anything that uses either and destroyed after it; one
/// at a time. What the toolkit has to say goes to the system log. Main thread.
class WindowSystem {
public:
    enum class Kind {
        Desktop,    ///< Wayland or X11, whichever the desktop is
        X11Pixels,  ///< X11, with points that are pixels: for windows of others, whose sizes are in pixels
        None,       ///< no display at all
    };

    explicit WindowSystem(Kind kind);
    ~WindowSystem();
    WindowSystem(const WindowSystem&) = delete;
    WindowSystem& operator=(const WindowSystem&) = delete;

    /// Null when all is well, else one line that says why not.
    const std::optional<std::string>& failure() const { return _failure; }

private:
    std::optional<std::string> _failure;
    std::unique_ptr<QApplication> _application;
};

}  // namespace host
