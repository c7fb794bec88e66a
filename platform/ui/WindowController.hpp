#pragma once

class QWidget;

namespace platform {

/// Owns a window and what it edits. Main thread.
class WindowController {
public:
    WindowController(const WindowController&) = delete;
    WindowController& operator=(const WindowController&) = delete;
    virtual ~WindowController() = default;

    /// Made on first use, and kept.
    virtual QWidget* window() = 0;

protected:
    WindowController() = default;
};

}  // namespace platform
