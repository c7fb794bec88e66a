#pragma once

#include <functional>
#include <string>

namespace platform {

/// How long after its start a handler's end still tells whether it could do its work.
inline constexpr double handlerPatienceSeconds = 20.0;

enum class HandlerDoubt {
    Failed,  ///< it ended soon, and not well
    Unknown  ///< this program ends first, too soon after its start to tell
};

/// Starts the desktop's handler of that address, as a process that outlives this one. False when it cannot be started.
/// `doubted` is called once at most: from the event loop, or when the application object goes. The handler's later end
/// means nothing. Main thread, with the application object made.
bool startAddressHandler(const std::string& address, std::function<void(HandlerDoubt)> doubted);

}  // namespace platform
