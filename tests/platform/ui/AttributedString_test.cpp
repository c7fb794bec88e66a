#include "platform/ui/AttributedString.hpp"

#include <gtest/gtest.h>

#include <QtGui/QImage>
#include <QtGui/QPainter>

namespace {

using platform::AttributedString;
constexpr unsigned wholeText = platform::stringDrawingUsesLineFragmentOrigin | platform::stringDrawingUsesFontLeading;

AttributedString text(const std::string& words, double size = 20.0) {
    AttributedString string;
    string.append(words, {platform::systemFont(size), Qt::white, Qt::transparent});
    return string;
}

TEST(AttributedString, OneWithoutTextTakesNoRoom) {
    EXPECT_EQ(AttributedString().boundingSize(100.0, wholeText), QSizeF(0.0, 0.0));
}

TEST(AttributedString, SizesMayBeFractionsOfAPoint) {
    const auto width = [](double size) { return text("Drifting clouds", size).boundingSize(1e4, wholeText).width(); };
    EXPECT_NEAR(width(10.5), 0.5 * (width(10.0) + width(11.0)), 0.2);
    EXPECT_GT(width(10.5), width(10.25));
    EXPECT_GT(width(10.25), width(10.0));
}

TEST(AttributedString, ALineBreakMakesALine) {
    const double one = text("a").boundingSize(1e4, wholeText).height();
    EXPECT_DOUBLE_EQ(text("a\nb").boundingSize(1e4, wholeText).height(), 2.0 * one);
    EXPECT_DOUBLE_EQ(text("a\n\nb").boundingSize(1e4, wholeText).height(), 3.0 * one);
}

TEST(AttributedString, WrapsBetweenWordsAtTheWidth) {
    const QSizeF word = text("clouds").boundingSize(1e4, wholeText);
    const QSizeF wrapped = text("clouds clouds clouds").boundingSize(word.width() * 1.5, wholeText);
    EXPECT_DOUBLE_EQ(wrapped.height(), 3.0 * word.height());
    EXPECT_NEAR(wrapped.width(), word.width(), 0.5);
}

TEST(AttributedString, BreaksAWordThatIsWiderThanALine) {
    const std::string longWord(60, 'm');
    const QSizeF wrapped = text(longWord).boundingSize(200.0, wholeText);
    EXPECT_LE(wrapped.width(), 200.0);
    EXPECT_GT(wrapped.height(), text("m").boundingSize(1e4, wholeText).height() * 3.0);
}

TEST(AttributedString, WithoutLinesOnlyTheFirstIsMeasured) {
    EXPECT_DOUBLE_EQ(text("a\nb").boundingSize(1e4, platform::stringDrawingUsesFontLeading).height(),
                     text("a").boundingSize(1e4, wholeText).height());
}

TEST(AttributedString, TheTallestPartDecidesTheHeightOfALine) {
    AttributedString mixed = text("small ", 10.0);
    mixed.append("large", {platform::systemFont(40.0), Qt::white, Qt::transparent});
    const double height = mixed.boundingSize(1e4, wholeText).height();
    EXPECT_GE(height, text("large", 40.0).boundingSize(1e4, wholeText).height());
}

TEST(AttributedString, IsDrawnWhereItIsMeasured) {
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::black);
    const AttributedString string = text("Clouds\ndrift", 32.0);
    const QRectF rect(40.0, 30.0, 200.0, 150.0);
    QPainter painter(&image);
    string.drawWithRect(painter, rect, wholeText);
    painter.end();
    const QRectF measured = QRectF(rect.topLeft(), string.boundingSize(rect.width(), wholeText)).adjusted(-2, -2, 2, 2);
    int inside = 0;
    int outside = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool isInk = image.pixelColor(x, y) != QColor(Qt::black);
            (measured.contains(x, y) ? inside : outside) += isInk ? 1 : 0;
        }
    }
    EXPECT_GT(inside, 300);
    EXPECT_EQ(outside, 0);
}

TEST(AttributedString, DrawsInItsColours) {
    AttributedString string;
    string.append("MMM", {platform::systemFont(40.0), Qt::green, Qt::blue});
    QImage image(100, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    string.drawWithRect(painter, QRectF(0, 0, 200, 40), wholeText);
    painter.end();
    bool hasText = false;
    bool hasGround = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            hasText = hasText || image.pixelColor(x, y) == QColor(Qt::green);
            hasGround = hasGround || image.pixelColor(x, y) == QColor(Qt::blue);
        }
    }
    EXPECT_TRUE(hasText);
    EXPECT_TRUE(hasGround);
}

}  // namespace
