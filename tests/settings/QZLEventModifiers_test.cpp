#include "settings/QZLEventModifiers.hpp"

#include "platform/ui/CurrentEvent.hpp"

#include <gtest/gtest.h>

#include <QtGui/QKeyEvent>

namespace {

using platform::eventModifierFlagCommand;
using platform::eventModifierFlagControl;
using platform::eventModifierFlagOption;
using platform::eventModifierFlagShift;

/// Handles an event with these modifiers held.
class WithHeld {
public:
    explicit WithHeld(Qt::KeyboardModifiers modifiers)
        : _event(QEvent::KeyPress, Qt::Key_Return, modifiers), _current(_event) {}

private:
    const QKeyEvent _event;
    const platform::CurrentEvent _current;
};

TEST(QZLEventModifierFlags, WithOneKeyHeldExactlyThatOneMatches) {
    const WithHeld held(Qt::AltModifier);
    EXPECT_TRUE(QZLEventModifierFlagsMatch(eventModifierFlagOption));
    EXPECT_FALSE(QZLEventModifierFlagsMatch(eventModifierFlagCommand));
    EXPECT_FALSE(QZLEventModifierFlagsMatch(eventModifierFlagOption | eventModifierFlagShift));
    EXPECT_FALSE(QZLEventModifierFlagsMatch(0));
}

TEST(QZLEventModifierFlags, WithAnotherHeldBesidesItIsContainedButDoesNotMatch) {
    const WithHeld held(Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_FALSE(QZLEventModifierFlagsMatch(eventModifierFlagOption));
    EXPECT_TRUE(QZLEventModifierFlagsContain(eventModifierFlagOption));
    EXPECT_TRUE(QZLEventModifierFlagsMatch(eventModifierFlagOption | eventModifierFlagShift));
}

TEST(QZLEventModifierFlags, AnyOneOfSeveralIsContained) {
    const WithHeld held(Qt::ControlModifier);
    EXPECT_TRUE(QZLEventModifierFlagsContain(eventModifierFlagControl | eventModifierFlagCommand));
    EXPECT_FALSE(QZLEventModifierFlagsContain(eventModifierFlagOption | eventModifierFlagCommand));
    EXPECT_FALSE(QZLEventModifierFlagsContain(0));
}

TEST(QZLEventModifierFlags, EachOfTheFourIsCompared) {
    for (const auto modifier : {Qt::ShiftModifier, Qt::ControlModifier, Qt::MetaModifier}) {
        const WithHeld held(Qt::AltModifier | modifier);
        EXPECT_FALSE(QZLEventModifierFlagsMatch(eventModifierFlagOption)) << modifier;
    }
}

TEST(QZLEventModifierFlags, OtherFlagsHeldAlongsideLeaveTheMatch) {
    const WithHeld held(Qt::AltModifier | Qt::KeypadModifier | Qt::GroupSwitchModifier);
    EXPECT_NE(platform::currentEventModifierFlags(), eventModifierFlagOption);
    EXPECT_TRUE(QZLEventModifierFlagsMatch(eventModifierFlagOption));
}

TEST(QZLEventModifierFlags, AFlagThatIsNotComparedNeverMatches) {
    const WithHeld held(Qt::AltModifier | Qt::KeypadModifier);
    EXPECT_FALSE(QZLEventModifierFlagsMatch(eventModifierFlagOption | platform::eventModifierFlagNumericPad));
    EXPECT_TRUE(QZLEventModifierFlagsContain(platform::eventModifierFlagNumericPad));
}

TEST(QZLEventModifierFlags, WithoutAnEventNoneIsHeld) {
    EXPECT_TRUE(QZLEventModifierFlagsMatch(0));
    EXPECT_FALSE(QZLEventModifierFlagsMatch(eventModifierFlagOption));
    EXPECT_FALSE(QZLEventModifierFlagsContain(~std::uint64_t{0}));
}

}  // namespace
