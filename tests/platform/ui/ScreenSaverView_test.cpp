#include "platform/ui/ScreenSaverView.hpp"

#include <gtest/gtest.h>

#include <QtWidgets/QApplication>
#include <vector>

namespace {

using platform::Rect;

/// Notes what it is asked to draw.
class NotingView final : public platform::ScreenSaverView {
public:
    using ScreenSaverView::ScreenSaverView;

    void drawRect(const Rect& dirtyRect) override { drawn.push_back(dirtyRect); }
    void showErrorCode(std::int64_t, std::int64_t) override {}
    std::optional<platform::Error> shownError() const override { return {}; }

    std::vector<Rect> drawn;
};

/// Handles all that a window's first appearance brings, one thing after the other.
void settle() {
    constexpr int rounds = 10;
    for (int round = 0; round < rounds; ++round) {
        QApplication::processEvents();
    }
}

TEST(ScreenSaverView, HasItsFrameAndItsKind) {
    const NotingView view({10, 20, 300, 200}, true);
    EXPECT_EQ(view.geometry(), QRect(10, 20, 300, 200));
    EXPECT_TRUE(view.isPreview());
    EXPECT_FALSE(NotingView({0, 0, 1, 1}, false).isPreview());
}

TEST(ScreenSaverView, AnimatesBetweenStartAndStop) {
    NotingView view({0, 0, 300, 200}, false);
    EXPECT_FALSE(view.isAnimating());
    view.startAnimation();
    EXPECT_TRUE(view.isAnimating());
    view.stopAnimation();
    view.stopAnimation();
    EXPECT_FALSE(view.isAnimating());
}

TEST(ScreenSaverView, KeepsItsTimeInterval) {
    NotingView view({0, 0, 300, 200}, false);
    view.setAnimationTimeInterval(-1.0);
    EXPECT_EQ(view.animationTimeInterval(), -1.0);
}

TEST(ScreenSaverView, HasNoSettingsUnlessASaverSaysSo) {
    NotingView view({0, 0, 300, 200}, false);
    EXPECT_FALSE(view.hasConfigureSheet());
    EXPECT_EQ(view.configureSheet(), nullptr);
    EXPECT_TRUE(view.facts().empty());
}

TEST(ScreenSaverView, IsBlack) {
    NotingView view({0, 0, 30, 20}, false);
    const QImage picture = view.grab().toImage();
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::black));
    EXPECT_EQ(picture.pixelColor(29, 19), QColor(Qt::black));
}

TEST(ScreenSaverView, IsToldOnceFromTheEventLoopWhatWasPainted) {
    NotingView view({0, 0, 300, 200}, false);
    view.show();
    settle();
    view.drawn.clear();
    view.repaint(0, 150, 30, 50);
    view.repaint(20, 140, 40, 20);
    EXPECT_TRUE(view.drawn.empty()) << "not inside the paint event";
    QApplication::processEvents();
    EXPECT_EQ(view.drawn, (std::vector<Rect>{{0, 0, 60, 60}}));
}

}  // namespace
