// The options over the window for the settings: opened, closed, and taken away.
#include "platform/ui/Sheet.hpp"
#include "tests/host/ConfigureWindowTest.hpp"

#include <QtWidgets/QMessageBox>

namespace {

TEST_F(ConfigureWindowTest, SettingsThatCannotBeKeptAreToldOverWhatIsOpen) {
    saver.setSheet(&sheet);
    open();
    window->tellNotKept("/etc/settings.conf");
    handleEvents();
    auto* const box = window->findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isVisible());
    EXPECT_TRUE(box->text().contains("/etc/settings.conf")) << box->text().toStdString();
    press(Qt::Key_Return);
    ASSERT_TRUE(sheet.isVisible());
    window->tellNotKept("/etc/settings.conf");
    handleEvents();
    EXPECT_NE(sheet.findChild<QMessageBox*>(), nullptr) << "below the sheet it could not be used";
    sheet.hide();
    sheet.setParent(nullptr);
}

TEST_F(ConfigureWindowTest, TheOptionsOpenOverItAndTheFocusComesBack) {
    saver.setSheet(&sheet);
    open();
    EXPECT_EQ(window->focusWidget(), options());
    for (int time = 0; time < 2; ++time) {
        press(time == 0 ? Qt::Key_Space : Qt::Key_Return);
        EXPECT_EQ(saver.lines().back(), "sheet");
        EXPECT_TRUE(sheet.isVisible());
        EXPECT_TRUE(sheet.isWindow());
        EXPECT_EQ(sheet.windowModality(), Qt::WindowModal);
        EXPECT_EQ(sheet.parentWidget(), window.get());
        fullscreen()->setFocus();
        sheet.hide();
        handleEvents();
        EXPECT_EQ(window->focusWidget(), options());
    }
    sheet.setParent(nullptr);
}

TEST_F(ConfigureWindowTest, ASheetThatGoesWithItsViewIsForgotten) {
    auto* const shortLived = new QWidget;
    saver.setSheet(shortLived);
    open();
    options()->click();
    delete shortLived;
    saver.setSheet(&sheet);
    window->present();
    options()->click();
    EXPECT_TRUE(sheet.isVisible());
    sheet.setParent(nullptr);
}

/// A sheet that its view takes along, and that counts how often it was closed by its button.
class ConfigureWindowOptions : public ConfigureWindowTest {
protected:
    void openWithOptions() {
        owned = new platform::Sheet;
        auto* const close = new QPushButton(owned);
        close->setDefault(true);
        QObject::connect(close, &QPushButton::clicked, owned, [this] {
            ++closes;
            platform::endSheet(owned);
        });
        saver.setSheet(owned);
        open();
        QObject::connect(saver.newestView(), &QObject::destroyed, [sheet = QPointer(owned)] { delete sheet.data(); });
        press(Qt::Key_Space);
        ASSERT_TRUE(owned->isVisible());
    }

    QPointer<platform::Sheet> owned;
    int closes = 0;
};

TEST_F(ConfigureWindowOptions, AreClosedAsByTheirButtonWhenTheWindowGoes) {
    openWithOptions();
    window.reset();
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(owned, nullptr);
}

TEST_F(ConfigureWindowOptions, AreClosedAsByTheirButtonWhenAnotherViewTakesThePlaceOfTheirs) {
    openWithOptions();
    const auto device = gpu->systemDefaultDevice();
    gpu->plan().lostAfterCommits = 0;
    device->newCommandQueue()->commandBuffer()->commit();
    handleEvents();
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(owned, nullptr);
    saver.setSheet(nullptr);
    options()->click();
    EXPECT_TRUE(shows("The options could not be opened"));
}

TEST_F(ConfigureWindowOptions, AKeyThatIsHeldOpensOrClosesThemOnce) {
    openWithOptions();
    const auto hold = [](QWidget& focused, int key) {
        QKeyEvent again(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(&focused, &again);
    };
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        hold(*owned, key);
        EXPECT_TRUE(owned->isVisible()) << key;
    }
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(owned, &enter);
    EXPECT_FALSE(owned->isVisible());
    hold(*options(), Qt::Key_Return);
    EXPECT_FALSE(owned->isVisible());
}

}  // namespace
