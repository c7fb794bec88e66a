#pragma once

#include <string>
#include <string_view>

namespace platform {

// Addresses as texts. Any thread.

/// True for a scheme, a colon and something behind it, all of it characters that may stand in an address.
bool isAddress(std::string_view text);

/// True for an address of the kind that mails are written to.
bool isMailAddress(std::string_view address);

/// What the mail of such an address says, as a person can read it: a line for each recipient and header, an empty line,
/// the body.
std::string mailText(std::string_view address);

}  // namespace platform
