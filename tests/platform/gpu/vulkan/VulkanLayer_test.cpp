#include "PresentationTest.hpp"
#include "platform/gpu/RenderPassDescriptor.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"

#include <cstddef>
#include <cstdlib>
#include <new>
#include <set>
#include <thread>

namespace {

/// Allocations by C++ code on this thread.
thread_local std::size_t allocations = 0;

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++allocations;
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size) {
    if (void* const memory = operator new(size, std::nothrow)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using VulkanLayer = PresentationTest;

std::vector<std::byte> filled(gpu::Extent size, std::uint32_t color) {
    std::vector<std::byte> pixels;
    for (std::size_t i = 0; i < size.width * size.height; ++i) {
        for (const std::uint32_t component : {color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF, 0xFFU}) {
            pixels.push_back(static_cast<std::byte>(component));
        }
    }
    return pixels;
}

/// Reads every frame back as soon as it is complete.
class Reader final : public gpu::FrameObserver {
public:
    explicit Reader(gpu::Layer& layer) : _layer(layer) {}
    void drawableTaken(const gpu::Drawable&) override {}
    void frameCommitted(const gpu::Drawable&) override {}
    void frameScheduled(const gpu::Drawable&) override {}
    void frameCompleted(const gpu::Drawable& drawable, bool succeeded) override {
        EXPECT_TRUE(succeeded);
        frames.push_back(_layer.readPixels(drawable));
    }

    std::vector<std::vector<std::byte>> frames;

private:
    gpu::Layer& _layer;
};

TEST_F(VulkanLayer, DrawsWithoutAWindow) {
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(drawFrame(0xFF00FF));
    }
    EXPECT_TRUE(waitUntilCompleted());
}

TEST_F(VulkanLayer, HasNoDrawableWithoutDeviceOrSize) {
    for (const gpu::Extent size : {gpu::Extent{0, 48}, gpu::Extent{64, 0}, gpu::Extent{0, 0}}) {
        _layer->setDrawableSize(size);
        EXPECT_EQ(_layer->nextDrawable(), nullptr);
    }
    _layer->setDrawableSize(defaultSize);
    _layer->setDevice(nullptr);
    EXPECT_EQ(_layer->nextDrawable(), nullptr);
    _layer->setDevice(_device);
    EXPECT_NE(_layer->nextDrawable(), nullptr);
}

TEST_F(VulkanLayer, HasNoDrawableOfASizeThatNoDeviceHas) {
    _layer->setDrawableSize({1'000'000, 1'000'000});
    EXPECT_EQ(_layer->nextDrawable(), nullptr);
    _layer->setDrawableSize(defaultSize);
    EXPECT_NE(_layer->nextDrawable(), nullptr);
    takeLog();
}

TEST_F(VulkanLayer, DrawablesSayWhoseTheyAreAndAreCounted) {
    const auto first = _layer->nextDrawable();
    const auto second = _layer->nextDrawable();
    EXPECT_EQ(first->identifier(), 0U);
    EXPECT_EQ(second->identifier(), 1U);
    EXPECT_EQ(first->layer(), _layer);
    EXPECT_EQ(first->texture()->size(), defaultSize);
    EXPECT_EQ(first->texture()->pixelFormat(), gpu::PixelFormat::BGRA8Unorm);
    EXPECT_TRUE(first->texture()->isFramebufferOnly());
    EXPECT_NE(first->texture(), second->texture());
    _layer.reset();
    EXPECT_EQ(first->layer(), nullptr);
}

TEST_F(VulkanLayer, TakesUpAFormatAndPermissionSetLater) {
    EXPECT_TRUE(_layer->nextDrawable()->texture()->isFramebufferOnly());
    _layer->setFramebufferOnly(false);
    EXPECT_FALSE(_layer->nextDrawable()->texture()->isFramebufferOnly());
    _layer->setPixelFormat(gpu::PixelFormat::RGBA8Unorm);
    EXPECT_EQ(_layer->nextDrawable()->texture()->pixelFormat(), gpu::PixelFormat::RGBA8Unorm);
}

TEST_F(VulkanLayer, UsesAnImageForEveryFrameInFlightOneThatIsShownAndOneThatIsComingBack) {
    TestWindow window(_server, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    std::set<const gpu::Texture*> images;
    for (int i = 0; i < 300; ++i) {
        ASSERT_TRUE(eventually([this] { return _framesCommitted - _framesCompleted < framesInFlight; }));
        images.insert(_layer->nextDrawable()->texture().get());
        ASSERT_TRUE(drawFrame(0xFF00FF));
    }
    EXPECT_LE(images.size(), 5U) << "a frame's image comes back just after its handlers have run";
    _layer->setPresentationTarget({});
}

TEST_F(VulkanLayer, AnImageIsItsOwnersWhileAnyReferenceToItsDrawableLives) {
    auto drawable = _layer->nextDrawable();
    const std::shared_ptr<gpu::Texture> texture = drawable->texture();
    std::weak_ptr<gpu::Drawable> observer = drawable;
    const auto comesBack = [&] {
        std::vector<std::shared_ptr<gpu::Drawable>> taken;
        for (int i = 0; i < 4; ++i) {
            taken.push_back(_layer->nextDrawable());
            if (taken.back()->texture() == texture) {
                return true;
            }
        }
        return false;
    };
    EXPECT_FALSE(comesBack());
    std::thread([last = std::exchange(drawable, nullptr)]() mutable { last.reset(); }).join();
    EXPECT_TRUE(observer.expired());
    EXPECT_FALSE(comesBack());
    observer.reset();
    EXPECT_TRUE(comesBack());
}

TEST_F(VulkanLayer, CallersThatHoldOnToDrawablesGetEightAndThenNone) {
    std::vector<std::shared_ptr<gpu::Drawable>> held;
    std::set<const gpu::Texture*> images;
    for (int i = 0; i < 8; ++i) {
        held.push_back(_layer->nextDrawable());
        ASSERT_NE(held.back(), nullptr);
        images.insert(held.back()->texture().get());
    }
    EXPECT_EQ(images.size(), 8U);
    EXPECT_EQ(_layer->nextDrawable(), nullptr);
    held.pop_back();
    EXPECT_NE(_layer->nextDrawable(), nullptr);
}

TEST_F(VulkanLayer, AFrameWaitingForAStuckWindowMakesRoomForTheNext) {
    TestWindow window(_server, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    ASSERT_TRUE(drawUntilShown(window, {0, 0}, 0xFF0000));
    _otherServer.grab();
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(drawFrame(0x00FF00));  // one may now be stuck in the window, and one waits
        EXPECT_TRUE(waitUntilCompleted());
    }
    std::vector<std::shared_ptr<gpu::Drawable>> held;
    std::set<const gpu::Texture*> images;
    for (int i = 0; i < 3; ++i) {
        held.push_back(_layer->nextDrawable());
        images.insert(held.back()->texture().get());
    }
    EXPECT_EQ(images.size(), 3U);
    held.clear();
    _otherServer.ungrab();
    _layer->setPresentationTarget({});
}

TEST_F(VulkanLayer, ASteadyFrameTakesItsDrawableWithoutAllocating) {
    auto takeThree = [this, last = std::shared_ptr<gpu::Drawable>()]() mutable {
        const auto first = _layer->nextDrawable();
        const auto second = _layer->nextDrawable();
        last = _layer->nextDrawable();
        return last != nullptr;
    };
    EXPECT_TRUE(takeThree() && takeThree());  // now all four images are made
    const std::size_t before = allocations;
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(takeThree());
    }
    EXPECT_EQ(allocations, before);
}

TEST_F(VulkanLayer, ImagesOfTheOldSizeLiveOnUntilTheirFramesAreDone) {
    const auto reader = std::make_shared<Reader>(*_layer);
    _layer->setFrameObserver(reader);
    const auto old = _layer->nextDrawable();
    ASSERT_TRUE(drawFrame(0x112233));
    _layer->setDrawableSize({7, 5});
    ASSERT_TRUE(drawFrame(0x445566));
    EXPECT_TRUE(waitUntilCompleted());
    _layer->setFrameObserver(nullptr);
    ASSERT_EQ(reader->frames.size(), 2U);
    EXPECT_EQ(reader->frames[0], filled(defaultSize, 0x112233));
    EXPECT_EQ(reader->frames[1], filled({7, 5}, 0x445566));
    EXPECT_EQ(old->texture()->size(), defaultSize);
    EXPECT_EQ(_layer->readPixels(*old).size(), defaultSize.width * defaultSize.height * 4);
}

TEST_F(VulkanLayer, PixelsAreReadBackWhateverTheFramebufferIsFor) {
    for (const bool framebufferOnly : {true, false}) {
        _layer->setFramebufferOnly(framebufferOnly);
        const auto reader = std::make_shared<Reader>(*_layer);
        _layer->setFrameObserver(reader);
        ASSERT_TRUE(drawFrame(0x123456));
        EXPECT_TRUE(waitUntilCompleted());
        _layer->setFrameObserver(nullptr);
        ASSERT_EQ(reader->frames.size(), 1U);
        EXPECT_EQ(reader->frames[0], filled(defaultSize, 0x123456));
    }
}

TEST_F(VulkanLayer, PixelsAreReadBackWhileTheFrameIsBeingShown) {
    TestWindow window(_server, _server, defaultSize);
    _layer->setPresentationTarget(window.target());
    const auto reader = std::make_shared<Reader>(*_layer);
    _layer->setFrameObserver(reader);
    for (std::uint32_t i = 0; i < 60; ++i) {
        ASSERT_TRUE(drawFrame(i));
    }
    EXPECT_TRUE(waitUntilCompleted());
    _layer->setFrameObserver(nullptr);
    _layer->setPresentationTarget({});
    ASSERT_EQ(reader->frames.size(), 60U);
    for (std::uint32_t i = 0; i < 60; ++i) {
        EXPECT_EQ(reader->frames[i], filled(defaultSize, i)) << "frame " << i;
    }
}

TEST_F(VulkanLayer, PixelsOfAnotherSizeThanFourBytesAreNotReadBack) {
    _layer->setPixelFormat(gpu::PixelFormat::RGBA16Float);
    const auto drawable = _layer->nextDrawable();
    ASSERT_NE(drawable, nullptr);
    EXPECT_TRUE(_layer->readPixels(*drawable).empty());
}

TEST_F(VulkanLayer, OnALostDeviceThereAreDrawablesButNoPixels) {
    const auto before = _layer->nextDrawable();
    ASSERT_NE(before, nullptr);
    gpu::vulkan::loseDevice(*_layer->device());
    const auto after = _layer->nextDrawable();
    ASSERT_NE(after, nullptr);
    EXPECT_TRUE(_layer->readPixels(*before).empty());
    EXPECT_TRUE(_layer->readPixels(*after).empty());
    EXPECT_EQ(takeLog().size(), 1U) << "that it was lost";
}

}  // namespace
