#include "platform/ui/CurrentEvent.hpp"

#include <gtest/gtest.h>

#include <QtGui/QKeyEvent>

namespace {

using platform::CurrentEvent;
using platform::currentEventModifierFlags;

QKeyEvent keyWith(Qt::KeyboardModifiers modifiers) {
    return {QEvent::KeyPress, Qt::Key_Return, modifiers};
}

std::uint64_t flagsOf(Qt::KeyboardModifiers modifiers) {
    const CurrentEvent current(keyWith(modifiers));
    return currentEventModifierFlags();
}

TEST(CurrentEvent, HasNoModifiersWhileNoneIsHandled) {
    EXPECT_EQ(currentEventModifierFlags(), 0U);
}

TEST(CurrentEvent, TellsEachModifierByThePlatformsBit) {
    EXPECT_EQ(flagsOf(Qt::NoModifier), 0U);
    EXPECT_EQ(flagsOf(Qt::ShiftModifier), 0x20000U);
    EXPECT_EQ(flagsOf(Qt::ControlModifier), 0x40000U);
    EXPECT_EQ(flagsOf(Qt::AltModifier), 0x80000U);
    EXPECT_EQ(flagsOf(Qt::MetaModifier), 0x100000U);
    EXPECT_EQ(flagsOf(Qt::KeypadModifier), 0x200000U);
}

TEST(CurrentEvent, TellsModifiersHeldTogether) {
    EXPECT_EQ(flagsOf(Qt::ShiftModifier | Qt::AltModifier), 0xA0000U);
    EXPECT_EQ(flagsOf(Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier), 0x1E0000U);
}

TEST(CurrentEvent, LeavesOutWhatThePlatformHasNoBitFor) {
    EXPECT_EQ(flagsOf(Qt::GroupSwitchModifier), 0U);
}

TEST(CurrentEvent, EndsWithItsScope) {
    static_cast<void>(flagsOf(Qt::AltModifier));
    EXPECT_EQ(currentEventModifierFlags(), 0U);
}

TEST(CurrentEvent, TheInnermostCountsAndTheOuterOneReturnsAfterIt) {
    const CurrentEvent outer(keyWith(Qt::AltModifier));
    {
        const CurrentEvent inner(keyWith(Qt::ShiftModifier));
        EXPECT_EQ(currentEventModifierFlags(), platform::eventModifierFlagShift);
    }
    EXPECT_EQ(currentEventModifierFlags(), platform::eventModifierFlagOption);
}

}  // namespace
