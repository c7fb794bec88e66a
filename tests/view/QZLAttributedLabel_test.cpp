#include "view/QZLAttributedLabel.hpp"

#include "tests/support/EventLoop.hpp"

#include <gtest/gtest.h>

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

namespace {

using platform::Rect;

class QZLAttributedLabelTest : public testing::Test {
protected:
    QZLAttributedLabelTest() { parent.resize(200, 100); }

    static platform::AttributedString text(const std::string& words) {
        platform::AttributedString string;
        string.append(words, {platform::systemFont(20.0), Qt::white, Qt::transparent});
        return string;
    }

    QImage picture() {
        QImage image(label.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        label.render(&image, {}, {}, QWidget::RenderFlags());
        return image;
    }

    static int pixelsNot(const QColor& color, const QImage& image, const QRect& rect) {
        int count = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                count += image.pixelColor(x, y) != color ? 1 : 0;
            }
        }
        return count;
    }

    QWidget parent;
    QZLAttributedLabel label{&parent, {0, 0, 200, 100}};
};

TEST_F(QZLAttributedLabelTest, IsEmptyAndClearAtFirst) {
    EXPECT_TRUE(label.text().isEmpty());
    EXPECT_EQ(label.bound(), (Rect{0, 0, 200, 100}));
    EXPECT_EQ(label.options(), 0U);
    EXPECT_EQ(label.backgroundColor(), QColor(Qt::transparent));
    EXPECT_FALSE(label.isOpaque());
    EXPECT_EQ(pixelsNot(Qt::transparent, picture(), label.rect()), 0);
}

TEST_F(QZLAttributedLabelTest, ItsFrameCountsFromTheBottomLeft) {
    const QZLAttributedLabel low(&parent, {10, 20, 50, 30});
    EXPECT_EQ(low.geometry(), QRect(10, 50, 50, 30));
}

TEST_F(QZLAttributedLabelTest, IsOpaqueExactlyWhenItsGroundIs) {
    label.setBackgroundColor(Qt::red);
    EXPECT_TRUE(label.isOpaque());
    label.setBackgroundColor(QColor::fromRgbF(1.0F, 0.0F, 0.0F, 0.99F));
    EXPECT_FALSE(label.isOpaque());
}

TEST_F(QZLAttributedLabelTest, FillsItsGroundAndDrawsItsTextFromTheTopOfItsBound) {
    label.setBackgroundColor(Qt::red);
    label.setText(text("cloud"), {100, 0, 100, 50}, 3);
    const QImage drawn = picture();
    EXPECT_GT(pixelsNot(Qt::red, drawn, QRect(100, 50, 100, 30)), 30) << "the lower right quarter";
    EXPECT_EQ(pixelsNot(Qt::red, drawn, QRect(0, 0, 200, 49)), 0);
    EXPECT_EQ(pixelsNot(Qt::red, drawn, QRect(0, 0, 98, 100)), 0);
}

TEST_F(QZLAttributedLabelTest, WrapsAtTheWidthOfItsBound) {
    label.setBackgroundColor(Qt::red);
    label.setText(text("cloud cloud cloud"), {0, 0, 70, 100}, 3);
    const QImage drawn = picture();
    EXPECT_GT(pixelsNot(Qt::red, drawn, QRect(0, 30, 70, 20)), 30) << "a second line";
    EXPECT_EQ(pixelsNot(Qt::red, drawn, QRect(72, 0, 128, 100)), 0);
}

/// Counts its paint events.
class PaintCounter final : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override {
        painted += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int painted = 0;
};

TEST_F(QZLAttributedLabelTest, ANewTextIsNotDrawnUnlessAsked) {
    label.setGeometry(0, 0, 100, 50);
    QWidget beside(&parent);
    beside.setGeometry(100, 50, 100, 50);
    PaintCounter ofLabel;
    PaintCounter ofBeside;
    label.installEventFilter(&ofLabel);
    beside.installEventFilter(&ofBeside);
    parent.show();
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return ofLabel.painted > 0 && ofBeside.painted > 0; }));

    const int before = ofLabel.painted;
    label.setText(text("cloud"), {0, 0, 100, 50}, 3);
    ofBeside.painted = 0;
    beside.update();
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return ofBeside.painted > 0; }));
    EXPECT_EQ(ofLabel.painted, before);
    label.update();
    EXPECT_TRUE(fake::eventuallyInLoop([&] { return ofLabel.painted > before; }));
}

}  // namespace
