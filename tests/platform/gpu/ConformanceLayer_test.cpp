#include "tests/platform/gpu/Conformance.hpp"

#include <algorithm>
#include <atomic>
#include <set>

using gpu::LoadAction;
using gpu::PixelFormat;

namespace {

constexpr gpu::ClearColor color{0.2, 0.4, 0.6, 1.0};

std::vector<std::byte> pixelsOfThatColor(std::size_t count) {
    std::vector<std::byte> pixels;
    for (std::size_t index = 0; index < count; ++index) {
        for (const unsigned byte : {153, 102, 51, 255}) {
            pixels.push_back(static_cast<std::byte>(byte));
        }
    }
    return pixels;
}

/// Notes what it sees, and reads every completed frame back.
class RecordingObserver final : public gpu::FrameObserver {
public:
    explicit RecordingObserver(std::weak_ptr<gpu::Layer> layer) : _layer(std::move(layer)) {}

    void drawableTaken(const gpu::Drawable& drawable) override { note("taken", drawable); }
    void frameCommitted(const gpu::Drawable& drawable) override { note("committed", drawable); }
    void frameScheduled(const gpu::Drawable& drawable) override { note("scheduled", drawable); }
    void frameCompleted(const gpu::Drawable& drawable, bool succeeded) override {
        note(succeeded ? "completed" : "failed", drawable);
        if (const auto layer = _layer.lock()) {
            const std::lock_guard lock(_mutex);
            _pixels.push_back(layer->readPixels(drawable));
        }
    }

    void note(const std::string& event) {
        const std::lock_guard lock(_mutex);
        _events.push_back(event);
    }
    std::vector<std::string> events() const {
        const std::lock_guard lock(_mutex);
        return _events;
    }
    std::vector<std::vector<std::byte>> pixels() const {
        const std::lock_guard lock(_mutex);
        return _pixels;
    }

private:
    void note(const char* event, const gpu::Drawable& drawable) {
        note(event + (" " + std::to_string(drawable.identifier())));
    }

    std::weak_ptr<gpu::Layer> _layer;
    mutable std::mutex _mutex;
    std::vector<std::string> _events;
    std::vector<std::vector<std::byte>> _pixels;
};

}  // namespace

TEST_P(Conformance, ALayerStartsWithThePlatformsDefaults) {
    const auto layer = backend->newLayer();
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->device(), nullptr);
    EXPECT_EQ(layer->pixelFormat(), PixelFormat::BGRA8Unorm);
    EXPECT_TRUE(layer->framebufferOnly());
    EXPECT_EQ(layer->drawableSize(), (gpu::Extent{0, 0}));
}

TEST_P(Conformance, ALayerWithoutDeviceOrSizeYieldsNoDrawable) {
    const auto layer = backend->newLayer();
    layer->setDrawableSize({4, 4});
    EXPECT_EQ(layer->nextDrawable(), nullptr) << "no device";
    layer->setDevice(device);
    layer->setDrawableSize({0, 4});
    EXPECT_EQ(layer->nextDrawable(), nullptr) << "no width";
    layer->setDrawableSize({4, 0});
    EXPECT_EQ(layer->nextDrawable(), nullptr) << "no height";
    layer->setDrawableSize({4, 4});
    EXPECT_NE(layer->nextDrawable(), nullptr);
}

TEST_P(Conformance, ADrawablesTextureIsWhatTheLayerAskedFor) {
    const auto layer = makeLayer({7, 5});
    const auto drawable = layer->nextDrawable();
    ASSERT_NE(drawable, nullptr);
    EXPECT_EQ(drawable->layer(), layer);
    EXPECT_EQ(drawable->texture()->size(), (gpu::Extent{7, 5}));
    EXPECT_EQ(drawable->texture()->pixelFormat(), PixelFormat::BGRA8Unorm);
    EXPECT_EQ(drawable->texture()->device(), device);
    EXPECT_TRUE(drawable->texture()->isFramebufferOnly());
    layer->setFramebufferOnly(false);
    EXPECT_FALSE(layer->nextDrawable()->texture()->isFramebufferOnly());
    EXPECT_TRUE(drawable->texture()->isFramebufferOnly()) << "the earlier one stays as it was";
}

TEST_P(Conformance, DrawablesAreCountedFromZeroAndTheirImagesUsedAgain) {
    const auto layer = makeLayer({4, 4});
    std::set<gpu::Texture*> images;
    std::vector<std::shared_ptr<gpu::Texture>> kept;  // so that no address comes twice for another image
    for (std::uint64_t frame = 0; frame < 20; ++frame) {
        const auto drawable = drawFrame(*layer, color);
        ASSERT_NE(drawable, nullptr) << frame;
        EXPECT_EQ(drawable->identifier(), frame);
        images.insert(drawable->texture().get());
        kept.push_back(drawable->texture());
        finish();
    }
    EXPECT_LE(images.size(), 8u);
}

TEST_P(Conformance, AnImageForEverySlotAndOneBeingShownCanBeHeldAtOnce) {
    const auto layer = makeLayer({4, 4});
    std::vector<std::shared_ptr<gpu::Drawable>> held;
    std::set<gpu::Texture*> images;
    for (int count = 0; count < 4; ++count) {
        held.push_back(layer->nextDrawable());
        ASSERT_NE(held.back(), nullptr);
        images.insert(held.back()->texture().get());
    }
    EXPECT_EQ(images.size(), 4u);
}

TEST_P(Conformance, AnImageIsNotUsedAgainBeforeItsFramesHandlersHaveRun) {
    const auto layer = makeLayer({4, 4});
    auto drawable = layer->nextDrawable();
    const auto texture = drawable->texture();
    std::atomic<bool> usedAgain = false;
    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(passInto(texture, LoadAction::Clear, color))->endEncoding();
    buffer->presentDrawable(std::move(drawable));
    buffer->addCompletedHandler([&](gpu::CommandBuffer&) {
        std::vector<std::shared_ptr<gpu::Drawable>> others;
        for (int count = 0; count < 3; ++count) {
            others.push_back(layer->nextDrawable());
            usedAgain = usedAgain || others.back()->texture() == texture;
        }
    });
    commit(buffer);
    finish();
    EXPECT_FALSE(usedAgain);
}

TEST_P(Conformance, ANewSizeHoldsForTheNextDrawableAndNotForThoseInFlight) {
    const auto layer = makeLayer({4, 4});
    const auto before = drawFrame(*layer, color);
    layer->setDrawableSize({6, 2});
    const auto after = drawFrame(*layer, color);
    finish();
    EXPECT_EQ(before->texture()->size(), (gpu::Extent{4, 4}));
    EXPECT_EQ(after->texture()->size(), (gpu::Extent{6, 2}));
    EXPECT_EQ(after->identifier(), 1u);
    EXPECT_EQ(layer->readPixels(*before), pixelsOfThatColor(16));
    EXPECT_EQ(layer->readPixels(*after), pixelsOfThatColor(12));
}

TEST_P(Conformance, AFrameCanBeReadBackAlsoWhenItsImageIsForDrawingOnly) {
    const auto layer = makeLayer({5, 3});
    for (const bool framebufferOnly : {true, false}) {
        layer->setFramebufferOnly(framebufferOnly);
        const auto drawable = drawFrame(*layer, color);
        ASSERT_NE(drawable, nullptr);
        finish();
        EXPECT_EQ(layer->readPixels(*drawable), pixelsOfThatColor(15));
    }
}

TEST_P(Conformance, AnObserverSeesEveryFrameInOrder) {
    const auto layer = makeLayer({3, 2});
    const auto observer = std::make_shared<RecordingObserver>(layer);
    layer->setFrameObserver(observer);
    for (int frame = 0; frame < 2; ++frame) {
        const auto drawable = layer->nextDrawable();
        const auto buffer = queue->commandBuffer();
        buffer->renderCommandEncoder(passInto(drawable->texture(), LoadAction::Clear, color))->endEncoding();
        buffer->addScheduledHandler([observer](gpu::CommandBuffer&) { observer->note("scheduled handler"); });
        buffer->addCompletedHandler([observer](gpu::CommandBuffer&) { observer->note("completed handler"); });
        buffer->presentDrawable(drawable);
        commit(buffer);
        finish();
    }
    std::vector<std::string> expected;
    for (const std::string number : {"0", "1"}) {
        for (const std::string& event :
             {"taken " + number, "committed " + number, "scheduled " + number, std::string("scheduled handler"),
              "completed " + number, std::string("completed handler")}) {
            expected.push_back(event);
        }
    }
    EXPECT_EQ(observer->events(), expected);
    EXPECT_EQ(observer->pixels(), (std::vector{pixelsOfThatColor(6), pixelsOfThatColor(6)}));
}

TEST_P(Conformance, AnObserverTakenAwaySeesNothingMore) {
    const auto layer = makeLayer({3, 2});
    const auto observer = std::make_shared<RecordingObserver>(layer);
    layer->setFrameObserver(observer);
    layer->setFrameObserver(nullptr);
    drawFrame(*layer, color);
    finish();
    EXPECT_EQ(observer->events(), std::vector<std::string>());
    EXPECT_EQ(observer.use_count(), 1);
}

TEST_P(Conformance, AFrameThatIsNotPresentedIsOnlyTaken) {
    const auto layer = makeLayer({3, 2});
    const auto observer = std::make_shared<RecordingObserver>(layer);
    layer->setFrameObserver(observer);
    const auto drawable = layer->nextDrawable();
    clear(drawable->texture(), color);
    finish();
    EXPECT_EQ(observer->events(), std::vector<std::string>{"taken 0"});
}

TEST_P(Conformance, ALayerMayGoWithItsFramesInFlight) {
    auto layer = makeLayer({4, 4});
    const std::weak_ptr<gpu::Layer> gone = layer;
    std::vector<std::shared_ptr<gpu::Drawable>> frames;
    for (int frame = 0; frame < 3; ++frame) {
        frames.push_back(drawFrame(*layer, color));
    }
    layer.reset();
    finish();
    EXPECT_TRUE(eventually([&gone] { return gone.expired(); }));
    for (const auto& drawable : frames) {
        EXPECT_EQ(drawable->layer(), nullptr);
        EXPECT_EQ(drawable->texture()->size(), (gpu::Extent{4, 4}));
    }
}
