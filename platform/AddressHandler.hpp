#pragma once

#include <functional>
#include <string>

namespace platform {

/// How long after its start a handler's end still tells whether it could do its work.
inline constexpr double handlerPatienceSeconds = 20.0;

/// Starts the desktop's handler of that address, as a process that outlives this one. False when it cannot be started.
/// `failed` is called from the event loop, once at most, when it ends soon and not well; its later end means nothing.
/// Main thread, with the application object made.
bool startAddressHandler(const std::string& address, std::function<void()> failed);

}  // namespace platform
