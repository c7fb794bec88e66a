#include "PresentationTest.hpp"

#include <chrono>
#include <random>

namespace {

constexpr std::uint32_t red = 0xFF0000;
constexpr std::uint32_t green = 0x00FF00;
constexpr std::uint32_t blue = 0x0000FF;

using Presentation = PresentationTest;

gpu::Origin lastPixel(const TestWindow& window) {
    return {window.size().width - 1, window.size().height - 1};
}

TEST_F(Presentation, AFrameReachesTheWindow) {
    TestWindow window(_server, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    ASSERT_TRUE(drawFrame(0x336699));
    EXPECT_TRUE(waitUntilShown(window, {0, 0}, 0x336699));
    EXPECT_TRUE(waitUntilShown(window, lastPixel(window), 0x336699));
    _layer->setPresentationTarget({});
}

TEST_F(Presentation, TheNewestOfManyFramesIsShownInTheEnd) {
    TestWindow window(_server, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(drawFrame(i == 199 ? green : red));
    }
    EXPECT_TRUE(waitUntilShown(window, {5, 5}, green));
    _layer->setPresentationTarget({});
}

TEST_F(Presentation, TheWindowIsPreparedOnceJustBeforeTheFirstFrame) {
    TestWindow window(_server, _server, defaultSize);
    std::atomic<int> prepared{0};
    gpu::PresentationTarget target = window.target();
    target.willPresentFirstFrame = [&, map = target.willPresentFirstFrame] {
        EXPECT_GT(_framesCommitted, 0);
        ++prepared;
        map();
    };
    _layer->setPresentationTarget(target);
    EXPECT_EQ(prepared, 0);
    EXPECT_TRUE(drawUntilShown(window, {0, 0}, red));
    EXPECT_TRUE(drawUntilShown(window, {0, 0}, green));
    EXPECT_EQ(prepared, 1);
    _layer->setPresentationTarget({});
}

TEST_F(Presentation, APictureOfAnotherSizeIsStretchedOverTheWholeWindow) {
    TestWindow window(_server, _server, {200, 100});
    _layer->setPresentationTarget(window.target());
    ASSERT_TRUE(drawFrame(blue));
    EXPECT_TRUE(waitUntilShown(window, {0, 0}, blue));
    EXPECT_TRUE(waitUntilShown(window, {199, 99}, blue));
    _layer->setPresentationTarget({});
}

TEST_F(Presentation, ManyResizesWithFramesGoingOnLoseNoFrameAndEndInAFullWindow) {
    TestWindow window(_otherServer, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    std::minstd_rand random(1);
    std::uniform_int_distribution<std::size_t> edge(1, 400);
    for (int i = 0; i < 200; ++i) {
        window.resize({edge(random), edge(random)});
        if (i % 3 == 0) {
            _layer->setDrawableSize(window.size());
        }
        ASSERT_TRUE(drawFrame(red));
    }
    EXPECT_TRUE(drawUntilShown(window, lastPixel(window), green));
    EXPECT_EQ(window.pixel({0, 0}), green);
    _layer->setPresentationTarget({});
}

TEST_F(Presentation, AHiddenWindowLosesNoFrameAndShowsThemAgainOnceMapped) {
    TestWindow window(_otherServer, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    ASSERT_TRUE(drawUntilShown(window, {0, 0}, red));
    for (int i = 0; i < 10; ++i) {
        window.unmap();
        for (int frame = 0; frame < 5; ++frame) {
            ASSERT_TRUE(drawFrame(green));
        }
        EXPECT_TRUE(waitUntilCompleted());
        window.map();
    }
    EXPECT_TRUE(drawUntilShown(window, {0, 0}, blue));
    _layer->setPresentationTarget({});
}

TEST_F(Presentation, FramesGoOnWhenTheWindowIsDestroyedUnderThem) {
    for (int round = 0; round < 10; ++round) {
        TestWindow window(_otherServer, _server, defaultSize);
        _layer->setPresentationTarget(window.target());
        ASSERT_TRUE(drawUntilShown(window, {0, 0}, red));
        ASSERT_TRUE(drawFrame(green));
        window.destroy();
        std::vector<std::string> log;
        ASSERT_TRUE(eventually([&] {
            log = takeLog();
            return drawFrame(green) && waitUntilCompleted() && !log.empty();
        }));
        for (int frame = 0; frame < 20; ++frame) {
            ASSERT_TRUE(drawFrame(green));
        }
        EXPECT_TRUE(waitUntilCompleted());
        _layer->setPresentationTarget({});
        EXPECT_EQ(log, std::vector<std::string>{"gpu: a window has gone; its frames are no longer shown"});
    }
}

TEST_F(Presentation, ATargetThatNeverExistedIsToldOnceAndDoesNoHarm) {
    _layer->setPresentationTarget({.window = gpu::XcbWindow{_server.connection(), 0x1FFFFFF0},
                                   .willPresentFirstFrame = [] { ADD_FAILURE() << "there is no window"; }});
    std::vector<std::string> log;
    ASSERT_TRUE(eventually([&] {
        log = takeLog();
        return drawFrame(green) && waitUntilCompleted() && !log.empty();
    }));
    ASSERT_TRUE(drawFrame(green));
    _layer->setPresentationTarget({.window = gpu::XcbWindow{nullptr, 5}, .willPresentFirstFrame = {}});
    ASSERT_TRUE(drawFrame(green));
    _layer->setPresentationTarget({.window = gpu::XcbWindow{_server.connection(), 0}, .willPresentFirstFrame = {}});
    ASSERT_TRUE(drawFrame(green));
    EXPECT_TRUE(waitUntilCompleted());
}

TEST_F(Presentation, AWindowMayBeDestroyedOnceItIsNoLongerTheTarget) {
    for (int round = 0; round < 20; ++round) {
        TestWindow window(_server, _server, defaultSize);
        _layer->setPresentationTarget(window.target());
        ASSERT_TRUE(drawUntilShown(window, {0, 0}, round % 2 == 0 ? red : green));
        ASSERT_TRUE(drawFrame(blue));
        _layer->setPresentationTarget({});
        window.destroy();
        ASSERT_TRUE(drawFrame(blue));
    }
}

TEST_F(Presentation, FramesMoveToAnotherWindowAndBack) {
    TestWindow first(_server, _server, defaultSize);
    TestWindow second(_server, _server, {30, 30});
    _layer->setPresentationTarget(first.target());
    EXPECT_TRUE(drawUntilShown(first, {0, 0}, red));
    _layer->setPresentationTarget(second.target());
    EXPECT_TRUE(drawUntilShown(second, {0, 0}, green));
    second.unmap();
    _layer->setPresentationTarget(first.target());
    EXPECT_TRUE(drawUntilShown(first, {0, 0}, blue));
    _layer->setPresentationTarget({});
}

TEST_F(Presentation, ALayerMayGoWhileFramesAreInFlight) {
    for (int round = 0; round < 10; ++round) {
        TestWindow window(_server, _server, defaultSize);
        _layer->setPresentationTarget(window.target());
        for (int frame = 0; frame < 3; ++frame) {
            ASSERT_TRUE(drawFrame(red));
        }
        const std::weak_ptr<gpu::Layer> former = _layer;
        _layer = _backend->newLayer();
        _layer->setDevice(_device);
        _layer->setDrawableSize(defaultSize);
        // The former one ends its frames first, and with them the layer and all its use of the window.
        _queue = _device->newCommandQueue();
        EXPECT_TRUE(former.expired());
    }
}

TEST_F(Presentation, AStuckWindowHoldsUpNeitherFramesNorTheChangeOfTarget) {
    TestWindow window(_server, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    ASSERT_TRUE(drawUntilShown(window, {0, 0}, red));
    _otherServer.grab();
    for (int frame = 0; frame < 50; ++frame) {
        EXPECT_TRUE(drawFrame(green));
    }
    EXPECT_TRUE(waitUntilCompleted());
    const auto start = std::chrono::steady_clock::now();
    _layer->setPresentationTarget({});
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
    EXPECT_EQ(takeLog().size(), 1U);
    for (int frame = 0; frame < 20; ++frame) {
        EXPECT_TRUE(drawFrame(green));
    }
    EXPECT_TRUE(waitUntilCompleted());
    _otherServer.ungrab();

    // What was left behind finishes by itself and lets go of the device.
    const std::weak_ptr<gpu::Device> device = _device;
    _layer.reset();
    _queue.reset();
    _device.reset();
    EXPECT_TRUE(eventually([&] { return device.expired(); }));
}

}  // namespace
