#pragma once

#include "host/TerminationSignals.hpp"

namespace host {

/// Handles events until `QApplication::exit` is called or a termination signal comes. Main thread.
void runEventLoop(const TerminationSignals& signals);

}  // namespace host
