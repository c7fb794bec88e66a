#include "platform/ui/CurrentEvent.hpp"

#include <QtGui/QInputEvent>
#include <array>
#include <utility>

namespace platform {
namespace {

constexpr std::array<std::pair<Qt::KeyboardModifier, std::uint64_t>, 5> modifierFlags{{
    {Qt::ShiftModifier, eventModifierFlagShift},
    {Qt::ControlModifier, eventModifierFlagControl},
    {Qt::AltModifier, eventModifierFlagOption},
    {Qt::MetaModifier, eventModifierFlagCommand},
    {Qt::KeypadModifier, eventModifierFlagNumericPad},
}};

/// Of the event being handled. Main thread.
constinit std::uint64_t currentFlags = 0;

std::uint64_t flagsOf(Qt::KeyboardModifiers modifiers) {
    std::uint64_t flags = 0;
    for (const auto& [modifier, flag] : modifierFlags) {
        flags |= modifiers.testFlag(modifier) ? flag : 0;
    }
    return flags;
}

}  // namespace

CurrentEvent::CurrentEvent(const QInputEvent& event)
    : _outerFlags(std::exchange(currentFlags, flagsOf(event.modifiers()))) {}

CurrentEvent::~CurrentEvent() {
    currentFlags = _outerFlags;
}

std::uint64_t currentEventModifierFlags() {
    return currentFlags;
}

}  // namespace platform
