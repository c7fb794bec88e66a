#pragma once

#include <cstdint>

/// A monitor whose power the test decides, in programs that link this: X servers without a real screen know no such
/// thing. What the program asks the server about power management is answered from here.
namespace fake::monitor {

/// One of X11's power levels, XCB_DPMS_DPMS_MODE_ON and so on. With power management disabled servers report a level
/// too, which then means nothing.
void setPower(std::uint16_t level, bool isManaged = true);

}  // namespace fake::monitor
