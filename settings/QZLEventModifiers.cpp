#include "settings/QZLEventModifiers.hpp"

#include "platform/ui/CurrentEvent.hpp"

namespace {

constexpr std::uint64_t comparedFlags = platform::eventModifierFlagShift | platform::eventModifierFlagControl |
                                        platform::eventModifierFlagOption | platform::eventModifierFlagCommand;
static_assert(comparedFlags == 0x1E0000);

}  // namespace

bool QZLEventModifierFlagsContain(std::uint64_t flags) {
    return (platform::currentEventModifierFlags() & flags) != 0;
}

bool QZLEventModifierFlagsMatch(std::uint64_t flags) {
    return (platform::currentEventModifierFlags() & comparedFlags) == flags;
}
