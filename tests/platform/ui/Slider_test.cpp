#include "platform/ui/Slider.hpp"

#include "tests/support/ShownWindow.hpp"

#include <gtest/gtest.h>

#include <QtTest/QTest>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyleOptionSlider>
#include <QtWidgets/QVBoxLayout>
#include <bit>
#include <limits>

namespace {

class LookedAtSlider final : public platform::Slider {
public:
    using Slider::Slider;

    QRect knob() const { return part(QStyle::SC_SliderHandle); }
    QRect groove() const { return part(QStyle::SC_SliderGroove); }

private:
    QRect part(QStyle::SubControl control) const {
        QStyleOptionSlider option;
        initStyleOption(&option);
        return style()->subControlRect(QStyle::CC_Slider, &option, control, this);
    }
};

/// A slider in a sheet that scrolls.
class SliderTest : public testing::Test {
protected:
    SliderTest() {
        auto* sheet = new QWidget;
        auto* layout = new QVBoxLayout(sheet);
        layout->addWidget(other);
        layout->addWidget(slider);
        layout->addSpacing(2000);
        area.setWidget(sheet);
        area.setWidgetResizable(true);
        area.resize(500, 300);
    }

    void showWindow() {
        ASSERT_TRUE(fake::showActive(area));
        other->setFocus();
        ASSERT_GT(slider->width(), 300);
    }

    /// The middle of the knob's line, this part of the way along the groove.
    QPoint along(double part) const {
        const QRect groove = slider->groove();
        return {groove.left() + static_cast<int>(part * groove.width()), slider->knob().center().y()};
    }

    void expectExactly(float value) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(slider->floatValue()), std::bit_cast<std::uint32_t>(value)) << value;
    }

    QScrollArea area;
    QLineEdit* other = new QLineEdit;
    LookedAtSlider* slider = new LookedAtSlider;
};

TEST_F(SliderTest, GivesBackTheFloatItWasGivenBitForBit) {
    slider->setMinimumValue(0.2);
    slider->setMaximumValue(2.0);
    for (const float value : {0.1234567F, 0.38F, 1.0F / 3.0F, 0.2F, 2.0F, 1e-30F, -0.0F}) {
        slider->setFloatValue(value);
        expectExactly(value);
    }
}

TEST_F(SliderTest, ShownAndFocusedItStillGivesItBack) {
    slider->setFloatValue(0.1234567F);
    showWindow();
    slider->setFocus();
    area.resize(600, 300);
    QApplication::processEvents();
    other->setFocus();
    expectExactly(0.1234567F);
}

TEST_F(SliderTest, KeepsValuesOutsideItsRangeWithItsKnobAtTheNearestEnd) {
    for (const float value : {1.0000001F, 7.5F, std::numeric_limits<float>::infinity()}) {
        slider->setFloatValue(value);
        EXPECT_EQ(slider->value(), slider->maximum());
        expectExactly(value);
    }
    for (const float value : {-1e-9F, -3.0F, -std::numeric_limits<float>::infinity()}) {
        slider->setFloatValue(value);
        EXPECT_EQ(slider->value(), slider->minimum());
        expectExactly(value);
    }
}

TEST_F(SliderTest, KeepsWhatIsNoNumber) {
    slider->setFloatValue(0.5F);
    const float value = std::bit_cast<float>(0x7FC00123U);
    slider->setFloatValue(value);
    EXPECT_EQ(slider->value(), slider->minimum());
    expectExactly(value);
}

TEST_F(SliderTest, ItsKnobStandsWhereTheValueIs) {
    slider->setMinimumValue(-1.0);
    slider->setMaximumValue(3.0);
    slider->setFloatValue(0.0F);
    EXPECT_EQ(slider->value(), 25) << "per cent";
}

TEST_F(SliderTest, ARangeThatComesAfterTheValueMovesTheKnobAndKeepsTheValue) {
    slider->setFloatValue(0.7F);
    slider->setProperty("maximumValue", 1.4);
    slider->setProperty("minimumValue", 0.0);
    EXPECT_EQ(slider->value(), 50);
    expectExactly(0.7F);
    EXPECT_EQ(slider->property("maximumValue").toDouble(), 1.4);
    EXPECT_EQ(slider->property("minimumValue").toDouble(), 0.0);
}

TEST_F(SliderTest, AnEmptyRangeDoesNoHarm) {
    slider->setMinimumValue(0.5);
    slider->setMaximumValue(0.5);
    slider->setFloatValue(0.5F);
    expectExactly(0.5F);
}

TEST_F(SliderTest, AKeyMovesItFromWhereItStands) {
    showWindow();
    slider->setFocus();
    slider->setFloatValue(0.4F);
    QTest::keyClick(slider, Qt::Key_Right);
    EXPECT_FLOAT_EQ(slider->floatValue(), 0.41F);
    QTest::keyClick(slider, Qt::Key_PageUp);
    EXPECT_FLOAT_EQ(slider->floatValue(), 0.51F);
}

TEST_F(SliderTest, TheEndKeysGiveTheEndsExactly) {
    slider->setMinimumValue(0.1);
    slider->setMaximumValue(1.7);
    slider->setFloatValue(0.1234567F);
    showWindow();
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_End);
    expectExactly(1.7F);
    QTest::keyClick(slider, Qt::Key_Home);
    expectExactly(0.1F);
}

TEST_F(SliderTest, AKeyThatCannotMoveItKeepsItsValue) {
    showWindow();
    slider->setFocus();
    slider->setFloatValue(7.5F);
    QTest::keyClick(slider, Qt::Key_Right);
    expectExactly(7.5F);
    QTest::keyClick(slider, Qt::Key_Left);
    EXPECT_FLOAT_EQ(slider->floatValue(), 0.99F);
}

TEST_F(SliderTest, PressingTheKnobAloneMovesNothing) {
    showWindow();
    slider->setFloatValue(0.1234567F);
    QTest::mouseClick(slider, Qt::LeftButton, {}, slider->knob().center());
    expectExactly(0.1234567F);
}

TEST_F(SliderTest, DraggingTheKnobMovesIt) {
    showWindow();
    slider->setFloatValue(0.1234567F);
    QTest::mousePress(slider, Qt::LeftButton, {}, slider->knob().center());
    QTest::mouseMove(slider, along(0.5));
    EXPECT_NEAR(slider->floatValue(), 0.5F, 0.02F);
    QTest::mouseMove(slider, QPoint(slider->width() + 100, 5));
    expectExactly(1.0F);
    QTest::mouseRelease(slider, Qt::LeftButton, {}, along(1.0));
    expectExactly(1.0F);
}

TEST_F(SliderTest, AClickBesideTheKnobBringsItThere) {
    showWindow();
    for (const double part : {0.75, 0.25, 0.5}) {
        QTest::mouseClick(slider, Qt::LeftButton, {}, along(part));
        EXPECT_NEAR(slider->floatValue(), part, 0.02) << part;
        EXPECT_NEAR(slider->knob().center().x(), along(part).x(), 1) << part;
    }
}

TEST_F(SliderTest, AClickAboveOrBelowItsLineCountsToo) {
    showWindow();
    QTest::mouseClick(slider, Qt::LeftButton, {}, QPoint(along(0.75).x(), 0));
    EXPECT_NEAR(slider->floatValue(), 0.75F, 0.02F);
    QTest::mouseClick(slider, Qt::LeftButton, {}, QPoint(along(0.25).x(), slider->height() - 1));
    EXPECT_NEAR(slider->floatValue(), 0.25F, 0.02F);
}

TEST_F(SliderTest, FromAClickBesideTheKnobItCanBeDraggedOn) {
    showWindow();
    QTest::mousePress(slider, Qt::LeftButton, {}, along(0.75));
    QTest::mouseMove(slider, along(0.3));
    EXPECT_NEAR(slider->floatValue(), 0.3F, 0.02F);
    QTest::mouseRelease(slider, Qt::LeftButton, {}, along(0.3));
}

TEST_F(SliderTest, InALayoutFromRightToLeftAClickBringsTheKnobThereToo) {
    slider->setLayoutDirection(Qt::RightToLeft);
    showWindow();
    QTest::mouseClick(slider, Qt::LeftButton, {}, along(0.75));
    EXPECT_NEAR(slider->floatValue(), 0.25F, 0.02F);
}

TEST_F(SliderTest, TheRightButtonMovesNothing) {
    showWindow();
    slider->setFloatValue(0.1234567F);
    QTest::mouseClick(slider, Qt::RightButton, {}, along(0.75));
    expectExactly(0.1234567F);
}

TEST_F(SliderTest, WithoutTheFocusTheWheelScrollsTheSheetInstead) {
    showWindow();
    slider->setFloatValue(0.1234567F);
    fake::turnWheel(*slider, -1);
    expectExactly(0.1234567F);
    EXPECT_TRUE(other->hasFocus());
    EXPECT_GT(area.verticalScrollBar()->value(), 0);
}

TEST_F(SliderTest, WithTheFocusTheWheelMovesIt) {
    showWindow();
    slider->setFloatValue(0.5F);
    slider->setFocus();
    fake::turnWheel(*slider, 1);
    EXPECT_GT(slider->floatValue(), 0.5F);
    EXPECT_LT(slider->floatValue(), 0.6F);
}

}  // namespace
