// What people see of the sheet while its groups fade, one within the other.
#include "tests/saver/SheetTest.hpp"

#include <algorithm>
#include <cmath>

namespace {

/// Where the groups lie that take each other's place, and what all of it can look like.
class QZLCirraneFadingPicture : public SheetTest {
protected:
    QZLCirraneFadingPicture() {
        open();
        button("close").setFocus();  // nothing that fades has a focus to show
        click(view<QLabel>("heading"), Qt::MetaModifier);
        timers.tick(12);
        empty = seen();
        timers.tick(16);
        extra = seen();
        click(view<QLabel>("extraBack"));
        timers.tick(28);
        ordinary = seen();
    }

    QImage seen() { return fake::pictureOf(window()).convertToFormat(QImage::Format_RGB32); }

    /// The place of a view in pictures of its window.
    QRect placeOf(const char* name) {
        const QWidget& place = view<QWidget>(name);
        const double scale = window().devicePixelRatioF();
        const QPoint corner = place.mapTo(&window(), QPoint());
        return {QPointF(QPointF(corner) * scale).toPoint(), QSizeF(QSizeF(place.size()) * scale).toSize()};
    }

    /// Calls with the same part of a pixel's colour in two pictures and in the empty one.
    template <typename Call>
    void forEachPart(const QImage& one, const QImage& other, const QRect& place, const Call& call) const {
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x) {
                const QRgb a = one.pixel(x, y);
                const QRgb b = other.pixel(x, y);
                const QRgb none = empty.pixel(x, y);
                call(qRed(a), qRed(b), qRed(none));
                call(qGreen(a), qGreen(b), qGreen(none));
                call(qBlue(a), qBlue(b), qBlue(none));
            }
        }
    }

    /// The greatest difference, of 255, between a picture and how a group looks at this opacity.
    double difference(const QImage& picture, const QImage& group, double opacity, const QRect& place) const {
        double greatest = 0.0;
        forEachPart(picture, group, place, [&](int shown, int whole, int none) {
            greatest = std::max(greatest, std::abs(shown - (none + opacity * (whole - none))));
        });
        return greatest;
    }

    /// How clear a group is in a picture by and large, from 0 to 1.
    double clarity(const QImage& picture, const QImage& group, const QRect& place) const {
        double sum = 0.0;
        double wholeSum = 0.0;
        forEachPart(picture, group, place, [&](int shown, int whole, int none) {
            sum += std::abs(shown - none);
            wholeSum += std::abs(whole - none);
        });
        return sum / wholeSum;
    }

    /// So many ticks after the extra group was called for, in settings of this opacity.
    void expectDue(int tick, double settings) {
        const QImage picture = seen();
        const bool isOrdinary = tick < 18;
        const QImage& group = isOrdinary ? ordinary : extra;
        const QRect place = placeOf(isOrdinary ? "ordinary" : "extra");
        const double fade = isOrdinary ? std::max(0.0, 1.0 - tick / 9.0) : (tick - 18) / 9.0;
        const double opacity = settings * (isOrdinary ? fade : fade * fade);  // the extra group's views fade in it, too
        EXPECT_NEAR(clarity(picture, group, place), opacity, 0.03) << tick;
        // At other scales Qt draws faded views up to a pixel aside.
        const double scale = window().devicePixelRatioF();
        if (scale == std::round(scale)) {
            EXPECT_LE(difference(picture, group, opacity, place), rounding) << tick;
        }
    }

    static constexpr double rounding = 3.0;  // of three layers

    QImage empty;     // neither group
    QImage extra;     // the extra group
    QImage ordinary;  // the ordinary group
};

TEST_F(QZLCirraneFadingPicture, TheGroupsAreAsClearAsTheirOpacitiesSay) {
    click(view<QLabel>("heading"), Qt::MetaModifier);
    for (int tick = 1; tick < 28; ++tick) {
        timers.tick();
        expectDue(tick, 1.0);
    }
}

TEST_F(QZLCirraneFadingPicture, WhileTheDedicationBeginsTheyAreTheFainterAndTheHeaderIsNot) {
    click(view<QLabel>("heading"), Qt::MetaModifier);
    click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
    const QImage header = seen().copy(placeOf("header"));
    for (int tick = 1; tick < 28; ++tick) {
        timers.tick();
        expectDue(tick, 1.0 - tick / 48.0);
        EXPECT_EQ(seen().copy(placeOf("header")), header) << tick;
    }
}

TEST_F(QZLCirraneFadingPicture, WhenAllIsOverTheSheetLooksAsBefore) {
    click(view<QLabel>("heading"), Qt::MetaModifier);
    click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
    timers.tick(723);
    EXPECT_EQ(seen(), extra);
    click(view<QLabel>("extraBack"));
    timers.tick(28);
    EXPECT_EQ(seen(), ordinary);
    EXPECT_NE(ordinary, extra);
}

}  // namespace
