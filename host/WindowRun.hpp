#pragma once

#include "host/TerminationSignals.hpp"
#include "platform/SaverModule.hpp"

#include <optional>
#include <string>

namespace host {

/// Shows the saver in a resizable window until it is closed or a termination signal comes: ask `signals`. Returns
/// nothing, or one line that says what went wrong. Needs a `WindowSystem`. Main thread.
std::optional<std::string> runWindow(const platform::SaverModule& module, const TerminationSignals& signals);

}  // namespace host
