// The hidden animations, tick by tick: which views can be seen, and how clearly.
#include "tests/saver/SheetTest.hpp"

#include <span>

namespace {

/// A fade as it is to be. A tick is a thirtieth of a second, and time is the sum of such thirtieths: where that falls a
/// hair short of the start or the end of a fade, this comes a tick later.
struct Fade {
    double start;     // seconds
    double duration;  // seconds
    bool appears;
    std::int32_t firstTag;
    std::int32_t lastTag;
    int firstTick;  // when it shows first
    int lastTick;   // when it is whole, or gone
};

constexpr Fade dedication[] = {
    {0.0, 1.6, false, 300, 304, 1, 48},     {2.1, 1.6, true, 400, 401, 63, 112},
    {5.1, 1.6, false, 401, 401, 154, 202},  {7.2, 1.6, true, 402, 402, 217, 265},
    {10.2, 1.6, false, 402, 402, 307, 355}, {12.3, 1.6, true, 403, 403, 370, 418},
    {15.3, 1.6, false, 403, 403, 460, 508}, {17.4, 1.6, true, 404, 404, 522, 570},
    {20.4, 1.6, false, 404, 404, 612, 660}, {20.4, 1.6, false, 400, 400, 612, 660},
    {22.5, 1.6, true, 300, 304, 675, 723},
};
constexpr Fade extraShow[] = {{0.0, 0.3, false, 100, 117, 1, 9}, {0.6, 0.3, true, 200, 203, 18, 28}};
constexpr Fade extraHide[] = {{0.0, 0.3, false, 200, 203, 1, 9}, {0.6, 0.3, true, 100, 117, 18, 28}};

/// How clearly a view is to be seen. One that has just begun to appear has no opacity yet, but is not hidden.
struct Clarity {
    bool isHidden;
    double alpha;
};

class QZLCirraneDedication : public SheetTest {
protected:
    QZLCirraneDedication() { open(); }

    /// After so many ticks, for a view that was shown, or not, at first.
    static Clarity clarityAfter(int ticks, std::int32_t tag, bool wasShown, std::span<const Fade> fades) {
        Clarity clarity{!wasShown, 1.0};
        for (const Fade& fade : fades) {
            if (tag < fade.firstTag || tag > fade.lastTag || ticks < fade.firstTick) {
                continue;
            }
            const double progress = (ticks / 30.0 - fade.start) / fade.duration;
            const bool isOver = ticks >= fade.lastTick;
            clarity = {isOver && !fade.appears, isOver ? 1.0 : (fade.appears ? progress : 1.0 - progress)};
        }
        return clarity;
    }

    void expectClarity(int ticks, std::int32_t first, std::int32_t last, bool wereShown, std::span<const Fade> fades) {
        for (std::int32_t tag = first; tag <= last; ++tag) {
            const Clarity expected = clarityAfter(ticks, tag, wereShown, fades);
            EXPECT_EQ(isHidden(tag), expected.isHidden) << "view " << tag << ", tick " << ticks;
            if (!expected.isHidden) {
                EXPECT_NEAR(platform::alphaValue(*platform::viewWithTag(&window(), tag)), expected.alpha, 1e-9)
                    << "view " << tag << ", tick " << ticks;
            }
        }
    }
};

TEST_F(QZLCirraneDedication, ShowsAtEveryTickWhatIsDueAsClearlyAsIsDue) {
    click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
    for (int tick = 0; tick <= 723; ++tick) {
        expectClarity(tick, 300, 304, true, dedication);
        expectClarity(tick, 400, 404, false, dedication);
        ASSERT_EQ(timers.runningTimers(), tick < 723 ? 1U : 0U) << tick;
        timers.tick();
    }
    EXPECT_TRUE(areShown(100, 117) && areHidden(200, 203)) << "nothing else has changed";
}

TEST_F(QZLCirraneDedication, TheExtraGroupComesAndGoesOnTheTicksThatAreDue) {
    click(view<QLabel>("heading"), Qt::MetaModifier);
    for (int tick = 0; tick <= 28; ++tick) {
        expectClarity(tick, 100, 117, true, extraShow);
        expectClarity(tick, 200, 203, false, extraShow);
        ASSERT_EQ(timers.runningTimers(), tick < 28 ? 1U : 0U) << tick;
        timers.tick();
    }
    click(view<QLabel>("extraBack"));
    for (int tick = 0; tick <= 28; ++tick) {
        expectClarity(tick, 200, 203, true, extraHide);
        expectClarity(tick, 100, 117, false, extraHide);
        ASSERT_EQ(timers.runningTimers(), tick < 28 ? 1U : 0U) << tick;
        timers.tick();
    }
    EXPECT_TRUE(areShown(300, 304) && areHidden(400, 404)) << "nothing else has changed";
}

TEST_F(QZLCirraneDedication, AThirtiethOfASecondPassesWithEveryTick) {
    click(view<QLabel>("_appVersionCopyright"), Qt::AltModifier);
    EXPECT_EQ(timers.intervals(), std::vector<double>{1.0 / 30.0});
}

}  // namespace
