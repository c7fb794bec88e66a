// What happens when the sheet is closed, and in which order.
#include "platform/NotificationCenter.hpp"
#include "settings/QZLNotifications.hpp"
#include "tests/saver/SheetTest.hpp"

#include <functional>

namespace {

class QZLCirraneSheetClosing : public SheetTest {
protected:
    QZLCirraneSheetClosing() {
        platform::NotificationCenter::defaultCenter().addObserver(QZLConfigurationStoredNotification, _token,
                                                                  [this](std::string_view) {
                                                                      ++posts;
                                                                      if (whenPosted) {
                                                                          whenPosted();
                                                                      }
                                                                  });
    }

    /// As a window manager does.
    bool closeFromOutside() { return window().windowHandle()->close(); }

    int posts = 0;
    std::function<void()> whenPosted;

private:
    std::shared_ptr<const void> _token = std::make_shared<char>();
};

TEST_F(QZLCirraneSheetClosing, WhoIsToldFindsTheValuesStoredAndWrittenAndTheSheetStillShown) {
    open();
    slider("_colors").setFloatValue(0.125F);
    slider("_brightness").setFloatValue(0.25F);
    slider("_speed").setFloatValue(0.5F);
    slider("_zoom").setFloatValue(0.75F);
    popUp("_multiScreen").selectItemAtIndex(0);
    popUp("_screenshotInterval").selectItemAtIndex(2);
    view<QCheckBox>("_diagnostics").setChecked(true);
    const std::vector<std::string> all{
        "setFloat Colors 0.125",  "setFloat Brightness 0.25",        "setFloat Speed 0.5",     "setFloat Zoom 0.75",
        "setFloat MultiScreen 0", "setInteger ScreenshotInterval 2", "setFloat Diagnostics 1", "synchronize"};
    whenPosted = [&] {
        EXPECT_EQ(store->calls(), all);
        EXPECT_TRUE(window().isVisible());
    };
    click(button("close"));
    EXPECT_EQ(posts, 1);
    EXPECT_EQ(store->calls(), all) << "nothing follows";
    EXPECT_FALSE(window().isVisible());
}

TEST_F(QZLCirraneSheetClosing, WhoIsToldFindsTheAnimationsAtTheirEnds) {
    open();
    click(view<QLabel>("heading"), Qt::MetaModifier);
    click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
    timers.tick(5);
    whenPosted = [this] {
        EXPECT_EQ(timers.runningTimers(), 0U);
        EXPECT_TRUE(areHidden(100, 117) && areShown(200, 203));
        EXPECT_TRUE(areShown(300, 304) && areHidden(400, 404));
    };
    click(button("close"));
    EXPECT_EQ(posts, 1);
}

TEST_F(QZLCirraneSheetClosing, ByTheWindowManagerInTheMiddleOfADedicationRestoresTheContent) {
    for (const int ticks : {20, 80, 180, 300, 640, 700}) {
        posts = 0;
        open();
        slider("_zoom").setFloatValue(0.75F);
        click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
        timers.tick(ticks);
        closeFromOutside();
        EXPECT_FALSE(window().isVisible()) << ticks;
        EXPECT_EQ(posts, 1) << ticks;
        EXPECT_EQ(defaults().zoom(), 0.75F) << ticks;
        EXPECT_EQ(timers.runningTimers(), 0U) << ticks;
        EXPECT_TRUE(areShown(300, 304)) << ticks;
        EXPECT_TRUE(areHidden(400, 404)) << ticks;
    }
}

TEST_F(QZLCirraneSheetClosing, OtherScreensWithNothingChosenCountAsOn) {
    defaults().setMultiScreen(false);
    open();
    popUp("_multiScreen").selectItemAtIndex(-1);
    ASSERT_EQ(popUp("_multiScreen").indexOfSelectedItem(), -1);
    click(button("close"));
    EXPECT_TRUE(defaults().multiScreen());
    EXPECT_EQ(store->floatForKey("MultiScreen"), 1.0F);
}

TEST_F(QZLCirraneSheetClosing, ShownAgainItPlaysItsAnimationsAgain) {
    open();
    click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
    timers.tick(80);
    closeFromOutside();
    ASSERT_TRUE(fake::showActive(window()));
    EXPECT_TRUE(areShown(300, 304));
    click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
    timers.tick(48);
    EXPECT_TRUE(areHidden(300, 304));
}

}  // namespace
