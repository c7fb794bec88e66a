#include "tests/host/ConfigureWindowTest.hpp"

#include <sys/stat.h>

#include <QtGui/QImage>
#include <QtWidgets/QLineEdit>
#include <set>

namespace {

TEST_F(ConfigureWindowTest, ShowsALivePreviewAndLetsItGoWhenItGoes) {
    open();
    ASSERT_EQ(saver.lines().size(), 2U);
    EXPECT_TRUE(saver.lines()[0].ends_with(" preview")) << saver.lines()[0];
    EXPECT_TRUE(saver.lines()[1].starts_with("start ")) << saver.lines()[1];
    window->hide();
    EXPECT_EQ(saver.lines().back(), "stop");
    window.reset();
    EXPECT_EQ(saver.lines().back(), "end");
}

TEST_F(ConfigureWindowTest, StopsThePreviewWhileMinimised) {
    open();
    window->setWindowState(Qt::WindowMinimized);
    handleEvents();
    EXPECT_EQ(saver.lines().back(), "stop");
    window->setWindowState(Qt::WindowNoState);
    handleEvents();
    EXPECT_TRUE(saver.lines().back().starts_with("start "));
}

TEST_F(ConfigureWindowTest, ASaverWithoutOptionsSaysSo) {
    open();
    EXPECT_FALSE(options()->isEnabled());
    EXPECT_EQ(options()->toolTip(), "This screen saver has no options.");
    EXPECT_EQ(window->focusWidget(), fullscreen());
}

TEST_F(ConfigureWindowTest, TheFullScreenTestStopsThePreviewWhileItRuns) {
    const std::string pipe = (directory.path() / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    command = {"/bin/sh", "-c", "read line < " + pipe};
    open();
    fullscreen()->click();
    EXPECT_EQ(saver.lines().back(), "stop");
    EXPECT_FALSE(fullscreen()->isEnabled());
    handleEvents();
    EXPECT_EQ(saver.lines().back(), "stop");
    fake::writeFile(pipe, "\n");
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return saver.lines().back().starts_with("start "); }));
    EXPECT_TRUE(fullscreen()->isEnabled());
    EXPECT_FALSE(shows("failed"));
}

TEST_F(ConfigureWindowTest, AFullScreenTestThatFailsSaysWhy) {
    command = {"/bin/sh", "-c", "echo cirrane: no device >&2; exit 1"};
    open();
    fullscreen()->click();
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return shows("The full-screen test failed: cirrane: no device"); }));
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return saver.lines().back().starts_with("start "); }));
}

TEST_F(ConfigureWindowTest, AFullScreenTestThatCannotBeStartedSaysSo) {
    command = {"/nowhere/cirrane"};
    open();
    fullscreen()->click();
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return shows("The full-screen test failed: "); }));
    EXPECT_TRUE(fullscreen()->isEnabled());
}

TEST_F(ConfigureWindowTest, AFullScreenTestThatRunsStillEndsWithTheWindow) {
    const std::filesystem::path ended = directory.path() / "ended";
    const std::filesystem::path begun = directory.path() / "begun";
    command = {
        "/bin/sh", "-c",
        "trap 'touch " + ended.string() + "; exit' TERM; touch " + begun.string() + "; while :; do sleep 0.01; done"};
    open();
    fullscreen()->click();
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return std::filesystem::exists(begun); }));
    window.reset();
    EXPECT_TRUE(std::filesystem::exists(ended));
}

TEST_F(ConfigureWindowTest, AnErrorInThePreviewLeavesTheRestUsable) {
    saver.setStartFails(true);
    saver.setSheet(&sheet);
    open();
    EXPECT_TRUE(saver.newestView()->shownError());
    options()->click();
    EXPECT_TRUE(sheet.isVisible());
    sheet.setParent(nullptr);
}

TEST_F(ConfigureWindowTest, ASaverThatCannotBeLoadedLeavesTheRestUsable) {
    open({std::string("no saver bundle at /nowhere"), true, {}});
    EXPECT_TRUE(shows("no saver bundle at /nowhere"));
    EXPECT_FALSE(options()->isEnabled());
    EXPECT_TRUE(fullscreen()->isEnabled());
    EXPECT_TRUE(shows("XScreenSaver"));
}

TEST_F(ConfigureWindowTest, ItsButtonClosesIt) {
    open();
    button(QStringLiteral("Close"))->click();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ConfigureWindowTest, WithoutHostsItSaysWhatToInstall) {
    hosts.clear();
    open();
    EXPECT_TRUE(shows("No program that starts screen savers was found"));
}

TEST_F(ConfigureWindowTest, EverythingThatTakesTheFocusHasAName) {
    saver.setSheet(&sheet);
    open();
    std::set<QChar> mnemonics;
    for (const QWidget* const widget : window->findChildren<QWidget*>()) {
        if (widget->focusPolicy() != Qt::NoFocus && widget->isVisible()) {
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
        }
    }
    for (const QPushButton* const each : window->findChildren<QPushButton*>()) {
        EXPECT_FALSE(each->accessibleDescription().isEmpty()) << each->text().toStdString();
        const QString text = each->text();
        EXPECT_TRUE(mnemonics.insert(text[text.indexOf(QLatin1Char('&')) + 1].toLower()).second) << text.toStdString();
    }
    const auto* const line = window->findChild<QLineEdit*>();
    EXPECT_EQ(line->accessibleName(), "Line for XScreenSaver");
    EXPECT_EQ(line->text(), "a line to copy");
    EXPECT_TRUE(line->isReadOnly());
}

TEST_F(ConfigureWindowTest, IsAsDarkAsTheDesktop) {
    const QPalette light = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(40, 40, 44)));
    open();
    for (const QWidget* const widget : window->findChildren<QWidget*>()) {
        const bool isPreview = widget->accessibleName() == QStringLiteral("Preview") || widget == saver.newestView();
        const QPalette& palette = widget->palette();
        if (!isPreview && widget->isEnabled()) {
            EXPECT_LT(palette.color(widget->backgroundRole()).lightness(), 128) << widget->metaObject()->className();
            EXPECT_GT(palette.color(widget->foregroundRole()).lightness(), 128) << widget->metaObject()->className();
        }
    }
    const QImage picture = window->grab().toImage();
    EXPECT_LT(picture.pixelColor(2, picture.height() - 3).lightness(), 60);
    QApplication::setPalette(light);
}

class ConfigureWindowFonts : public ConfigureWindowTest, public testing::WithParamInterface<int> {};

TEST_P(ConfigureWindowFonts, NothingIsClipped) {
    QFont font = QApplication::font();
    font.setPointSize(GetParam());
    QApplication::setFont(font);
    open();
    for (const QSize size : {window->size(), window->minimumSizeHint()}) {
        window->resize(size);
        handleEvents();
        for (const QPushButton* const each : window->findChildren<QPushButton*>()) {
            EXPECT_GE(each->width(), each->sizeHint().width()) << each->text().toStdString();
        }
        for (const QLabel* const label : window->findChildren<QLabel*>()) {
            if (label->isVisible()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ConfigureWindowFonts, testing::Values(8, 10, 14, 20));

}  // namespace
