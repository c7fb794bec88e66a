// The sheet's hidden animations, by mouse and keyboard.
#include "tests/saver/SheetTest.hpp"

namespace {

constexpr int ticksOfExtra = 28;
constexpr int ticksOfDedication = 723;  // 24.1 seconds of 30 ticks

class QZLCirraneEasterEggs : public SheetTest {
protected:
    QZLCirraneEasterEggs() { open(); }

    QLabel& version() { return view<QLabel>("_appVersionCopyright"); }
    QLabel& heading() { return view<QLabel>("heading"); }
    QLabel& back() { return view<QLabel>("extraBack"); }

    /// Of the four keys that are compared, none to all of them.
    static std::vector<Qt::KeyboardModifiers> everyCombination() {
        std::vector<Qt::KeyboardModifiers> combinations{Qt::NoModifier};
        for (const auto key : {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
            for (const auto without : std::vector(combinations)) {
                combinations.push_back(without | key);
            }
        }
        return combinations;
    }

    void showExtra() {
        click(heading(), Qt::MetaModifier);
        timers.tick(ticksOfExtra);
        ASSERT_TRUE(areHidden(100, 117) && areShown(200, 203));
    }
    /// Ticks until nothing runs, and says how often that was.
    int tickToTheEnd() {
        int ticks = 0;
        while (timers.runningTimers() > 0 && ticks < 10'000) {
            timers.tick();
            ++ticks;
        }
        return ticks;
    }
};

TEST_F(QZLCirraneEasterEggs, AtFirstOnlyTheOrdinaryContentIsShown) {
    EXPECT_TRUE(areShown(100, 117));
    EXPECT_TRUE(areShown(300, 304));
    EXPECT_TRUE(areHidden(200, 203));
    EXPECT_TRUE(areHidden(400, 404));
    EXPECT_EQ(timers.runningTimers(), 0U);
}

TEST_F(QZLCirraneEasterEggs, AnOptionClickPlaysTheDedicationAndBringsAllBack) {
    click(version(), Qt::AltModifier);
    EXPECT_EQ(timers.runningTimers(), 1U);
    timers.tick(60);
    EXPECT_TRUE(areHidden(300, 304));
    timers.tick(60);
    EXPECT_TRUE(areShown(400, 401));
    click(version(), Qt::AltModifier);
    EXPECT_EQ(timers.runningTimers(), 1U) << "it runs already";
    EXPECT_EQ(120 + tickToTheEnd(), ticksOfDedication);
    EXPECT_TRUE(areShown(300, 304));
    EXPECT_TRUE(areHidden(400, 404));
}

TEST_F(QZLCirraneEasterEggs, OnlyOptionAlonePlaysTheDedication) {
    for (const Qt::KeyboardModifiers keys : everyCombination()) {
        click(version(), keys);
        EXPECT_EQ(timers.runningTimers(), keys == Qt::AltModifier ? 1U : 0U) << keys.toInt();
        tickToTheEnd();
    }
}

TEST_F(QZLCirraneEasterEggs, OnlyCommandAloneShowsTheExtraGroup) {
    for (const Qt::KeyboardModifiers keys : everyCombination()) {
        click(heading(), keys);
        EXPECT_EQ(timers.runningTimers(), keys == Qt::MetaModifier ? 1U : 0U) << keys.toInt();
        tickToTheEnd();
    }
    EXPECT_TRUE(areHidden(100, 117) && areShown(200, 203));
}

TEST_F(QZLCirraneEasterEggs, WhateverKeysAreHeldAClickHidesTheExtraGroup) {
    for (const Qt::KeyboardModifiers keys : everyCombination()) {
        showExtra();
        click(back(), keys);
        EXPECT_EQ(timers.runningTimers(), 1U) << keys.toInt();
        tickToTheEnd();
        EXPECT_TRUE(areShown(100, 117) && areHidden(200, 203)) << keys.toInt();
    }
}

TEST_F(QZLCirraneEasterEggs, ACommandClickShowsTheExtraGroupAndAnyClickHidesIt) {
    click(heading(), Qt::AltModifier);
    click(heading());
    EXPECT_EQ(timers.runningTimers(), 0U);
    showExtra();
    click(back());
    timers.tick(ticksOfExtra);
    EXPECT_TRUE(areShown(100, 117));
    EXPECT_TRUE(areHidden(200, 203));
}

TEST_F(QZLCirraneEasterEggs, NothingIsShownOrHiddenWhileTheOtherAnimationRuns) {
    showExtra();
    click(back());
    timers.tick(3);
    click(heading(), Qt::MetaModifier);
    EXPECT_EQ(timers.runningTimers(), 1U);
    controller->startHideExtraEasterEgg();
    EXPECT_EQ(timers.runningTimers(), 1U);
    tickToTheEnd();
    EXPECT_TRUE(areShown(100, 117));
}

TEST_F(QZLCirraneEasterEggs, TheDedicationPlaysWhileTheExtraGroupFades) {
    click(heading(), Qt::MetaModifier);
    timers.tick(3);
    click(version(), Qt::AltModifier);
    EXPECT_EQ(timers.runningTimers(), 2U);
    tickToTheEnd();
    EXPECT_TRUE(areShown(200, 203));
    EXPECT_TRUE(areShown(300, 304));
    EXPECT_TRUE(areHidden(400, 404));
}

TEST_F(QZLCirraneEasterEggs, TheKeyboardStartsThemToo) {
    version().setFocus();
    QTest::keyClick(&version(), Qt::Key_Return);
    QTest::keyClick(&version(), Qt::Key_Space);
    EXPECT_EQ(timers.runningTimers(), 0U);
    QTest::keyClick(&version(), Qt::Key_Return, Qt::AltModifier);
    EXPECT_EQ(timers.runningTimers(), 1U);
    tickToTheEnd();
    heading().setFocus();
    QTest::keyClick(&heading(), Qt::Key_Return, Qt::MetaModifier);
    tickToTheEnd();
    EXPECT_TRUE(areShown(200, 203));
    back().setFocus();
    QTest::keyClick(&back(), Qt::Key_Space);
    tickToTheEnd();
    EXPECT_TRUE(areShown(100, 117));
    EXPECT_TRUE(window().isVisible()) << "Return on a trigger does not close the sheet";
}

TEST_F(QZLCirraneEasterEggs, ClosedAtAnyMomentOfTheDedicationTheSheetHasItsContentBack) {
    for (int ticks = 1; ticks < ticksOfDedication; ticks += 30) {
        open();
        click(version(), Qt::AltModifier);
        timers.tick(ticks);
        QTest::keyClick(&window(), Qt::Key_Escape);
        EXPECT_FALSE(window().isVisible()) << ticks;
        EXPECT_EQ(timers.runningTimers(), 0U) << ticks;
        EXPECT_TRUE(areShown(300, 304)) << ticks;
        EXPECT_TRUE(areHidden(400, 404)) << ticks;
    }
}

TEST_F(QZLCirraneEasterEggs, ClosedWhileTheExtraGroupIsShownItStaysShown) {
    click(heading(), Qt::MetaModifier);
    timers.tick(12);
    click(button("close"));
    EXPECT_TRUE(areShown(200, 203));
    EXPECT_TRUE(areHidden(100, 117));
}

TEST_F(QZLCirraneEasterEggs, NothingMovesWhenViewsAreHidden) {
    const QSize size = window().size();
    const QRect close = button("close").geometry();
    showExtra();
    QApplication::processEvents();
    EXPECT_EQ(window().size(), size);
    EXPECT_EQ(button("close").geometry(), close);
    click(version(), Qt::AltModifier);
    timers.tick(100);
    QApplication::processEvents();
    EXPECT_EQ(window().size(), size);
    EXPECT_EQ(button("close").geometry(), close);
}

}  // namespace
