#include "platform/ui/PopUpButton.hpp"

#include "tests/support/ShownWindow.hpp"

#include <gtest/gtest.h>

#include <QtTest/QTest>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>
#include <limits>

namespace {

class PopUpButtonTest : public testing::Test {
protected:
    PopUpButtonTest() { button.addItems({"None", "2 s", "5 s", "10 s"}); }

    /// With the pop-up and something else that can have the focus.
    void showWindow() {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&other);
        layout->addWidget(&button);
        ASSERT_TRUE(fake::showActive(window));
        other.setFocus();
    }

    QWidget window;
    QLineEdit& other = *new QLineEdit(&window);
    platform::PopUpButton& button = *new platform::PopUpButton(&window);
};

TEST_F(PopUpButtonTest, GivesBackTheIndexItWasGiven) {
    for (std::int64_t index = 0; index < 4; ++index) {
        button.selectItemAtIndex(index);
        EXPECT_EQ(button.indexOfSelectedItem(), index);
    }
    EXPECT_EQ(button.currentText(), "10 s");
}

TEST_F(PopUpButtonTest, ShowsNothingSelectedForAnIndexOutOfRange) {
    for (const std::int64_t index :
         {std::int64_t{-1}, std::int64_t{4}, std::int64_t{1} << 32, (std::int64_t{1} << 32) + 1,
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        button.selectItemAtIndex(2);
        button.selectItemAtIndex(index);
        EXPECT_EQ(button.indexOfSelectedItem(), -1) << index;
        EXPECT_EQ(button.currentText(), "") << index;
    }
}

TEST_F(PopUpButtonTest, WithoutItemsHasNothingSelected) {
    button.clear();
    button.selectItemAtIndex(0);
    EXPECT_EQ(button.indexOfSelectedItem(), -1);
}

TEST_F(PopUpButtonTest, TheWheelChangesNothingWithoutTheFocusAndDoesNotBringIt) {
    showWindow();
    button.selectItemAtIndex(1);
    fake::turnWheel(button, 1);
    fake::turnWheel(button, -1);
    fake::turnWheel(button, -1);
    EXPECT_EQ(button.indexOfSelectedItem(), 1);
    EXPECT_TRUE(other.hasFocus());
}

TEST_F(PopUpButtonTest, TheWheelChangesItWithTheFocus) {
    showWindow();
    button.selectItemAtIndex(1);
    button.setFocus();
    fake::turnWheel(button, -1);
    EXPECT_EQ(button.indexOfSelectedItem(), 2);
}

TEST_F(PopUpButtonTest, KeysChangeIt) {
    showWindow();
    button.selectItemAtIndex(1);
    button.setFocus();
    QTest::keyClick(&button, Qt::Key_Down);
    EXPECT_EQ(button.indexOfSelectedItem(), 2);
    QTest::keyClick(&button, Qt::Key_Home);
    EXPECT_EQ(button.indexOfSelectedItem(), 0);
}

TEST_F(PopUpButtonTest, TheTabKeyReachesIt) {
    showWindow();
    QTest::keyClick(&other, Qt::Key_Tab);
    EXPECT_TRUE(button.hasFocus());
}

}  // namespace
