#include "host/Dismissal.hpp"

#include <gtest/gtest.h>

#include <QtGui/QFocusEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <vector>

namespace {

using host::Dismissal;
using namespace std::chrono_literals;

constexpr std::chrono::milliseconds someTime = 5s;

QKeyEvent keyEvent(QEvent::Type type, bool isRepeated = false) {
    return QKeyEvent(type, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), isRepeated);
}

/// On a screen whose window has its top left corner at `corner`.
QMouseEvent mouseEvent(QEvent::Type type, QPointF desktopPlace, QPointF corner = {}) {
    const bool isMove = type == QEvent::MouseMove;
    return QMouseEvent(type, desktopPlace - corner, desktopPlace, isMove ? Qt::NoButton : Qt::LeftButton, Qt::NoButton,
                       Qt::NoModifier);
}

TEST(Dismissal, AKeyAsksForIt) {
    EXPECT_TRUE(Dismissal().isAskedForBy(keyEvent(QEvent::KeyPress), someTime));
}

TEST(Dismissal, AKeyThatWasHeldDownBeforeDoesNot) {
    EXPECT_FALSE(Dismissal().isAskedForBy(keyEvent(QEvent::KeyPress, true), someTime));
    EXPECT_FALSE(Dismissal().isAskedForBy(keyEvent(QEvent::KeyRelease), someTime));
}

TEST(Dismissal, AButtonAsksForItButNotItsRelease) {
    EXPECT_TRUE(Dismissal().isAskedForBy(mouseEvent(QEvent::MouseButtonPress, {5, 5}), someTime));
    EXPECT_TRUE(Dismissal().isAskedForBy(mouseEvent(QEvent::MouseButtonDblClick, {5, 5}), someTime));
    EXPECT_FALSE(Dismissal().isAskedForBy(mouseEvent(QEvent::MouseButtonRelease, {5, 5}), someTime));
}

TEST(Dismissal, ATouchAsksForIt) {
    EXPECT_TRUE(Dismissal().isAskedForBy(QEvent(QEvent::TouchBegin), someTime));
}

TEST(Dismissal, NothingElseThatWindowsAreToldAsksForIt) {
    Dismissal dismissal;
    for (const QEvent::Type type :
         {QEvent::FocusIn, QEvent::FocusOut, QEvent::WindowActivate, QEvent::WindowDeactivate, QEvent::Enter,
          QEvent::Leave, QEvent::Show, QEvent::Hide, QEvent::Expose, QEvent::Resize, QEvent::Move, QEvent::Close,
          QEvent::ScreenChangeInternal, QEvent::CursorChange, QEvent::WindowStateChange, QEvent::ApplicationStateChange,
          QEvent::ShortcutOverride, QEvent::TouchEnd, QEvent::TouchCancel}) {
        EXPECT_FALSE(dismissal.isAskedForBy(QEvent(type), someTime)) << type;
    }
}

TEST(Dismissal, ThePointerThatAWindowIsMappedUnderDoesNot) {
    Dismissal dismissal;
    EXPECT_FALSE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {960, 540}), 0ms));
    EXPECT_FALSE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {960, 540}), 1ms));
    EXPECT_FALSE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {963, 541}), 2ms));
}

TEST(Dismissal, AMovedPointerAsksForIt) {
    Dismissal dismissal;
    dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {960, 540}), 0ms);
    EXPECT_TRUE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {968, 548}), 100ms));
}

TEST(Dismissal, APointerThatTremblesFromOneScreenToTheNextDoesNot) {
    Dismissal dismissal;
    const QPointF secondScreen(1920, 0);
    EXPECT_FALSE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {1918, 540}), 0ms));
    EXPECT_FALSE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {1921, 540}, secondScreen), 10ms));
    EXPECT_FALSE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {1917, 540}), 20ms));
    EXPECT_TRUE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {1930, 540}, secondScreen), 30ms));
}

TEST(Dismissal, APointerThatAScreenThatWentHasMovedDoesNot) {
    Dismissal dismissal;
    dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {2500, 540}), 0ms);
    dismissal.screensChanged();
    EXPECT_FALSE(dismissal.isAskedForBy(mouseEvent(QEvent::MouseMove, {1919, 540}), 1ms));
}

}  // namespace
