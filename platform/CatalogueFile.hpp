#pragma once

#include <string_view>

namespace platform {

/// True when the bytes are a gettext catalogue in which no number leads a reader out of it and every look-up ends, as
/// "The Format of GNU MO Files" in gettext's manual lays it out. gettext itself trusts what it reads. Any thread.
bool isSoundCatalogue(std::string_view bytes);

}  // namespace platform
