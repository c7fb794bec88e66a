#pragma once

#include <cstdint>

// Which modifier keys are held with the input event being handled; `platform/ui/CurrentEvent.hpp` has the flags.
// Without an event none is. Main thread.

/// True when any of these is held.
bool QZLEventModifierFlagsContain(std::uint64_t flags);

/// True when of Shift, Control, Option and Command exactly these are held; other keys do not count.
bool QZLEventModifierFlagsMatch(std::uint64_t flags);
