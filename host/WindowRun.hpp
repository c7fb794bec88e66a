#pragma once

#include "host/SaverWindow.hpp"
#include "host/TerminationSignals.hpp"

#include <optional>
#include <string>

namespace host {

// The ways to show the saver. Each returns when the program shall end, be it by its own means or by a termination
// signal: ask `signals`. They need a `WindowSystem`. Main thread.

/// In a resizable window, until it is closed.
void runWindow(const Showing& showing, const TerminationSignals& signals);

/// Over every screen, those that come later included, until somebody touches the machine.
void runFullscreen(const Showing& showing, const TerminationSignals& signals);

/// In another program's X11 window, until that is destroyed. One line when there is no such window.
std::optional<std::string> runInForeignWindow(const Showing& showing, std::uint32_t window,
                                              const TerminationSignals& signals);

/// In a window for the saver's settings, until it is closed; or in none, when another process of this user shows it on
/// this display already. `line` says what else the saver was asked to do.
void runConfigure(const CommandLine& line, const Showing& showing, const TerminationSignals& signals);

}  // namespace host
