// The settings sheet, used as people use it.
#include "platform/NotificationCenter.hpp"
#include "settings/QZLNotifications.hpp"
#include "tests/saver/SheetTest.hpp"

#include <bit>
#include <limits>

namespace {

constexpr const char* sliders[] = {"_colors", "_brightness", "_speed", "_zoom"};

class QZLCirraneControllerTest : public SheetTest {
protected:
    QZLCirraneControllerTest() {
        platform::NotificationCenter::defaultCenter().addObserver(QZLConfigurationStoredNotification, _token,
                                                                  [this](std::string_view) { ++posts; });
    }

    std::vector<float> storedSliders() {
        return {defaults().colors(), defaults().brightness(), defaults().speed(), defaults().zoom()};
    }

    int posts = 0;

private:
    std::shared_ptr<const void> _token = std::make_shared<char>();
};

TEST_F(QZLCirraneControllerTest, ShowsTheStoredValues) {
    defaults().setColors(0.125F);
    defaults().setBrightness(0.25F);
    defaults().setSpeed(0.5F);
    defaults().setZoom(0.75F);
    defaults().setMultiScreen(false);
    defaults().setScreenshotInterval(2);
    defaults().setDiagnostics(true);
    open();
    EXPECT_EQ(slider("_colors").floatValue(), 0.125F);
    EXPECT_EQ(slider("_brightness").floatValue(), 0.25F);
    EXPECT_EQ(slider("_speed").floatValue(), 0.5F);
    EXPECT_EQ(slider("_zoom").floatValue(), 0.75F);
    EXPECT_EQ(popUp("_multiScreen").indexOfSelectedItem(), 0);
    EXPECT_EQ(popUp("_screenshotInterval").indexOfSelectedItem(), 2);
    EXPECT_TRUE(view<QCheckBox>("_diagnostics").isChecked());
}

TEST_F(QZLCirraneControllerTest, EveryControlThatIsChangedKeepsItsValueOverCloseAndReopening) {
    open();
    for (const char* name : sliders) {
        slider(name).setFocus();
        QTest::keyClick(&slider(name), Qt::Key_End);
    }
    QTest::keyClick(&popUp("_multiScreen"), Qt::Key_Home);
    QTest::keyClick(&popUp("_screenshotInterval"), Qt::Key_End);
    QTest::keyClick(&view<QCheckBox>("_diagnostics"), Qt::Key_Space);
    EXPECT_EQ(store->calls(), std::vector<std::string>()) << "nothing is stored before it is closed";
    click(button("close"));
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(posts, 1);
    EXPECT_EQ(store->calls().back(), "synchronize");
    EXPECT_EQ(storedSliders(), (std::vector<float>{1.0F, 1.0F, 1.0F, 1.0F}));
    EXPECT_FALSE(defaults().multiScreen());
    EXPECT_EQ(defaults().screenshotInterval(), 3);
    EXPECT_TRUE(defaults().diagnostics());

    open();
    for (const char* name : sliders) {
        EXPECT_EQ(slider(name).floatValue(), 1.0F) << name;
    }
    EXPECT_EQ(popUp("_multiScreen").indexOfSelectedItem(), 0);
    EXPECT_EQ(popUp("_screenshotInterval").indexOfSelectedItem(), 3);
    EXPECT_TRUE(view<QCheckBox>("_diagnostics").isChecked());
}

TEST_F(QZLCirraneControllerTest, OpenedAndClosedUntouchedItChangesNoSliderByABit) {
    const std::vector<float> odd{0.1234567F, -3.5F, 7.25F, std::numeric_limits<float>::denorm_min()};
    defaults().setColors(odd[0]);
    defaults().setBrightness(odd[1]);
    defaults().setSpeed(odd[2]);
    defaults().setZoom(odd[3]);
    open();
    click(button("close"));
    const std::vector<float> stored = storedSliders();
    for (std::size_t i = 0; i < odd.size(); ++i) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(stored[i]), std::bit_cast<std::uint32_t>(odd[i])) << sliders[i];
    }
}

TEST_F(QZLCirraneControllerTest, AScreenshotIntervalThatIsNoEntryShowsNoneAndIsStoredAsMinusOne) {
    for (const std::int64_t stored : {std::int64_t{4}, std::int64_t{-1}, std::int64_t{1} << 32}) {
        defaults().setScreenshotInterval(stored);
        open();
        EXPECT_EQ(popUp("_screenshotInterval").indexOfSelectedItem(), -1) << stored;
        click(button("close"));
        EXPECT_EQ(defaults().screenshotInterval(), -1) << stored;
    }
}

TEST_F(QZLCirraneControllerTest, TheMouseWheelChangesNothingThatHasNoFocus) {
    open();
    button("close").setFocus();
    for (const char* name : sliders) {
        const float before = slider(name).floatValue();
        fake::turnWheel(slider(name), 3);
        EXPECT_EQ(slider(name).floatValue(), before) << name;
    }
    fake::turnWheel(popUp("_screenshotInterval"), -1);
    EXPECT_EQ(popUp("_screenshotInterval").indexOfSelectedItem(), 0);
}

TEST_F(QZLCirraneControllerTest, ResetShowsTheDefaultsAndClosingStoresThem) {
    defaults().setColors(0.9F);
    defaults().setMultiScreen(false);
    defaults().setScreenshotInterval(3);
    defaults().setDiagnostics(true);
    open();
    click(button("reset"));
    EXPECT_EQ(slider("_colors").floatValue(), 0.4F);
    EXPECT_EQ(slider("_brightness").floatValue(), 0.5F);
    EXPECT_EQ(slider("_speed").floatValue(), 0.7F);
    EXPECT_EQ(slider("_zoom").floatValue(), 0.38F);
    EXPECT_EQ(popUp("_multiScreen").indexOfSelectedItem(), 1);
    EXPECT_EQ(popUp("_screenshotInterval").indexOfSelectedItem(), 0);
    EXPECT_FALSE(view<QCheckBox>("_diagnostics").isChecked());
    EXPECT_EQ(posts, 0) << "running views keep what they have until it is closed";
    EXPECT_FALSE(store->isStored("Colors"));
    click(button("close"));
    EXPECT_EQ(posts, 1);
    EXPECT_TRUE(store->isStored("Colors"));
    EXPECT_EQ(defaults().colors(), 0.4F);
    EXPECT_TRUE(defaults().multiScreen());
}

TEST_F(QZLCirraneControllerTest, HoweverItIsClosedItIsAsByItsButton) {
    const std::vector<std::pair<const char*, std::function<void()>>> ways{
        {"the window manager", [this] { window().close(); }},
        {"Escape", [this] { QTest::keyClick(&window(), Qt::Key_Escape); }},
        {"Enter", [this] { QTest::keyClick(&slider("_zoom"), Qt::Key_Enter); }},
        {"Return", [this] { QTest::keyClick(&view<QCheckBox>("_diagnostics"), Qt::Key_Return); }},
    };
    for (const auto& [way, close] : ways) {
        posts = 0;
        open();
        slider("_speed").setFocus();
        QTest::keyClick(&slider("_speed"), Qt::Key_Home);
        close();
        EXPECT_FALSE(window().isVisible()) << way;
        EXPECT_EQ(posts, 1) << way;
        EXPECT_EQ(defaults().speed(), 0.0F) << way;
        defaults().reset();
    }
}

TEST_F(QZLCirraneControllerTest, SaysWhatItIsOf) {
    open();
    const QString about = view<QLabel>("_appVersionCopyright").text();
    EXPECT_TRUE(about.startsWith(QStringLiteral("Cirrane "))) << about.toStdString();
    EXPECT_TRUE(about.contains(QStringLiteral("©"))) << about.toStdString();
    EXPECT_EQ(view<QLabel>("_mailto").text(), QStringLiteral("clouds@example.org"));
    EXPECT_EQ(view<QLabel>("_website").text(), QStringLiteral("cirrane.example.org"));
}

TEST_F(QZLCirraneControllerTest, ItsLinksOpenAMailAndTheWholeAddressOfTheWebsite) {
    open();
    click(view<QLabel>("_website"));
    EXPECT_EQ(desktop.receivedAddress(), "https://cirrane.example.org");
    std::filesystem::remove(desktop.received());
    click(view<QLabel>("_mailto"));
    EXPECT_EQ(desktop.receivedAddress(), "mailto:clouds%40example%2Eorg?subject=Cirrane%20" CIRRANE_VERSION_IN_MAIL);
}

TEST_F(QZLCirraneControllerTest, OffersAReportOfThisVersionsErrorUntilItIsSent) {
    open();
    EXPECT_TRUE(button("_errorReport").isHidden());
    defaults().saveError(200, -3, "first line\nsecond line\n");
    open();
    ASSERT_FALSE(button("_errorReport").isHidden());
    click(button("_errorReport"));
    const std::string address = desktop.receivedAddress();
    EXPECT_TRUE(address.starts_with("mailto:clouds%40example%2Eorg?subject=Cirrane%20error%20report&body=")) << address;
    EXPECT_TRUE(address.ends_with("Journal%3A%0D%0Afirst%20line%0D%0Asecond%20line%0D%0A")) << address;
    EXPECT_NE(address.find("Error%3A%20200%2C%20detail%20%2D3"), std::string::npos) << address;
    EXPECT_NE(address.find("10%2E13%2E2"), std::string::npos) << address;
    EXPECT_TRUE(button("_errorReport").isHidden());
    EXPECT_FALSE(defaults().haveSavedError());
}

TEST_F(QZLCirraneControllerTest, OffersNoReportOfAnotherVersion) {
    defaults().saveError(200, 0, "journal");
    store->setString("0.0.0", "SavedErrorVersion");
    open();
    EXPECT_TRUE(button("_errorReport").isHidden());
}

TEST_F(QZLCirraneControllerTest, AResetForgetsTheReportToo) {
    defaults().saveError(200, 0, "journal");
    open();
    click(button("reset"));
    EXPECT_TRUE(button("_errorReport").isHidden());
    EXPECT_FALSE(defaults().haveSavedError());
}

}  // namespace
