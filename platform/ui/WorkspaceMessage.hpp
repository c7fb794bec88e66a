#pragma once

#include <string>

namespace platform {

/// Shows a message over the active window and returns at once; whoever reads it may copy from it. Main thread.
void showWorkspaceMessage(const std::string& message);

}  // namespace platform
