#pragma once

#include <cstdint>

class QInputEvent;

namespace platform {

// The bits of modifier keys in event flags; the numbers are the platform's.
inline constexpr std::uint64_t eventModifierFlagShift = 0x20000;
inline constexpr std::uint64_t eventModifierFlagControl = 0x40000;
/// The Alt key.
inline constexpr std::uint64_t eventModifierFlagOption = 0x80000;
/// The Meta key, also called Super.
inline constexpr std::uint64_t eventModifierFlagCommand = 0x100000;
/// The event came from the numeric pad.
inline constexpr std::uint64_t eventModifierFlagNumericPad = 0x200000;

/// Says, for as long as it lives, that this is the input event being handled. Controls make one before they call
/// others. May be nested: the innermost counts. Keeps nothing of the event itself. Main thread.
class CurrentEvent {
public:
    explicit CurrentEvent(const QInputEvent& event);
    ~CurrentEvent();
    CurrentEvent(const CurrentEvent&) = delete;
    CurrentEvent& operator=(const CurrentEvent&) = delete;

private:
    const std::uint64_t _outerFlags;
};

/// The modifier keys held with the input event being handled; 0 when none is. Main thread.
std::uint64_t currentEventModifierFlags();

}  // namespace platform
