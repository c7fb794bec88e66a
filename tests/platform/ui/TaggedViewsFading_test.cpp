// What faded views look like on the screen.
#include "platform/ui/TaggedViews.hpp"

#include "tests/support/ShownWindow.hpp"

#include <gtest/gtest.h>

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <algorithm>
#include <cmath>

namespace {

using platform::setAlphaValue;

/// On white a red view, in that a blue one, in that a green one. All three paint every pixel of themselves.
class TaggedViewsFading : public testing::Test {
protected:
    TaggedViewsFading() {
        fill(window, Qt::white);
        window.resize(300, 300);
        red = filled(window, QRect(20, 20, 260, 260), Qt::red);
        blue = filled(*red, QRect(20, 20, 200, 200), Qt::blue);
        green = filled(*blue, QRect(20, 20, 100, 100), Qt::green);
    }

    void SetUp() override {
        ASSERT_TRUE(fake::showActive(window));
        expect(Qt::red, Qt::blue, Qt::green);
    }

    static void fill(QWidget& view, const QColor& color) {
        QPalette palette = view.palette();
        palette.setColor(QPalette::Window, color);
        view.setPalette(palette);
        view.setAutoFillBackground(true);
    }

    static QWidget* filled(QWidget& parent, const QRect& place, const QColor& color) {
        auto* view = new QWidget(&parent);
        view->setGeometry(place);
        fill(*view, color);
        return view;
    }

    QColor pixelAt(const QPoint& place) {
        const QImage picture = fake::pictureOf(window);
        return picture.pixelColor(place * window.devicePixelRatioF());
    }

    static void expectNear(const QColor& seen, const QColor& expected) {
        const int difference =
            std::max({std::abs(seen.red() - expected.red()), std::abs(seen.green() - expected.green()),
                      std::abs(seen.blue() - expected.blue())});
        EXPECT_LE(difference, 3) << seen.name().toStdString() << " is not " << expected.name().toStdString();
    }

    /// Where each of the three can be seen, and where they are from there.
    void expect(const QColor& onRed, const QColor& onBlue, const QColor& onGreen) {
        expectNear(pixelAt({30, 30}), onRed);
        expectNear(pixelAt({50, 50}), onBlue);
        expectNear(pixelAt({100, 100}), onGreen);
        expectNear(pixelAt({230, 230}), onBlue);
        expectNear(pixelAt({10, 10}), Qt::white);
    }

    static QColor mix(const QColor& front, double alpha, const QColor& back) {
        const auto channel = [alpha](int f, int b) {
            return static_cast<int>(std::lround(alpha * f + (1.0 - alpha) * b));
        };
        return {channel(front.red(), back.red()), channel(front.green(), back.green()),
                channel(front.blue(), back.blue())};
    }
    /// The blue view at this opacity within the red one, and this in turn on white.
    static QColor mixBoth(const QColor& front, double inner, double outer) {
        return mix(mix(front, inner, Qt::red), outer, Qt::white);
    }

    QWidget window;
    QWidget* red = nullptr;
    QWidget* blue = nullptr;
    QWidget* green = nullptr;
};

TEST_F(TaggedViewsFading, AViewFadesWithAllThatIsInIt) {
    for (const double alpha : {0.75, 0.5, 0.25, 0.0}) {
        setAlphaValue(*red, alpha);
        expect(mix(Qt::red, alpha, Qt::white), mix(Qt::blue, alpha, Qt::white), mix(Qt::green, alpha, Qt::white));
    }
    setAlphaValue(*red, 1.0);
    expect(Qt::red, Qt::blue, Qt::green);
}

TEST_F(TaggedViewsFading, AViewFadesWithinAnother) {
    setAlphaValue(*blue, 0.5);
    expect(Qt::red, mix(Qt::blue, 0.5, Qt::red), mix(Qt::green, 0.5, Qt::red));
}

TEST_F(TaggedViewsFading, AFadedViewFadesWithinAFadedOne) {
    for (const auto& [outer, inner] : {std::pair{0.5, 0.5}, {0.5, 0.25}, {0.25, 0.75}, {0.75, 0.0}, {0.75, 1.0}}) {
        setAlphaValue(*red, outer);
        setAlphaValue(*blue, inner);
        expect(mix(Qt::red, outer, Qt::white), mixBoth(Qt::blue, inner, outer), mixBoth(Qt::green, inner, outer));
    }
}

TEST_F(TaggedViewsFading, TheOuterViewReturnsWhileTheInnerOneStaysFaded) {
    setAlphaValue(*red, 0.5);
    setAlphaValue(*blue, 0.5);
    setAlphaValue(*red, 1.0);
    expect(Qt::red, mix(Qt::blue, 0.5, Qt::red), mix(Qt::green, 0.5, Qt::red));
    setAlphaValue(*blue, 1.0);
    expect(Qt::red, Qt::blue, Qt::green);
}

TEST_F(TaggedViewsFading, TheInnerViewReturnsWhileTheOuterOneStaysFaded) {
    setAlphaValue(*blue, 0.5);
    setAlphaValue(*red, 0.5);
    setAlphaValue(*blue, 1.0);
    expect(mix(Qt::red, 0.5, Qt::white), mix(Qt::blue, 0.5, Qt::white), mix(Qt::green, 0.5, Qt::white));
}

TEST_F(TaggedViewsFading, ThreeFadedViewsOneInTheOther) {
    setAlphaValue(*red, 0.5);
    setAlphaValue(*blue, 0.5);
    setAlphaValue(*green, 0.5);
    expect(mix(Qt::red, 0.5, Qt::white), mixBoth(Qt::blue, 0.5, 0.5), mixBoth(mix(Qt::green, 0.5, Qt::blue), 0.5, 0.5));
}

TEST_F(TaggedViewsFading, AViewThatChangesWhileItIsWithinFadedOnesShowsTheChange) {
    setAlphaValue(*red, 0.5);
    setAlphaValue(*blue, 0.5);
    expect(mix(Qt::red, 0.5, Qt::white), mixBoth(Qt::blue, 0.5, 0.5), mixBoth(Qt::green, 0.5, 0.5));
    fill(*green, Qt::yellow);
    expect(mix(Qt::red, 0.5, Qt::white), mixBoth(Qt::blue, 0.5, 0.5), mixBoth(Qt::yellow, 0.5, 0.5));
    fill(*blue, Qt::black);
    expect(mix(Qt::red, 0.5, Qt::white), mixBoth(Qt::black, 0.5, 0.5), mixBoth(Qt::yellow, 0.5, 0.5));
}

TEST_F(TaggedViewsFading, AControlThatIsUsedWithinFadedViewsIsDrawnAsItWouldBeAtOnce) {
    auto* box = new QCheckBox("clouds", blue);
    box->setGeometry(10, 150, 150, 40);
    box->show();
    setAlphaValue(*red, 0.5);
    setAlphaValue(*blue, 0.5);
    const QImage unchecked = fake::pictureOf(window);
    box->click();
    const QImage checked = fake::pictureOf(window);
    EXPECT_NE(checked, unchecked);
    window.update();
    EXPECT_EQ(fake::pictureOf(window), checked) << "drawing everything anew changes nothing";
    box->click();
    window.update();
    EXPECT_EQ(fake::pictureOf(window), unchecked);
}

TEST_F(TaggedViewsFading, AFadedViewCanBeHiddenAndShown) {
    setAlphaValue(*red, 0.5);
    setAlphaValue(*blue, 0.5);
    platform::setHidden(*blue, true);
    const QColor faded = mix(Qt::red, 0.5, Qt::white);
    expect(faded, faded, faded);
    platform::setHidden(*blue, false);
    expect(faded, mixBoth(Qt::blue, 0.5, 0.5), mixBoth(Qt::green, 0.5, 0.5));
}

TEST_F(TaggedViewsFading, FadedViewsThatLieOnEachOtherShowThrough) {
    QWidget* black = filled(window, red->geometry(), Qt::black);
    black->show();
    setAlphaValue(*red, 0.5);
    setAlphaValue(*black, 0.5);
    expectNear(pixelAt({30, 30}), mix(Qt::black, 0.5, mix(Qt::red, 0.5, Qt::white)));
    expectNear(pixelAt({100, 100}), mix(Qt::black, 0.5, mix(Qt::green, 0.5, Qt::white)));
}

TEST_F(TaggedViewsFading, AGrabShowsTheSame) {
    setAlphaValue(*red, 0.5);
    setAlphaValue(*blue, 0.25);
    const QImage grabbed = window.grab().toImage();
    expectNear(grabbed.pixelColor(QPoint(50, 50) * window.devicePixelRatioF()), mixBoth(Qt::blue, 0.25, 0.5));
    expectNear(grabbed.pixelColor(QPoint(100, 100) * window.devicePixelRatioF()), mixBoth(Qt::green, 0.25, 0.5));
}

}  // namespace
