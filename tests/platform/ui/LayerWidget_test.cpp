#include "platform/ui/LayerWidget.hpp"

#include "tests/support/EventLoop.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/FakeHostView.hpp"

#include <gtest/gtest.h>

#include <QtGui/QScreen>
#include <QtWidgets/QApplication>

namespace {

using platform::LayerWidget;
using platform::Rect;

class LayerWidgetTest : public testing::Test {
protected:
    LayerWidgetTest() { widget->resize(320, 200); }

    platform::HostView& view() const { return *widget->hostView(); }

    std::unique_ptr<LayerWidget> widget = std::make_unique<LayerWidget>();
};

TEST_F(LayerWidgetTest, BoundsAreItsSizeFromTheOrigin) {
    EXPECT_EQ(view().bounds(), (Rect{0, 0, 320, 200}));
}

TEST_F(LayerWidgetTest, BackingIsInWholeDevicePixels) {
    const double scale = widget->devicePixelRatioF();
    ASSERT_EQ(scale, 1.5) << "the scale that this program runs at";
    EXPECT_EQ(view().convertRectToBacking({0, 0, 321, 201}), (Rect{0, 0, 482, 302}));
}

TEST_F(LayerWidgetTest, ScreenIsTheOneItIsOn) {
    EXPECT_EQ(view().screenNumber(), 0U);
}

TEST_F(LayerWidgetTest, DisplayLinkTicksAtThePlausibleRateOfItsScreen) {
    std::unique_ptr<platform::DisplayLink> link;
    EXPECT_EQ(view().createDisplayLink(0, link), platform::displayLinkSuccess);
    ASSERT_NE(link, nullptr);
    const platform::RefreshPeriod period = link->nominalOutputVideoRefreshPeriod();
    const double rate = static_cast<double>(period.timeScale) / static_cast<double>(period.timeValue);
    const double reported = QApplication::primaryScreen()->refreshRate();
    EXPECT_NEAR(rate, reported > 1.0 ? reported : 60.0, 0.001);
}

TEST_F(LayerWidgetTest, ADisplayThatIsNotThereHasNoLink) {
    std::unique_ptr<platform::DisplayLink> link;
    EXPECT_EQ(view().createDisplayLink(7, link), platform::displayLinkInvalidArgument);
    EXPECT_EQ(link, nullptr);
}

TEST_F(LayerWidgetTest, AViewThatOutlivesItIsEmpty) {
    const auto survivor = widget->hostView();
    widget.reset();
    EXPECT_EQ(survivor->bounds(), Rect{});
    EXPECT_EQ(survivor->screenNumber(), std::nullopt);
    survivor->setLayer(nullptr);
}

TEST_F(LayerWidgetTest, KeepsItsLayerAliveUntilItGetsAnother) {
    const fake::ScopedGpu gpu;
    std::weak_ptr<gpu::Layer> layer;
    {
        const auto made = gpu::createLayer();
        layer = made;
        view().setLayer(made);
    }
    EXPECT_FALSE(layer.expired());
    widget->show();
    widget->hide();
    EXPECT_FALSE(layer.expired());
    view().setLayer(nullptr);
    EXPECT_TRUE(layer.expired());
}

/// Counts how often it is told that its size has settled.
class SettlingWidget final : public LayerWidget {
public:
    int settled = 0;

protected:
    void sizeSettled() override { ++settled; }
};

TEST(LayerWidget, IsToldOnceThatANewSizeHasSettled) {
    SettlingWidget widget;
    widget.resize(320, 200);
    widget.show();
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return widget.settled == 1; }));
    for (int width = 330; width < 400; width += 10) {
        widget.resize(width, 200);
    }
    EXPECT_EQ(widget.settled, 1);
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return widget.settled == 2; }));
}

TEST_F(LayerWidgetTest, RenderersMeetTheStandInWhereThereIsOne) {
    const auto standIn = std::make_shared<fake::HostView>();
    widget->setHostView(standIn);
    EXPECT_EQ(widget->hostView(), standIn);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", "1.5");
    const QApplication application(argumentCount, arguments);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
