#include "platform/ui/LayerWidget.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/FakeLayer.hpp"

#include <gtest/gtest.h>

#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <cstdint>

namespace {

using platform::LayerWidget;

// The scale of the program that this is part of is 1.5.

/// One colour all over.
class Swatch final : public QWidget {
public:
    Swatch(QWidget* parent, const QRect& place, QColor color) : QWidget(parent), _color(color) { setGeometry(place); }

    void setColor(QColor color) { _color = color; }

private:
    void paintEvent(QPaintEvent* event) override { QPainter(this).fillRect(event->rect(), _color); }

    QColor _color;
};

class LayerOverlaysTest : public testing::Test {
protected:
    LayerOverlaysTest() {
        widget->resize(320, 200);
        widget->setLayer(layer);
        widget->show();
    }

    /// The one in force; null for none.
    std::shared_ptr<const gpu::Overlay> overlay() const {
        const auto& all = static_cast<const fake::Layer&>(*layer).overlays();
        return all.empty() ? nullptr : all.back();
    }

    /// 0xAARRGGBB, multiplied.
    std::uint32_t pixel(std::size_t x, std::size_t y) const {
        std::uint32_t color = 0;
        for (std::size_t byte = 0; byte < 4; ++byte) {
            const std::byte value = overlay()->pixels.at((y * overlay()->size.width + x) * 4 + byte);
            color |= std::to_integer<std::uint32_t>(value) << (8 * byte);
        }
        return color;
    }

    void expectPlace(int x, int y, gpu::Extent size) const {
        ASSERT_NE(overlay(), nullptr);
        EXPECT_EQ(overlay()->x, x);
        EXPECT_EQ(overlay()->y, y);
        EXPECT_EQ(overlay()->size, size);
        EXPECT_EQ(overlay()->pixels.size(), size.width * size.height * 4);
    }

    const fake::ScopedGpu gpu;
    std::shared_ptr<gpu::Layer> layer = gpu::createLayer();
    std::unique_ptr<LayerWidget> widget = std::make_unique<LayerWidget>();
};

TEST_F(LayerOverlaysTest, AChildIsHandedOverInDevicePixelsFromTheTopLeft) {
    Swatch child(widget.get(), {10, 20, 40, 30}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    expectPlace(15, 30, {60, 45});
    EXPECT_EQ(pixel(0, 0), 0xFFFF0000);
    EXPECT_EQ(pixel(59, 44), 0xFFFF0000);
}

TEST_F(LayerOverlaysTest, ColoursAreMultipliedByAlpha) {
    Swatch child(widget.get(), {0, 0, 10, 10}, QColor(0, 0, 255, 51));
    child.show();
    widget->addOverlay(&child);
    ASSERT_NE(overlay(), nullptr);
    EXPECT_EQ(pixel(5, 5), 0x33000033U);
}

TEST_F(LayerOverlaysTest, WithoutChildrenThereIsNone) {
    ASSERT_FALSE(static_cast<const fake::Layer&>(*layer).overlays().empty());
    EXPECT_EQ(overlay(), nullptr);
}

TEST_F(LayerOverlaysTest, OneThatIsTakenAwayIsGone) {
    Swatch child(widget.get(), {0, 0, 10, 10}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    ASSERT_NE(overlay(), nullptr);
    widget->removeOverlay(&child);
    EXPECT_EQ(overlay(), nullptr);
    widget->removeOverlay(&child);
    EXPECT_EQ(overlay(), nullptr);
}

TEST_F(LayerOverlaysTest, OneThatIsDestroyedIsGone) {
    auto child = std::make_unique<Swatch>(widget.get(), QRect(0, 0, 10, 10), Qt::red);
    child->show();
    widget->addOverlay(child.get());
    ASSERT_NE(overlay(), nullptr);
    child.reset();
    EXPECT_EQ(overlay(), nullptr);
}

TEST_F(LayerOverlaysTest, TheWidgetMayGoBeforeItsChildren) {
    auto* child = new Swatch(widget.get(), {0, 0, 10, 10}, Qt::red);
    child->show();
    widget->addOverlay(child);
    widget.reset();
    EXPECT_NE(overlay(), nullptr) << "what was handed over stays as it was";
}

TEST_F(LayerOverlaysTest, OneThatIsHiddenIsGoneAtTheNextUpdate) {
    Swatch child(widget.get(), {0, 0, 10, 10}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    child.hide();
    widget->updateOverlays();
    EXPECT_EQ(overlay(), nullptr);
}

TEST_F(LayerOverlaysTest, ANewLookIsHandedOverAtTheNextUpdate) {
    Swatch child(widget.get(), {0, 0, 10, 10}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    const auto before = overlay();
    child.setColor(Qt::green);
    EXPECT_EQ(overlay(), before);
    widget->updateOverlays();
    EXPECT_EQ(pixel(0, 0), 0xFF00FF00);
}

TEST_F(LayerOverlaysTest, OneThatLooksTheSameStaysTheSameObject) {
    Swatch child(widget.get(), {0, 0, 10, 10}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    const auto before = overlay();
    widget->updateOverlays();
    EXPECT_EQ(overlay(), before);
}

TEST_F(LayerOverlaysTest, SeveralShareOnePictureThatIsTransparentBetweenThem) {
    Swatch left(widget.get(), {0, 100, 10, 10}, Qt::red);
    Swatch right(widget.get(), {30, 104, 10, 10}, Qt::green);
    for (Swatch* child : {&left, &right}) {
        child->show();
        widget->addOverlay(child);
    }
    expectPlace(0, 150, {60, 21});
    EXPECT_EQ(pixel(0, 0), 0xFFFF0000);
    EXPECT_EQ(pixel(30, 10), 0U);
    EXPECT_EQ(pixel(59, 20), 0xFF00FF00);
}

TEST_F(LayerOverlaysTest, WhatLiesOutsideTheWidgetIsCutOff) {
    Swatch child(widget.get(), {300, 190, 100, 100}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    expectPlace(450, 285, {30, 15});
    child.setGeometry(400, 300, 10, 10);
    widget->updateOverlays();
    EXPECT_EQ(overlay(), nullptr);
}

TEST_F(LayerOverlaysTest, AResizedWidgetHandsThemOverAnew) {
    Swatch child(widget.get(), {300, 190, 100, 100}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    widget->resize(400, 300);
    expectPlace(450, 285, {150, 150});
}

TEST_F(LayerOverlaysTest, AChildOfAChildLiesWhereItIsSeen) {
    QWidget between(widget.get());
    between.setGeometry(20, 20, 100, 100);
    Swatch child(&between, {20, 20, 10, 10}, Qt::red);
    between.show();
    widget->addOverlay(&child);
    expectPlace(60, 60, {15, 15});
}

TEST_F(LayerOverlaysTest, TheyAreHandedToALayerThatComesLater) {
    Swatch child(widget.get(), {0, 0, 10, 10}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    layer = gpu::createLayer();
    widget->setLayer(layer);
    EXPECT_NE(overlay(), nullptr);
}

TEST_F(LayerOverlaysTest, AHiddenWidgetHandsNothingOverUntilItIsShown) {
    widget->hide();
    Swatch child(widget.get(), {0, 0, 10, 10}, Qt::red);
    child.show();
    widget->addOverlay(&child);
    EXPECT_EQ(overlay(), nullptr);
    widget->show();
    EXPECT_NE(overlay(), nullptr);
}

}  // namespace
