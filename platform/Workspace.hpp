#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace platform {

/// Longer addresses, in bytes, are not handed to a program: one argument has little more room.
inline constexpr std::size_t longestOpenedAddress = 100'000;

/// Opens an address with the desktop's handler for its kind, which gets it byte for byte. Nothing, and what is no
/// address, opens nothing. Returns at once. What cannot be handed over is kept: a mail's text on the clipboard and in
/// a new file in `stateDirectory()/cirrane` that only the user can read, another address on the clipboard; a message
/// says so. Where this program ends before that is known, a mail's file is written all the same. Main thread, with the
/// application object made.
void openURL(const std::optional<std::string>& address);

/// Takes the messages instead of a message box; an empty one gives them back to it. For tests.
void setWorkspaceMessageSink(std::function<void(const std::string& message)> sink);

/// The text of a key in the user's language, or the English when there is no other.
using WorkspaceTexts = std::function<std::string(const std::string& key, const std::string& english)>;

/// Where the messages' texts come from; an empty one stands for English. Main thread.
void setWorkspaceTexts(WorkspaceTexts texts);

}  // namespace platform
