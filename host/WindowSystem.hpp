#pragma once

#include <memory>
#include <optional>
#include <string>

class QApplication;

namespace host {

/// The connection to the display. Made before anything that uses the display and destroyed after it. Main thread.
class WindowSystem {
public:
    WindowSystem();
    ~WindowSystem();
    WindowSystem(const WindowSystem&) = delete;
    WindowSystem& operator=(const WindowSystem&) = delete;

    /// Null when windows can be shown, else one line that says why not.
    const std::optional<std::string>& failure() const { return _failure; }

private:
    std::optional<std::string> _failure;
    std::unique_ptr<QApplication> _application;
};

}  // namespace host
