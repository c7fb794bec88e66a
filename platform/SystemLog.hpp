#pragma once

#include <functional>
#include <string_view>

namespace platform {

/// Writes one line to the system log, and to standard error when that is a terminal. Any thread. Never fails visibly.
void systemLog(std::string_view message);

/// Takes the lines instead of the system log; an empty one gives them back to it. For tests.
void setSystemLogSink(std::function<void(std::string_view)> sink);

}  // namespace platform
