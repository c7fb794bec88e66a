#include "PresentationTest.hpp"

#include <cstddef>
#include <utility>

namespace {

constexpr std::uint32_t red = 0xFF0000;
constexpr std::uint32_t green = 0x00FF00;
constexpr std::uint32_t blue = 0x0000FF;
constexpr std::uint32_t opaque = 0xFF000000;

/// One colour 0xAARRGGBB all over, multiplied by alpha already.
std::shared_ptr<const gpu::Overlay> filled(int x, int y, gpu::Extent size, std::uint32_t color) {
    gpu::Overlay overlay{.x = x, .y = y, .size = size, .pixels = {}};
    for (std::size_t i = 0; i < size.width * size.height; ++i) {
        for (const int shift : {0, 8, 16, 24}) {
            overlay.pixels.push_back(static_cast<std::byte>(color >> shift));
        }
    }
    return std::make_shared<const gpu::Overlay>(std::move(overlay));
}

class Overlays : public PresentationTest {
protected:
    Overlays() { _layer->setPresentationTarget(_window.target()); }
    ~Overlays() override { _layer->setPresentationTarget({}); }

    /// Shows frames of that colour until the point has the other.
    bool showsAt(gpu::Origin point, std::uint32_t frame, std::uint32_t shown) {
        return eventually([&] { return drawFrame(frame) && waitUntilCompleted() && _window.pixel(point) == shown; });
    }

    TestWindow _window{_server, _server, defaultSize};
};

TEST_F(Overlays, LiesExactlyAtItsPlace) {
    _layer->setOverlay(filled(10, 20, {5, 3}, opaque | red));
    ASSERT_TRUE(showsAt({10, 20}, green, red));
    EXPECT_EQ(_window.pixel({14, 22}), red);
    for (const gpu::Origin outside : {gpu::Origin{9, 20}, {15, 22}, {10, 19}, {14, 23}, {0, 0}, {63, 47}}) {
        EXPECT_EQ(_window.pixel(outside), green) << outside.x << ',' << outside.y;
    }
}

TEST_F(Overlays, EachOfItsPixelsIsShown) {
    gpu::Overlay stripes{.x = 3, .y = 4, .size = {4, 2}, .pixels = {}};
    for (std::uint32_t pixel = 0; pixel < 8; ++pixel) {
        for (const std::uint32_t byte : {10 * pixel, 20 * pixel, 30 * pixel, 255U}) {
            stripes.pixels.push_back(static_cast<std::byte>(byte));
        }
    }
    _layer->setOverlay(std::make_shared<const gpu::Overlay>(stripes));
    ASSERT_TRUE(showsAt({6, 5}, green, 7 * 0x1E140A));
    for (std::uint32_t pixel = 0; pixel < 8; ++pixel) {
        EXPECT_EQ(_window.pixel({3 + pixel % 4, 4 + pixel / 4}), pixel * 0x1E140A);
    }
}

TEST_F(Overlays, TranslucentOnesLetTheFrameShineThrough) {
    _layer->setOverlay(filled(0, 0, {64, 10}, 0x33000028));  // a fifth opaque, and of it a blue of 200
    ASSERT_TRUE(showsAt({5, 5}, 0xFFFFFF, 0xCCCCF4));
    ASSERT_TRUE(showsAt({5, 5}, 0x000000, 0x000028));
    EXPECT_EQ(_window.pixel({5, 10}), 0x000000U);
}

TEST_F(Overlays, TransparentOnesChangeNothing) {
    _layer->setOverlay(filled(0, 0, {64, 10}, 0));
    ASSERT_TRUE(showsAt({5, 20}, 0x123456, 0x123456));
    EXPECT_EQ(_window.pixel({5, 5}), 0x123456U);
}

TEST_F(Overlays, OneTakenAwayIsGoneFromTheNextFrame) {
    _layer->setOverlay(filled(0, 0, {8, 8}, opaque | red));
    ASSERT_TRUE(showsAt({0, 0}, green, red));
    _layer->setOverlay(nullptr);
    ASSERT_TRUE(showsAt({20, 20}, blue, blue));
    EXPECT_EQ(_window.pixel({0, 0}), blue);
}

TEST_F(Overlays, AChangedOneIsShownInsteadWhateverItsSize) {
    for (const auto& [size, color] :
         {std::pair(gpu::Extent{8, 8}, red), {{8, 8}, blue}, {{64, 48}, red}, {{1, 1}, blue}}) {
        _layer->setOverlay(filled(0, 0, size, opaque | color));
        ASSERT_TRUE(showsAt({0, 0}, green, color));
        EXPECT_EQ(_window.pixel({size.width - 1, size.height - 1}), color);
    }
    EXPECT_EQ(_window.pixel({1, 0}), green);
}

TEST_F(Overlays, OnePartlyOutsideIsCutOffOnEverySide) {
    _layer->setOverlay(filled(-3, -2, {5, 5}, opaque | red));
    ASSERT_TRUE(showsAt({0, 0}, green, red));
    EXPECT_EQ(_window.pixel({1, 2}), red);
    EXPECT_EQ(_window.pixel({2, 2}), green);
    EXPECT_EQ(_window.pixel({1, 3}), green);
    _layer->setOverlay(filled(60, 45, {100, 100}, opaque | blue));
    ASSERT_TRUE(showsAt({63, 47}, green, blue));
    EXPECT_EQ(_window.pixel({60, 45}), blue);
    EXPECT_EQ(_window.pixel({59, 45}), green);
    EXPECT_EQ(_window.pixel({60, 44}), green);
}

TEST_F(Overlays, OneWhollyOutsideDoesNoHarm) {
    constexpr int far = 2'000'000'000;
    for (const auto& [x, y] : {std::pair(64, 0), {0, 48}, {-5, 0}, {0, -5}, {far, far}, {-far, -far}}) {
        _layer->setOverlay(filled(x, y, {5, 5}, opaque | red));
        ASSERT_TRUE(showsAt({0, 0}, blue, blue));
        ASSERT_TRUE(showsAt({63, 47}, green, green));
    }
}

TEST_F(Overlays, OneWhosePixelsDoNotFillItsSizeIsNone) {
    gpu::Overlay torn = *filled(0, 0, {8, 8}, opaque | red);
    torn.pixels.pop_back();
    _layer->setOverlay(filled(0, 0, {8, 8}, opaque | red));
    _layer->setOverlay(std::make_shared<const gpu::Overlay>(torn));
    ASSERT_TRUE(showsAt({20, 20}, green, green));
    EXPECT_EQ(_window.pixel({0, 0}), green);
    _layer->setOverlay(std::make_shared<const gpu::Overlay>());
    ASSERT_TRUE(showsAt({0, 0}, blue, blue));
}

TEST_F(Overlays, OneTooLargeForTheDeviceIsLeftOutAndTold) {
    const gpu::Extent tooWide{_device->maximumTextureSize() + 1, 1};
    _layer->setOverlay(filled(0, 0, tooWide, opaque | red));
    ASSERT_TRUE(showsAt({0, 0}, green, green));
    const auto log = takeLog();
    ASSERT_EQ(log.size(), 1U);
    EXPECT_EQ(log[0].find("gpu: an overlay could not be shown: "), 0U) << log[0];
    _layer->setOverlay(filled(0, 0, {8, 8}, opaque | red));
    EXPECT_TRUE(showsAt({0, 0}, green, red));
}

TEST_F(Overlays, KeepsItsSizeAndPlaceOverAStretchedPicture) {
    _window.resize({200, 150});  // the layer stays at 64 x 48
    _layer->setOverlay(filled(100, 140, {50, 10}, opaque | red));
    ASSERT_TRUE(showsAt({100, 140}, green, red));
    EXPECT_EQ(_window.pixel({149, 149}), red);
    EXPECT_EQ(_window.pixel({99, 140}), green);
    EXPECT_EQ(_window.pixel({150, 149}), green);
    EXPECT_EQ(_window.pixel({100, 139}), green);
    EXPECT_EQ(_window.pixel({0, 0}), green);
}

TEST_F(Overlays, StaysThroughResizesOfTheWindow) {
    _layer->setOverlay(filled(2, 2, {4, 4}, opaque | red));
    for (std::size_t width = 20; width < 400; width += 20) {
        _window.resize({width, 30});
        ASSERT_TRUE(showsAt({width - 1, 29}, blue, blue));
        ASSERT_TRUE(showsAt({2, 2}, green, red));
    }
}

TEST_F(Overlays, IsThereInEveryWindowThatTheLayerMovesTo) {
    _layer->setOverlay(filled(0, 0, {4, 4}, opaque | red));
    ASSERT_TRUE(showsAt({0, 0}, green, red));
    TestWindow other(_server, _server, defaultSize);
    _layer->setPresentationTarget(other.target());
    EXPECT_TRUE(drawUntilShown(other, {10, 10}, green));
    EXPECT_EQ(other.pixel({0, 0}), red);
    _layer->setPresentationTarget({});
}

/// Reads each frame back as it completes.
class Reader final : public gpu::FrameObserver {
public:
    explicit Reader(gpu::Layer& layer) : _layer(layer) {}
    void drawableTaken(const gpu::Drawable&) override {}
    void frameCommitted(const gpu::Drawable&) override {}
    void frameScheduled(const gpu::Drawable&) override {}
    void frameCompleted(const gpu::Drawable& drawable, bool) override { frames.push_back(_layer.readPixels(drawable)); }

    std::vector<std::vector<std::byte>> frames;

private:
    gpu::Layer& _layer;
};

TEST_F(Overlays, IsInNoDrawable) {
    _layer->setOverlay(filled(0, 0, defaultSize, opaque | red));
    ASSERT_TRUE(showsAt({0, 0}, green, red));
    const auto reader = std::make_shared<Reader>(*_layer);
    _layer->setFrameObserver(reader);
    for (int frame = 0; frame < 20; ++frame) {
        ASSERT_TRUE(drawFrame(blue));
    }
    EXPECT_TRUE(waitUntilCompleted());
    _layer->setFrameObserver(nullptr);
    const auto plain = filled(0, 0, defaultSize, opaque | blue)->pixels;
    ASSERT_EQ(reader->frames.size(), 20U);
    for (const auto& pixels : reader->frames) {
        EXPECT_EQ(pixels, plain);
    }
}

TEST_F(Overlays, OnesThatChangeWhileFramesGoOnAreEachShownWhole) {
    for (std::uint32_t i = 0; i < 200; ++i) {
        _layer->setOverlay(filled(0, 0, {1 + i % 7, 1 + i % 5}, opaque | i));
        ASSERT_TRUE(drawFrame(green));
    }
    EXPECT_TRUE(showsAt({0, 0}, green, 199));
    EXPECT_EQ(_window.pixel({199 % 7, 199 % 5}), 199U);
}

}  // namespace
