#pragma once

#include "host/CommandLine.hpp"
#include "host/TerminationSignals.hpp"
#include "platform/SaverModule.hpp"

#include <optional>
#include <string>

namespace host {

/// Puts in force what a headless run must take from its command line: settings kept in memory, and the clock's time.
/// Before the module is loaded.
void prepareHeadlessEnvironment(const HeadlessOptions& options);

/// Draws the frames, writes what was asked for, and returns nothing; or one line that says what went wrong. When a
/// termination signal comes it stops the saver and returns early: ask `signals`. Main thread.
std::optional<std::string> runHeadless(const HeadlessOptions& options, const platform::SaverModule& module,
                                       const TerminationSignals& signals);

}  // namespace host
