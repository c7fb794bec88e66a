#pragma once

#include <string>

class QWidget;

namespace platform {

/// Shows a message over a window, or over the active one where it is null, and returns at once; whoever reads it may
/// copy from it. It goes with that window. Main thread.
void showMessage(const std::string& message, QWidget* over = nullptr);

}  // namespace platform
