#include "platform/ui/TaggedViews.hpp"

#include "tests/support/ShownWindow.hpp"

#include <gtest/gtest.h>

#include <QtCore/QVariant>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>
#include <array>
#include <limits>

namespace {

using platform::viewWithTag;

QWidget* tagged(QWidget* parent, const QVariant& tag) {
    auto* view = new QWidget(parent);
    view->setProperty("tag", tag);
    return view;
}

TEST(ViewWithTag, FindsAViewAtAnyDepth) {
    QWidget root;
    auto* group = new QWidget(&root);
    const QWidget* deep = tagged(new QWidget(group), 101);
    const QWidget* shallow = tagged(&root, 100);
    EXPECT_EQ(viewWithTag(&root, 100), shallow);
    EXPECT_EQ(viewWithTag(&root, 101), deep);
}

TEST(ViewWithTag, ConsidersTheRootItself) {
    QWidget root;
    root.setProperty("tag", 7);
    static_cast<void>(tagged(&root, 7));
    EXPECT_EQ(viewWithTag(&root, 7), &root);
}

TEST(ViewWithTag, OfSeveralTakesTheFirstDepthFirst) {
    QWidget root;
    auto* group = new QWidget(&root);
    const QWidget* first = tagged(group, 5);
    static_cast<void>(tagged(&root, 5));
    EXPECT_EQ(viewWithTag(&root, 5), first);
}

TEST(ViewWithTag, FindsNoneWhereNoneIs) {
    QWidget root;
    static_cast<void>(tagged(&root, 5));
    static_cast<void>(new QWidget(&root));
    EXPECT_EQ(viewWithTag(&root, 6), nullptr);
    EXPECT_EQ(viewWithTag(&root, 0), nullptr) << "a view without a tag has none";
    EXPECT_EQ(viewWithTag(nullptr, 5), nullptr);
}

TEST(ViewWithTag, TakesTagsOfAllThirtyTwoBits) {
    QWidget root;
    const QWidget* lowest = tagged(&root, std::numeric_limits<std::int32_t>::min());
    const QWidget* highest = tagged(&root, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(viewWithTag(&root, std::numeric_limits<std::int32_t>::min()), lowest);
    EXPECT_EQ(viewWithTag(&root, std::numeric_limits<std::int32_t>::max()), highest);
}

TEST(ViewWithTag, AWordIsNoTag) {
    QWidget root;
    static_cast<void>(tagged(&root, "clouds"));
    EXPECT_EQ(viewWithTag(&root, 0), nullptr);
}

TEST(ViewWithTag, DoesNotLookIntoOtherWindows) {
    QWidget root;
    QWidget window(&root, Qt::Dialog);
    static_cast<void>(tagged(&window, 9));
    EXPECT_EQ(viewWithTag(&root, 9), nullptr);
    EXPECT_NE(viewWithTag(&window, 9), nullptr) << "unless it is the root";
}

TEST(AlphaValue, IsOneAtFirst) {
    const QWidget view;
    EXPECT_EQ(platform::alphaValue(view), 1.0);
}

TEST(AlphaValue, IsTheOneThatWasSet) {
    QWidget view;
    for (const double alpha : {0.5, 0.1, 0.0, 1.0 / 3.0, 1.0}) {
        platform::setAlphaValue(view, alpha);
        EXPECT_EQ(platform::alphaValue(view), alpha);
    }
}

TEST(AlphaValue, OutOfRangeCountsAsTheNearestInIt) {
    QWidget view;
    platform::setAlphaValue(view, -0.5);
    EXPECT_EQ(platform::alphaValue(view), 0.0);
    platform::setAlphaValue(view, 1.5);
    EXPECT_EQ(platform::alphaValue(view), 1.0);
    platform::setAlphaValue(view, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(platform::alphaValue(view), 0.0);
}

TEST(AlphaValue, LeavesNoEffectBehindAtOne) {
    QWidget root;
    auto* group = new QWidget(&root);
    auto* opaque = new QWidget(group);
    opaque->setAutoFillBackground(true);
    platform::setAlphaValue(*group, 0.5);
    platform::setAlphaValue(*opaque, 0.5);
    platform::setAlphaValue(*opaque, 1.0);
    platform::setAlphaValue(*group, 1.0);
    EXPECT_EQ(group->graphicsEffect(), nullptr);
    EXPECT_EQ(opaque->graphicsEffect(), nullptr);
}

TEST(AlphaValue, OfAViewIsItsOwnWhateverItIsIn) {
    QWidget root;
    auto* group = new QWidget(&root);
    auto* inner = new QWidget(group);
    inner->setAutoFillBackground(true);
    platform::setAlphaValue(*group, 0.5);
    EXPECT_EQ(platform::alphaValue(*inner), 1.0);
    platform::setAlphaValue(*inner, 0.25);
    platform::setAlphaValue(*group, 1.0);
    EXPECT_EQ(platform::alphaValue(*inner), 0.25);
}

TEST(HiddenViews, AreThoseThatWereHiddenThemselves) {
    QWidget root;
    QWidget group(&root);
    QWidget view(&group);
    EXPECT_FALSE(platform::isHidden(view)) << "not shown yet, with its window";
    platform::setHidden(group, true);
    EXPECT_TRUE(platform::isHidden(group));
    EXPECT_FALSE(platform::isHidden(view));
    root.show();
    EXPECT_FALSE(view.isVisible());
    platform::setHidden(group, false);
    EXPECT_FALSE(platform::isHidden(group));
    EXPECT_TRUE(view.isVisible());
}

TEST(HiddenViews, AViewHiddenBeforeItsWindowIsShownStaysHidden) {
    QWidget root;
    QWidget view(&root);
    platform::setHidden(view, true);
    root.show();
    EXPECT_TRUE(platform::isHidden(view));
    EXPECT_FALSE(view.isVisible());
}

TEST(KeepSpaceOfTaggedViews, LetsNothingElseMoveWhenTheyAreHidden) {
    QWidget root;
    auto* layout = new QVBoxLayout(&root);
    auto* marked = new QLabel("tagged");
    marked->setProperty("tag", 100);
    auto* plain = new QLabel("plain");
    auto* last = new QLabel("last");
    for (QWidget* view : {marked, plain, last}) {
        layout->addWidget(view);
    }
    platform::keepSpaceOfTaggedViews(root);
    ASSERT_TRUE(fake::showActive(root));
    const QRect before = last->geometry();
    const QSize size = root.minimumSizeHint();

    platform::setHidden(*marked, true);
    QApplication::processEvents();
    EXPECT_EQ(last->geometry(), before);
    EXPECT_EQ(root.minimumSizeHint(), size);

    platform::setHidden(*plain, true);
    EXPECT_LT(root.minimumSizeHint().height(), size.height()) << "views without a tag are as ever";
}

/// Two lines of text in views that are hidden and shown.
class HidingViews : public testing::Test {
protected:
    HidingViews() {
        auto* layout = new QVBoxLayout(&window);
        for (QLineEdit*& line : lines) {
            auto* view = new QFrame;
            line = new QLineEdit;
            (new QVBoxLayout(view))->addWidget(line);
            layout->addWidget(view);
        }
        EXPECT_TRUE(fake::showActive(window));
    }
    QWidget& view(int number) { return *lines[number]->parentWidget(); }

    QWidget window;
    std::array<QLineEdit*, 2> lines{};
};

TEST_F(HidingViews, LeaveNobodyTheFocusAndGetItBack) {
    lines[1]->setFocus();
    platform::setHidden(view(1), true);
    platform::setHidden(view(0), true);
    EXPECT_EQ(window.focusWidget(), nullptr);
    QTest::keyClick(window.windowHandle(), Qt::Key_X);
    platform::setHidden(view(0), false);
    EXPECT_EQ(window.focusWidget(), nullptr) << "it was not there";
    platform::setHidden(view(1), false);
    EXPECT_EQ(window.focusWidget(), lines[1]);
    EXPECT_EQ(lines[0]->text() + lines[1]->text(), QString()) << "no key works in what cannot be seen";
}

TEST_F(HidingViews, DoNotTakeTheFocusBackFromWhoHasItNow) {
    lines[1]->setFocus();
    platform::setHidden(view(1), true);
    lines[0]->setFocus();
    platform::setHidden(view(1), false);
    EXPECT_EQ(window.focusWidget(), lines[0]);
}

TEST_F(HidingViews, ThatWereLeftByTheFocusLeaveItWhereItIs) {
    lines[0]->setFocus();
    platform::setHidden(view(1), true);
    platform::setHidden(view(1), false);
    EXPECT_EQ(window.focusWidget(), lines[0]);
}

}  // namespace
