// The sheet's form as people meet it: in every language and size of text, by keyboard and by ear.
#include "tests/saver/SheetTest.hpp"

#include <QtGui/QScreen>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <algorithm>
#include <cmath>
#include <set>

namespace {

class QZLCirraneSheet : public SheetTest {
protected:
    /// With the report's button shown too.
    void openWhole() {
        defaults().saveError(200, 0, "journal");
        open();
    }
    static QString withoutMnemonic(QString text) { return text.remove(QLatin1Char('&')); }
};

TEST_F(QZLCirraneSheet, EveryControlHasANameAndADescriptionForThoseWhoListen) {
    openWhole();
    int controls = 0;
    for (const QWidget* control : window().findChildren<QWidget*>()) {
        const bool isPart = qobject_cast<const QComboBox*>(control->parentWidget()) != nullptr;
        if (control->focusPolicy() == Qt::NoFocus || isPart || control->isWindow() ||
            control->objectName().startsWith(QStringLiteral("qt_"))) {
            continue;
        }
        ++controls;
        const QAccessibleInterface* heard = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(control));
        ASSERT_NE(heard, nullptr);
        EXPECT_NE(heard->text(QAccessible::Name), QString()) << control->objectName().toStdString();
        EXPECT_NE(heard->text(QAccessible::Description), QString()) << control->objectName().toStdString();
    }
    EXPECT_EQ(controls, 15);
}

TEST_F(QZLCirraneSheet, TheTabKeyGoesFromTopToBottom) {
    openWhole();
    view<QWidget>("heading").setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < 14; ++i) {
        order.push_back(QApplication::focusWidget()->objectName().toStdString());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order, (std::vector<std::string>{"heading", "_colors", "_brightness", "_speed", "_zoom", "_multiScreen",
                                               "_screenshotInterval", "_diagnostics", "_appVersionCopyright", "_mailto",
                                               "_website", "_errorReport", "reset", "close"}));
    EXPECT_EQ(QApplication::focusWidget(), &view<QWidget>("heading"));
}

/// The contrast of two shades as WCAG 2 counts it, from 1 to 21. https://www.w3.org/TR/WCAG21/#dfn-contrast-ratio
double contrast(double dark, double light) {
    return (light + 0.05) / (dark + 0.05);
}

double relativeLuminance(QRgb pixel) {
    const auto linear = [](int component) {
        const double value = component / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(pixel)) + 0.7152 * linear(qGreen(pixel)) + 0.0722 * linear(qBlue(pixel));
}

/// Between a view's darkest and lightest pixel: its text and what it stands on.
double contrastWithin(QWidget& view) {
    const QImage image = view.grab().toImage();
    double darkest = 1.0;
    double lightest = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double luminance = relativeLuminance(image.pixel(x, y));
            darkest = std::min(darkest, luminance);
            lightest = std::max(lightest, luminance);
        }
    }
    return contrast(darkest, lightest);
}

/// Dark as desktops have it, with links that can be read on it.
QPalette darkPalette() {
    QPalette dark(QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(42, 42, 42));
    dark.setColor(QPalette::Link, QColor(120, 180, 255));
    return dark;
}

TEST_F(QZLCirraneSheet, EveryTextStandsOutInLightAndDark) {
    const QPalette former = QApplication::palette();
    for (const auto& [name, palette] :
         {std::pair("light", QPalette(QColor(239, 239, 239))), std::pair("dark", darkPalette())}) {
        QApplication::setPalette(palette);
        defaults().clearSavedErrorReport();
        open();
        window().grab().save(QStringLiteral(SHEET_PICTURES "/sheet-%1.png").arg(QLatin1String(name)));
        openWhole();
        const auto expectReadable = [&, shade = name] {
            QApplication::processEvents();
            for (QWidget* view : window().findChildren<QWidget*>()) {
                const bool hasText =
                    (qobject_cast<QLabel*>(view) != nullptr && !qobject_cast<QLabel*>(view)->text().isEmpty()) ||
                    qobject_cast<QAbstractButton*>(view) != nullptr || qobject_cast<QComboBox*>(view) != nullptr;
                EXPECT_TRUE(!hasText || !view->isVisible() || contrastWithin(*view) >= 4.5)
                    << shade << ": " << view->objectName().toStdString();
            }
        };
        expectReadable();
        click(view<QLabel>("heading"), Qt::MetaModifier);
        timers.tick(28);
        expectReadable();
    }
    QApplication::setPalette(former);
}

TEST_F(QZLCirraneSheet, IsAllToBeSeenWhereThereIsRoomAndScrollsWhereThereIsNot) {
    openWhole();
    QApplication::processEvents();
    const auto& scrolled = view<QScrollArea>("scroll");
    const int room = window().screen()->availableSize().height();
    const int hidden = scrolled.verticalScrollBar()->maximum();
    const bool hasRoom = window().height() + hidden <= room * 9 / 10;
    EXPECT_EQ(hidden == 0, hasRoom) << hidden;
    EXPECT_LE(window().height(), room);
    EXPECT_EQ(scrolled.horizontalScrollBar()->maximum(), 0);
    button("reset").setFocus();
    QTest::keyClick(&button("reset"), Qt::Key_Tab);
    EXPECT_FALSE(button("close").visibleRegion().isEmpty()) << "it follows the focus";
}

TEST_F(QZLCirraneSheet, TheWayBackLooksLikeTheOtherLinks) {
    open();
    EXPECT_TRUE(view<QLabel>("extraBack").font().underline());
    EXPECT_EQ(view<QLabel>("extraBack").foregroundRole(), QPalette::Link);
}

class InLanguage : public QZLCirraneSheet, public testing::WithParamInterface<const char*> {
protected:
    /// Of what is shown now; a picture of it is left behind.
    void expectWholeTexts(const std::string& state, int points) {
        QApplication::processEvents();
        const std::string where = state + "-" + GetParam() + "-" + std::to_string(points);
        for (const QLabel* label : window().findChildren<QLabel*>()) {
            const int width = label->wordWrap() ? 0 : label->sizeHint().width();
            const int height = label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
            EXPECT_TRUE(!label->isVisible() || (width <= label->width() && height <= label->height()))
                << where << ": " << label->text().toStdString();
        }
        for (const QAbstractButton* any : window().findChildren<QAbstractButton*>()) {
            EXPECT_TRUE(!any->isVisible() || any->sizeHint().width() <= any->width())
                << where << ": " << any->text().toStdString();
        }
        for (const QComboBox* choice : window().findChildren<QComboBox*>()) {
            EXPECT_TRUE(!choice->isVisible() || choice->sizeHint().width() <= choice->width()) << where;
        }
        window().grab().save(QString::fromStdString(SHEET_PICTURES "/" + where + ".png"));
    }

    ~InLanguage() override { QApplication::setFont(_font); }

    fake::ScopedEnvironment language{"LANGUAGE", GetParam()};

private:
    const QFont _font = QApplication::font();
};

TEST_P(InLanguage, NoTextIsCut) {
    for (const int points : {8, 10, 20}) {
        QFont font = QApplication::font();
        font.setPointSize(points);
        QApplication::setFont(font);
        openWhole();
        expectWholeTexts("sheet", points);
        click(view<QLabel>("heading"), Qt::MetaModifier);
        timers.tick(28);
        expectWholeTexts("extra", points);
        click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
        for (int line = 1; line <= 4; ++line) {
            timers.tick(150);
            expectWholeTexts("dedication" + std::to_string(line), points);
        }
    }
}

TEST_P(InLanguage, NoKeyServesTwo) {
    openWhole();
    std::set<QString> keys;
    const auto noteKey = [&](const QString& text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (!key.isEmpty()) {
            EXPECT_TRUE(keys.insert(key.toString()).second) << text.toStdString();
        }
    };
    for (const QLabel* label : window().findChildren<QLabel*>()) {
        if (label->buddy() != nullptr) {
            noteKey(label->text());
        }
    }
    for (const QAbstractButton* any : window().findChildren<QAbstractButton*>()) {
        noteKey(any->text());
    }
    EXPECT_EQ(keys.size(), 10U) << "four sliders, two pop-ups, the check box and three buttons";
}

std::string languageName(const testing::TestParamInfo<const char*>& info) {
    return info.param;
}

INSTANTIATE_TEST_SUITE_P(QZLCirraneSheet, InLanguage, testing::Values("en", "de", "fr", "es", "ja"), languageName);

class Speaks : public SheetTest, public testing::WithParamInterface<std::pair<const char*, const char*>> {
protected:
    fake::ScopedEnvironment language{"LANGUAGE", GetParam().first};
};

TEST_P(Speaks, TheDesktopsLanguageOrThatOfItsRegionOrEnglish) {
    open();
    EXPECT_EQ(button("reset").text().remove(QLatin1Char('&')).toStdString(), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(QZLCirraneSheet, Speaks,
                         testing::Values(std::pair("de", "Zurücksetzen"), std::pair("de_AT", "Zurücksetzen"),
                                         std::pair("fr_CA", "Réinitialiser"), std::pair("es", "Restablecer"),
                                         std::pair("ja_JP", "リセット(R)"), std::pair("sv", "Reset"),
                                         std::pair("sv:es", "Restablecer")));

}  // namespace
