// Frames in real Wayland windows, on sway.
#include "LayerPainter.hpp"
#include "SwaySession.hpp"
#include "platform/ui/LayerWidget.hpp"

#include <gtest/gtest.h>

#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <chrono>

namespace {

using platform::LayerWidget;

constexpr std::uint32_t red = 0xFF0000;
constexpr std::uint32_t green = 0x00FF00;
constexpr std::uint32_t white = 0xFFFFFF;

const SwaySession* session = nullptr;

/// A white window of 400 x 300 points, which lies at 100,80 on the screen, and in it at 40,30 a layer of 200 x 100.
class WaylandLayer : public testing::Test {
protected:
    WaylandLayer() {
        QPalette palette;
        palette.setColor(QPalette::Window, Qt::white);
        _window->setPalette(palette);
        _window->resize(400, 300);
        _widget->setGeometry(40, 30, 200, 100);
        _widget->setLayer(_painter.layer());
        _widget->setSurfaceVisibilityHandler([this](bool isVisible) { _told.push_back(isVisible); });
    }

    /// Draws green frames and looks at the screen until this part of it, in pixels, is green and nothing around it.
    bool showsExactly(const QRect& place) {
        return eventuallyInLoop([&] {
            _painter.draw(green);
            const Screenshot shot = session->screenshot();
            const auto at = [&](int x, int y) { return shot.pixel(x, y) == green; };
            return at(place.left(), place.top()) && at(place.right(), place.bottom()) &&
                   at(place.center().x(), place.center().y()) && !at(place.left() - 1, place.top()) &&
                   !at(place.left(), place.top() - 1) && !at(place.right() + 1, place.bottom()) &&
                   !at(place.right(), place.bottom() + 1);
        });
    }

    /// Draws frames until the handler has been told that.
    bool isTold(bool isVisible, bool drawing) {
        return eventuallyInLoop([&] {
            if (drawing) {
                _painter.draw(green);
            }
            return !_told.empty() && _told.back() == isVisible;
        });
    }

    LayerPainter _painter;
    std::unique_ptr<QWidget> _window = std::make_unique<QWidget>();
    LayerWidget* _widget = new LayerWidget(_window.get());
    std::vector<bool> _told;
};

TEST_F(WaylandLayer, CoversItsWidgetAndNothingElse) {
    _window->show();
    EXPECT_TRUE(showsExactly({140, 110, 200, 100}));
    EXPECT_EQ(session->screenshot().pixel(139, 110), white);
}

TEST_F(WaylandLayer, LiesRightUnderAFrameThatTheApplicationDraws) {
    ASSERT_TRUE(session->command("for_window [app_id=\".*\"] border csd"));
    _window->show();
    ASSERT_TRUE(eventuallyInLoop([&] {
        const QMargins frame = _window->windowHandle()->frameMargins();
        return frame.top() > 0;
    }));
    Screenshot shot;
    ASSERT_TRUE(eventuallyInLoop([&] {
        _painter.draw(green);
        shot = session->screenshot();
        int greenPixels = 0;
        for (int y = 0; y < shot.height; ++y) {
            for (int x = 0; x < shot.width; ++x) {
                greenPixels += shot.pixel(x, y) == green ? 1 : 0;
            }
        }
        return greenPixels == 200 * 100;
    }));
    // 30 below and 40 right of where the white begins.
    int top = 0;
    int left = 0;
    while (shot.pixel(left, 300) != white) {
        ++left;
    }
    while (shot.pixel(left + 20, top) != white) {
        ++top;
    }
    EXPECT_TRUE(showsExactly({left + 40, top + 30, 200, 100}));
}

TEST_F(WaylandLayer, IsAsLargeAsItsWidgetOnAScreenOfScaleTwo) {
    ASSERT_TRUE(session->command("output HEADLESS-1 scale 2"));
    _window->setMaximumSize(250, 150);
    _window->show();
    ASSERT_TRUE(eventuallyInLoop([&] { return _widget->devicePixelRatioF() == 2.0; }));
    _widget->setGeometry(10, 20, 101, 51);
    EXPECT_TRUE(showsExactly({2 * 110, 2 * 100, 202, 102}));
}

TEST_F(WaylandLayer, FollowsAChangeOfTheScreensScale) {
    _window->show();
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    ASSERT_TRUE(session->command("output HEADLESS-1 scale 2"));
    _widget->setGeometry(10, 20, 100, 50);
    ASSERT_TRUE(eventuallyInLoop([&] { return _widget->devicePixelRatioF() == 2.0; }));
    EXPECT_TRUE(eventuallyInLoop([&] {
        _painter.draw(green);
        const Screenshot shot = session->screenshot();
        int greenPixels = 0;
        for (int y = 0; y < shot.height; ++y) {
            for (int x = 0; x < shot.width; ++x) {
                greenPixels += shot.pixel(x, y) == green ? 1 : 0;
            }
        }
        return greenPixels == 200 * 100;
    })) << "100 x 50 points are 200 x 100 pixels";
}

TEST_F(WaylandLayer, FollowsItsWidgetWhenThatIsMovedAndResized) {
    _window->show();
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    _widget->setGeometry(5, 6, 301, 203);
    EXPECT_TRUE(showsExactly({105, 86, 301, 203}));
    _widget->setGeometry(0, 0, 400, 300);
    EXPECT_TRUE(eventuallyInLoop([&] {
        _painter.draw(red);
        const Screenshot shot = session->screenshot();
        return shot.pixel(100, 80) == red && shot.pixel(499, 379) == red && shot.pixel(500, 379) != red;
    }));
}

TEST_F(WaylandLayer, IsGoneWhileItsWindowIsHiddenAndBackWhenItIsShown) {
    for (int round = 0; round < 3; ++round) {
        _window->show();
        ASSERT_TRUE(showsExactly({140, 110, 200, 100})) << "round " << round;
        _painter.draw(green);
        _window->hide();
        _painter.draw(green);
        ASSERT_TRUE(eventuallyInLoop([&] { return session->screenshot().pixel(200, 150) != green; }));
    }
}

TEST_F(WaylandLayer, IsGoneWhenItsWidgetIsHiddenAlone) {
    _window->show();
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    _widget->hide();
    EXPECT_TRUE(eventuallyInLoop([&] { return session->screenshot().pixel(200, 150) == white; }));
    _widget->show();
    EXPECT_TRUE(showsExactly({140, 110, 200, 100}));
}

TEST_F(WaylandLayer, OverlaysLieOverItInPixels) {
    auto* child = new QWidget(_widget);
    child->setGeometry(10, 20, 30, 5);
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::red);
    child->setPalette(palette);
    child->setAutoFillBackground(true);
    _widget->addOverlay(child);
    _window->show();
    EXPECT_TRUE(eventuallyInLoop([&] {
        _painter.draw(green);
        const Screenshot shot = session->screenshot();
        return shot.pixel(150, 130) == red && shot.pixel(179, 134) == red && shot.pixel(149, 130) == green &&
               shot.pixel(180, 134) == green && shot.pixel(150, 129) == green && shot.pixel(179, 135) == green;
    }));
}

TEST_F(WaylandLayer, IsToldToBeInvisibleOnAnotherWorkspaceAndVisibleAgainWithoutAnyFrame) {
    _window->show();
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(session->command("workspace other"));
        ASSERT_TRUE(isTold(false, true));
        ASSERT_TRUE(session->command("workspace 1"));
        ASSERT_TRUE(isTold(true, false));
    }
    EXPECT_EQ(_told, (std::vector<bool>{false, true, false, true}));
}

TEST_F(WaylandLayer, CountsAsVisibleAgainOnceItsWidgetIsHidden) {
    _window->show();
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    ASSERT_TRUE(session->command("workspace other"));
    ASSERT_TRUE(isTold(false, true));
    _widget->hide();
    EXPECT_TRUE(isTold(true, false));
}

TEST_F(WaylandLayer, AFrozenCompositorHoldsNoFrameUpForLong) {
    constexpr std::chrono::seconds soon{20};  // each frame may wait for a second
    _window->show();
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    session->freeze();
    const auto start = std::chrono::steady_clock::now();
    for (int frame = 0; frame < 10; ++frame) {
        _painter.draw(red);
        QApplication::processEvents();
    }
    _widget->setGeometry(0, 0, 300, 200);
    for (int frame = 0; frame < 5; ++frame) {
        _painter.draw(red);
        QApplication::processEvents();
    }
    _widget->setLayer(nullptr);
    EXPECT_LT(std::chrono::steady_clock::now() - start, soon);
    // Whether the presenter is just waiting for an answer is a matter of chance; it is not waited for long.
    _painter.forgetMessage("gpu: a window does not let go of its last frame; left as it is");
    session->thaw();
    _widget->setLayer(_painter.layer());
    EXPECT_TRUE(showsExactly({100, 80, 300, 200}));
}

}  // namespace

int main(int argumentCount, char** arguments) {
    testing::InitGoogleTest(&argumentCount, arguments);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    const SwaySession own;
    session = &own;
    qputenv("QT_QPA_PLATFORM", "wayland");
    const QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
