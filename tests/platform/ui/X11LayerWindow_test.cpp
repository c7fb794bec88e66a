// Frames in real X11 windows, and whether they can be seen.
#include "LayerPainter.hpp"
#include "StandInMonitor.hpp"
#include "platform/ui/ApplicationDisplay.hpp"
#include "platform/ui/LayerWidget.hpp"

#include <gtest/gtest.h>
#include <xcb/dpms.h>
#include <xcb/xcb.h>

#include <QtGui/QScreen>
#include <QtWidgets/QApplication>

namespace {

using platform::LayerWidget;

constexpr QRgb green = 0xFF00FF00;
constexpr QRgb red = 0xFFFF0000;

/// A white window of 400 x 300 at 100,80, and in it at 40,30 a layer of 200 x 100.
class X11Layer : public testing::Test {
protected:
    X11Layer() {
        QPalette palette;
        palette.setColor(QPalette::Window, Qt::white);
        _window->setPalette(palette);
        _window->setGeometry(100, 80, 400, 300);
        _widget->setGeometry(40, 30, 200, 100);
        _widget->setLayer(_painter.layer());
        _widget->setSurfaceVisibilityHandler([this](bool isVisible) { _told.push_back(isVisible); });
        _window->show();
    }

    static QRgb pixel(int x, int y) {
        return QApplication::primaryScreen()->grabWindow(0, x, y, 1, 1).toImage().pixel(0, 0) | 0xFF000000;
    }

    bool showsExactly(const QRect& place) {
        return eventuallyInLoop([&] {
            _painter.draw(0x00FF00);
            const auto at = [&](int x, int y) { return pixel(x, y) == green; };
            return at(place.left(), place.top()) && at(place.right(), place.bottom()) &&
                   !at(place.left() - 1, place.top()) && !at(place.left(), place.top() - 1) &&
                   !at(place.right() + 1, place.bottom()) && !at(place.right(), place.bottom() + 1);
        });
    }

    bool isTold(bool isVisible) {
        return eventuallyInLoop([&] { return !_told.empty() && _told.back() == isVisible; });
    }

    LayerPainter _painter;
    std::unique_ptr<QWidget> _window = std::make_unique<QWidget>();
    LayerWidget* _widget = new LayerWidget(_window.get());
    std::vector<bool> _told;
};

TEST_F(X11Layer, CoversItsWidgetAndFollowsIt) {
    EXPECT_TRUE(showsExactly({140, 110, 200, 100}));
    _widget->setGeometry(5, 6, 301, 203);
    EXPECT_TRUE(showsExactly({105, 86, 301, 203}));
}

TEST_F(X11Layer, OverlaysLieOverItAndGoWithTheirWidgets) {
    auto child = std::make_unique<QWidget>(_widget);
    child->setGeometry(10, 20, 30, 5);
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::red);
    child->setPalette(palette);
    child->setAutoFillBackground(true);
    child->show();
    _widget->addOverlay(child.get());
    EXPECT_TRUE(eventuallyInLoop([&] {
        _painter.draw(0x00FF00);
        return pixel(150, 130) == red && pixel(179, 134) == red && pixel(149, 130) == green &&
               pixel(180, 134) == green && pixel(150, 129) == green && pixel(179, 135) == green;
    }));
    child.reset();
    EXPECT_TRUE(eventuallyInLoop([&] {
        _painter.draw(0x00FF00);
        return pixel(150, 130) == green;
    }));
}

TEST_F(X11Layer, IsToldToBeInvisibleWhileAnotherWindowCoversAllOfIt) {
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    QWidget cover(nullptr, Qt::BypassWindowManagerHint);
    cover.setGeometry(150, 110, 190, 100);
    cover.show();
    ASSERT_TRUE(eventuallyInLoop([&] { return pixel(160, 120) != green; }));
    cover.setGeometry(140, 110, 200, 100);
    ASSERT_TRUE(isTold(false));
    cover.setGeometry(140, 110, 199, 100);
    ASSERT_TRUE(isTold(true));
    EXPECT_EQ(_told, (std::vector<bool>{false, true})) << "partly covered is visible";
}

TEST_F(X11Layer, IsToldToBeInvisibleWhileAWindowThatItsWindowLiesInIsHidden) {
    QWidget around(nullptr, Qt::BypassWindowManagerHint);
    around.setGeometry(100, 80, 400, 300);
    around.show();
    xcb_connection_t* connection = platform::applicationX11Connection();
    const auto outer = static_cast<xcb_window_t>(around.winId());
    xcb_reparent_window(connection, static_cast<xcb_window_t>(_window->winId()), outer, 0, 0);
    xcb_map_window(connection, static_cast<xcb_window_t>(_window->winId()));
    xcb_flush(connection);
    ASSERT_TRUE(eventuallyInLoop([&] {
        _painter.draw(0x00FF00);
        return pixel(150, 120) == green;
    }));
    _told.clear();
    xcb_unmap_window(connection, outer);
    xcb_flush(connection);
    ASSERT_TRUE(isTold(false));
    xcb_map_window(connection, outer);
    xcb_flush(connection);
    EXPECT_TRUE(isTold(true));
}

TEST_F(X11Layer, CountsAsVisibleAgainOnceItIsHidden) {
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    QWidget cover(nullptr, Qt::BypassWindowManagerHint);
    cover.setGeometry(0, 0, 600, 500);
    cover.show();
    ASSERT_TRUE(isTold(false));
    _window->hide();
    EXPECT_TRUE(isTold(true));
}

TEST_F(X11Layer, IsToldToBeInvisibleWhileTheMonitorIsOff) {
    ASSERT_TRUE(showsExactly({140, 110, 200, 100}));
    for (const xcb_dpms_dpms_mode_t level :
         {XCB_DPMS_DPMS_MODE_OFF, XCB_DPMS_DPMS_MODE_STANDBY, XCB_DPMS_DPMS_MODE_SUSPEND}) {
        fake::monitor::setPower(level);
        ASSERT_TRUE(isTold(false)) << level;
        fake::monitor::setPower(XCB_DPMS_DPMS_MODE_ON);
        ASSERT_TRUE(isTold(true)) << level;
    }
}

TEST_F(X11Layer, AMonitorWhosePowerNobodyManagesIsOnWhateverItsLevel) {
    fake::monitor::setPower(XCB_DPMS_DPMS_MODE_OFF);
    ASSERT_TRUE(isTold(false));
    fake::monitor::setPower(XCB_DPMS_DPMS_MODE_OFF, false);
    EXPECT_TRUE(isTold(true));
}

}  // namespace

int main(int argumentCount, char** arguments) {
    testing::InitGoogleTest(&argumentCount, arguments);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
