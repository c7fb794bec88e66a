// The keyboard while the sheet's contents come and go, and the sheet that is opened again.
#include "tests/saver/SheetTest.hpp"

namespace {

class QZLCirraneSheetKeys : public SheetTest {
protected:
    /// As the window system sends it: to whatever has the focus in the window, and to the window if nothing has.
    void press(Qt::Key key) { QTest::keyClick(window().windowHandle(), key); }
};

TEST_F(QZLCirraneSheetKeys, DoNothingToWhatTheDedicationHides) {
    defaults().setColors(0.9F);
    defaults().saveError(200, 0, "journal");
    open();
    store->clearCalls();
    QWidget& trigger = view<QWidget>("_appVersionCopyright");
    trigger.setFocus();
    click(trigger, Qt::AltModifier);
    timers.tick(60);
    for (int second = 2; second < 22; ++second) {
        press(Qt::Key_Space);
        press(Qt::Key_Tab);
        press(Qt::Key_Down);
        timers.tick(30);
    }
    EXPECT_EQ(store->calls(), std::vector<std::string>());
    EXPECT_EQ(defaults().colors(), 0.9F);
    timers.tick(120);
    ASSERT_TRUE(areShown(300, 304));
    EXPECT_EQ(window().focusWidget(), &trigger);
}

TEST_F(QZLCirraneSheetKeys, EscapeAndEnterCloseItDuringTheDedicationToo) {
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        open();
        click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
        timers.tick(120);
        ASSERT_TRUE(areHidden(300, 304));
        press(key);
        EXPECT_FALSE(window().isVisible());
        EXPECT_TRUE(areShown(300, 304));
    }
}

TEST_F(QZLCirraneSheetKeys, TheFocusComesBackWithTheSettings) {
    open();
    slider("_speed").setFocus();
    click(view<QLabel>("heading"), Qt::MetaModifier);
    timers.tick(28);
    EXPECT_EQ(window().focusWidget(), nullptr);
    click(view<QLabel>("extraBack"));
    timers.tick(28);
    EXPECT_EQ(window().focusWidget(), &slider("_speed"));
}

TEST_F(QZLCirraneSheetKeys, TheSameSheetOpenedAgainShowsWhatIsStoredByThen) {
    open();
    click(button("close"));
    defaults().setColors(0.125F);
    defaults().saveError(200, 0, "journal");
    ASSERT_TRUE(fake::showActive(window()));
    EXPECT_EQ(slider("_colors").floatValue(), 0.125F);
    EXPECT_FALSE(button("_errorReport").isHidden());
    click(button("close"));
    EXPECT_EQ(defaults().colors(), 0.125F);
}

TEST_F(QZLCirraneSheetKeys, AnimationsOfASheetThatWasNeverOpenedAreNone) {
    controller = std::make_unique<QZLCirraneController>();
    controller->startDedicationEasterEgg();
    controller->startShowExtraEasterEgg();
    controller->startHideExtraEasterEgg();
    controller->closeSheet();
    EXPECT_EQ(timers.runningTimers(), 0U);
}

TEST_F(QZLCirraneSheetKeys, ALinkWithoutATextIsNoStopForThem) {
    open();
    EXPECT_EQ(view<QLabel>("_website").focusPolicy(), Qt::TabFocus);
    QLabel& link = view<QLabel>("_website");
    link.setText({});
    QMetaObject::invokeMethod(&link, "awakeFromNib");
    EXPECT_EQ(link.focusPolicy(), Qt::NoFocus);
}

}  // namespace
