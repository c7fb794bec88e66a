#pragma once

#include <filesystem>

namespace platform {

/// The user's home folder: `$HOME`, else the password database, else "/".
std::filesystem::path homeDirectory();
/// `$XDG_CONFIG_HOME`, or `.config` in the home folder when that is unset or not absolute.
std::filesystem::path configDirectory();
/// `$XDG_CACHE_HOME`, or `.cache` in the home folder when that is unset or not absolute.
std::filesystem::path cacheDirectory();
/// `$XDG_STATE_HOME`, or `.local/state` in the home folder when that is unset or not absolute.
std::filesystem::path stateDirectory();

}  // namespace platform
