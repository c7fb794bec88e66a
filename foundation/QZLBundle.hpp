#pragma once

#include "platform/Bundle.hpp"

#include <memory>
#include <optional>
#include <string>

/// The module's own bundle, never the host's; null when it cannot be found. Looked up anew by every call. Any thread.
std::shared_ptr<const platform::Bundle> QZLSaverBundle();

/// The localized text of a key in the saver's default strings table; the key itself when it is missing.
std::string QZLLocalizedSaverString(const std::string& key);

/// The localized text of a key in the framework's strings table "Vistashade"; the key itself when it is missing.
std::string QZLLocalizedVistashadeString(const std::string& key);

/// A value of the bundle's information property list, or null.
std::optional<std::string> QZLSaverBundleString(const std::string& key);
