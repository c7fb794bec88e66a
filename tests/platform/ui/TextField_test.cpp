#include "platform/ui/TextField.hpp"

#include <gtest/gtest.h>

namespace {

class TextFieldTest : public testing::Test {
protected:
    TextFieldTest() {
        parent.resize(300, 100);
        field.setTextFont(platform::userFixedPitchFont(12.0));
        field.setTextColor(Qt::white);
        field.setBackgroundColor(Qt::blue);
    }

    int inkPixels() {
        QImage image(field.size(), QImage::Format_RGB32);
        image.fill(Qt::black);
        field.render(&image, {}, {}, QWidget::RenderFlags());
        int ink = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                ink += image.pixelColor(x, y) != QColor(Qt::blue) ? 1 : 0;
            }
        }
        return ink;
    }

    QWidget parent;
    platform::TextField field{&parent};
};

TEST_F(TextFieldTest, LiesAtItsPlaceFromTheBottomLeftOfItsParent) {
    field.setFrame({0, 0, 300, 16});
    EXPECT_EQ(field.geometry(), QRect(0, 84, 300, 16));
    parent.resize(300, 200);
    field.followParent();
    EXPECT_EQ(field.geometry(), QRect(0, 184, 300, 16));
}

TEST_F(TextFieldTest, DrawsItsTextOnItsGround) {
    field.setFrame({0, 0, 300, 16});
    EXPECT_EQ(inkPixels(), 0);
    field.setStringValue("60.00 fps");
    EXPECT_GT(inkPixels(), 50);
}

TEST_F(TextFieldTest, ANarrowOneCutsItsTextOff) {
    field.setFrame({0, 0, 40, 16});
    field.setStringValue("60.00 fps 60.00 fps 60.00 fps");
    EXPECT_GT(inkPixels(), 10) << "still on one line";
}

TEST_F(TextFieldTest, LetsAllInputThrough) {
    EXPECT_TRUE(field.testAttribute(Qt::WA_TransparentForMouseEvents));
    EXPECT_EQ(field.focusPolicy(), Qt::NoFocus);
}

}  // namespace
