#include "settings/QZLTextTrigger.hpp"

#include "platform/ui/CurrentEvent.hpp"
#include "settings/QZLEventModifiers.hpp"
#include "tests/support/ShownWindow.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>
#include <vector>

namespace {

using testing::ElementsAre;

/// A trigger in a dialog, between other controls.
class QZLTextTriggerTest : public testing::Test {
protected:
    QZLTextTriggerTest() {
        auto* layout = new QVBoxLayout(&dialog);
        for (QWidget* view : std::initializer_list<QWidget*>{before, trigger, button}) {
            layout->addWidget(view);
        }
        trigger->setText("How clouds are made");
        button->setDefault(true);
        QObject::connect(button, &QPushButton::clicked, [this] { ++defaultClicks; });
        QObject::connect(trigger, &QZLTextTrigger::triggered,
                         [this] { clicks.push_back(platform::currentEventModifierFlags()); });
    }

    void SetUp() override {
        ASSERT_TRUE(fake::showActive(dialog));
        before->setFocus();
    }

    QAccessibleInterface& accessible() { return *QAccessible::queryAccessibleInterface(trigger); }

    QDialog dialog;
    QLineEdit* before = new QLineEdit;
    QZLTextTrigger* trigger = new QZLTextTrigger;
    QPushButton* button = new QPushButton("Close");
    /// The modifier keys held with each click.
    std::vector<std::uint64_t> clicks;
    int defaultClicks = 0;
};

TEST_F(QZLTextTriggerTest, ActsWhenTheMouseGoesDown) {
    QTest::mousePress(trigger, Qt::LeftButton);
    EXPECT_THAT(clicks, ElementsAre(0U));
    QTest::mouseRelease(trigger, Qt::LeftButton);
    EXPECT_THAT(clicks, ElementsAre(0U));
}

TEST_F(QZLTextTriggerTest, ActsOnBothPressesOfADoubleClick) {
    QTest::mouseClick(trigger, Qt::LeftButton);
    QTest::mouseDClick(trigger, Qt::LeftButton);
    EXPECT_EQ(clicks.size(), 2U);
}

TEST_F(QZLTextTriggerTest, TellsTheModifiersHeldWithTheClick) {
    QTest::mouseClick(trigger, Qt::LeftButton, Qt::AltModifier);
    QTest::mouseClick(trigger, Qt::LeftButton, Qt::MetaModifier);
    QTest::mouseClick(trigger, Qt::LeftButton, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_THAT(clicks, ElementsAre(0x80000U, 0x100000U, 0xA0000U));
    EXPECT_EQ(platform::currentEventModifierFlags(), 0U) << "afterwards none is held";
}

TEST_F(QZLTextTriggerTest, OtherMouseButtonsDoNothing) {
    QTest::mouseClick(trigger, Qt::RightButton);
    QTest::mouseClick(trigger, Qt::MiddleButton);
    EXPECT_TRUE(clicks.empty());
}

TEST_F(QZLTextTriggerTest, AClickLeavesTheFocusWhereItIs) {
    QTest::mouseClick(trigger, Qt::LeftButton);
    EXPECT_TRUE(before->hasFocus());
}

TEST_F(QZLTextTriggerTest, TheTabKeyBringsTheFocusInBothDirections) {
    QTest::keyClick(before, Qt::Key_Tab);
    EXPECT_TRUE(trigger->hasFocus());
    QTest::keyClick(trigger, Qt::Key_Tab);
    EXPECT_TRUE(button->hasFocus());
    QTest::keyClick(button, Qt::Key_Backtab);
    EXPECT_TRUE(trigger->hasFocus());
}

TEST_F(QZLTextTriggerTest, TheFocusCanBeSeen) {
    const QImage without = fake::pictureOf(dialog).copy(trigger->geometry());
    trigger->setFocus();
    EXPECT_NE(fake::pictureOf(dialog).copy(trigger->geometry()), without);
    before->setFocus();
    EXPECT_EQ(fake::pictureOf(dialog).copy(trigger->geometry()), without);
}

TEST_F(QZLTextTriggerTest, ReturnEnterAndSpaceActAsAClick) {
    trigger->setFocus();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        QTest::keyClick(trigger, key);
    }
    EXPECT_THAT(clicks, ElementsAre(0U, 0U, 0U));
    EXPECT_EQ(defaultClicks, 0) << "the dialog's default button is not meant";
}

TEST_F(QZLTextTriggerTest, KeysWithModifiersActAsAClickWithThem) {
    trigger->setFocus();
    QTest::keyClick(trigger, Qt::Key_Return, Qt::AltModifier);
    QTest::keyClick(trigger, Qt::Key_Return, Qt::MetaModifier);
    QTest::keyClick(trigger, Qt::Key_Space, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_THAT(clicks, ElementsAre(0x80000U, 0x100000U, 0xA0000U));
}

TEST_F(QZLTextTriggerTest, EnterOfTheNumericPadMatchesAsAPlainOne) {
    std::vector<bool> matches;
    QObject::connect(trigger, &QZLTextTrigger::triggered,
                     [&] { matches.push_back(QZLEventModifierFlagsMatch(platform::eventModifierFlagOption)); });
    trigger->setFocus();
    QTest::keyClick(trigger, Qt::Key_Enter, Qt::KeypadModifier | Qt::AltModifier);
    EXPECT_THAT(matches, ElementsAre(true));
}

TEST_F(QZLTextTriggerTest, AKeyThatIsHeldDownActsOnce) {
    trigger->setFocus();
    QTest::keyPress(trigger, Qt::Key_Space);
    for (int i = 0; i < 5; ++i) {
        QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ", true);
        QApplication::sendEvent(trigger, &repeated);
        EXPECT_TRUE(repeated.isAccepted());
    }
    QTest::keyRelease(trigger, Qt::Key_Space);
    EXPECT_EQ(clicks.size(), 1U);
}

TEST_F(QZLTextTriggerTest, OtherKeysAreTheDialogs) {
    trigger->setFocus();
    QTest::keyClick(trigger, Qt::Key_A);
    EXPECT_TRUE(clicks.empty());
    QTest::keyClick(trigger, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(QZLTextTriggerTest, DisabledItDoesNothing) {
    trigger->setEnabled(false);
    QTest::mouseClick(trigger, Qt::LeftButton);
    accessible().actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(clicks.empty());
}

TEST_F(QZLTextTriggerTest, MayBeDestroyedByWhatItTriggers) {
    QObject::connect(trigger, &QZLTextTrigger::triggered, [this] { delete std::exchange(trigger, nullptr); });
    QTest::mousePress(trigger, Qt::LeftButton);
    EXPECT_EQ(trigger, nullptr);
    EXPECT_EQ(clicks.size(), 1U);
    EXPECT_EQ(platform::currentEventModifierFlags(), 0U);
}

TEST_F(QZLTextTriggerTest, ShowsItsTextAsItStands) {
    trigger->setText("<b>x</b>");
    const int literal = trigger->sizeHint().width();
    QLabel plain;
    plain.setTextFormat(Qt::PlainText);
    plain.setText("<b>x</b>");
    EXPECT_EQ(literal, plain.sizeHint().width());
}

TEST_F(QZLTextTriggerTest, AssistiveTechnologiesMeetAButtonOfItsText) {
    EXPECT_EQ(accessible().role(), QAccessible::Button);
    EXPECT_EQ(accessible().text(QAccessible::Name), "How clouds are made");
    EXPECT_TRUE(accessible().state().focusable);
    EXPECT_FALSE(accessible().state().linked);
    trigger->setAccessibleName("Clouds");
    EXPECT_EQ(accessible().text(QAccessible::Name), "Clouds");
}

TEST_F(QZLTextTriggerTest, AssistiveTechnologiesCanPressIt) {
    QAccessibleActionInterface* actions = accessible().actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_THAT(actions->actionNames(), testing::Contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(clicks, ElementsAre(0U));
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(trigger->hasFocus());
}

}  // namespace
