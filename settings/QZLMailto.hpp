#pragma once

#include <optional>
#include <string>

/// A text as it may stand in a mailto address: letters and digits as they are, line feeds as "%0D%0A", other printable
/// ASCII percent-encoded, and nothing of other control characters or of what is not ASCII. Only what comes before a
/// zero byte counts; an absent text gives an empty one.
std::string QZLSanitizeMailto(const std::optional<std::string>& string);

/// The address without one leading "http://" or else "https://", in small letters; absent when it is.
std::optional<std::string> QZLRemoveHttpPrefix(std::optional<std::string> address);
