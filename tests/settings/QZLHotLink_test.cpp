#include "settings/QZLHotLink.hpp"

#include "tests/support/ShownWindow.hpp"

#include <gtest/gtest.h>

#include <QtGui/QAccessible>
#include <QtGui/QCursor>
#include <QtTest/QTest>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>

namespace {

class QZLHotLinkTest : public testing::Test {
protected:
    QZLHotLinkTest() {
        QPalette palette = link.palette();
        palette.setColor(QPalette::Window, Qt::white);
        palette.setColor(QPalette::Link, Qt::red);
        link.setPalette(palette);
        link.setAutoFillBackground(true);
    }

    /// The columns from the first to the last that the underline covers; empty when there is none.
    QPair<int, int> underline() {
        link.resize(link.sizeHint() + QSize(20, 0));
        const QImage picture = link.grab().toImage();
        QPair<int, int> longest(0, -1);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width();) {
                const int start = x;
                while (x < picture.width() && picture.pixelColor(x, y) == QColor(Qt::red)) {
                    ++x;
                }
                if (x - start > longest.second - longest.first + 1) {
                    longest = {start, x - 1};
                }
                x = std::max(x, start + 1);
            }
        }
        return longest;
    }

    bool isUnderlinedOverAllOf(const QString& text) {
        const auto [first, last] = underline();
        return first <= 1 && last - first + 1 >= QFontMetrics(link.font()).horizontalAdvance(text) - 1;
    }

    QZLHotLink link;
};

TEST_F(QZLHotLinkTest, UnderlinesItsWholeText) {
    link.setStringValue("clouds example org");
    EXPECT_EQ(link.stringValue(), "clouds example org");
    EXPECT_TRUE(isUnderlinedOverAllOf("clouds example org"));
}

TEST_F(QZLHotLinkTest, UnderlinesWhateverCharactersItHolds) {
    for (const char* text :
         {"<b>x</b>", "a & b && c", "&amp;", "<a href=\"x\">y</a>", "\xE9\x9B\xB2 caf\xC3\xA9", "  x  "}) {
        link.setStringValue(text);
        EXPECT_EQ(link.stringValue(), text);
        EXPECT_EQ(link.text(), QString::fromUtf8(text));
        EXPECT_TRUE(isUnderlinedOverAllOf(QString::fromUtf8(text))) << text;
    }
}

TEST_F(QZLHotLinkTest, TextThatAFormSetGetsTheLooksWhenItAwakes) {
    link.setTextFormat(Qt::AutoText);
    link.setText("<i>clouds</i>");
    link.awakeFromNib();
    EXPECT_EQ(link.stringValue(), "<i>clouds</i>");
    EXPECT_TRUE(isUnderlinedOverAllOf("<i>clouds</i>"));
}

TEST_F(QZLHotLinkTest, OfAnEmptyTextShowsNothingUnderlinedAndKeepsItsCursor) {
    link.setStringValue("clouds");
    link.setStringValue("");
    EXPECT_EQ(link.stringValue(), "");
    const auto [first, last] = underline();
    EXPECT_LT(last, first);
    EXPECT_EQ(link.cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(QZLHotLinkTest, HasAPointingHand) {
    EXPECT_EQ(link.cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(QZLHotLinkTest, KeepsTheFontOfItsForm) {
    QFont font = link.font();
    font.setPointSizeF(17.0);
    font.setItalic(true);
    link.setFont(font);
    link.setStringValue("clouds");
    EXPECT_EQ(link.font().pointSizeF(), 17.0);
    EXPECT_TRUE(link.font().italic());
    EXPECT_TRUE(link.font().underline());
}

TEST_F(QZLHotLinkTest, FollowsAFontThatItsWindowGetsLater) {
    QWidget window;
    auto* child = new QZLHotLink(&window);
    child->setStringValue("clouds");
    QFont font = window.font();
    font.setPointSizeF(19.0);
    window.setFont(font);
    EXPECT_EQ(child->font().pointSizeF(), 19.0);
    EXPECT_TRUE(child->font().underline());
}

TEST_F(QZLHotLinkTest, IsATrigger) {
    QWidget window;
    auto* child = new QZLHotLink(&window);
    (new QVBoxLayout(&window))->addWidget(child);
    child->setStringValue("clouds");
    int clicks = 0;
    QObject::connect(child, &QZLTextTrigger::triggered, [&] { ++clicks; });
    ASSERT_TRUE(fake::showActive(window));
    QTest::mousePress(child, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
    child->setFocus();
    QTest::keyClick(child, Qt::Key_Return);
    EXPECT_EQ(clicks, 2);
}

TEST_F(QZLHotLinkTest, AssistiveTechnologiesMeetALink) {
    link.setStringValue("clouds");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&link);
    EXPECT_EQ(accessible->role(), QAccessible::Link);
    EXPECT_TRUE(accessible->state().linked);
    EXPECT_EQ(accessible->text(QAccessible::Name), "clouds");
}

}  // namespace
