#include "platform/HostView.hpp"
#include "platform/PreferencesStore.hpp"
#include "platform/SystemLog.hpp"
#include "platform/gpu/Layer.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "platform/ui/ApplicationDisplay.hpp"
#include "platform/ui/LayerWidget.hpp"
#include "saver/QZLCirraneView.hpp"
#include "tests/platform/gpu/vulkan/FaultyVulkan.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QApplication>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <iostream>
#include <mutex>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr QSize usualSize{320, 240};

/// Handles events until the condition holds; false when the deadline passes first.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds deadline = std::chrono::seconds(60)) {
    constexpr int slice = 5;
    QElapsedTimer timer;
    timer.start();
    while (!condition() && !timer.hasExpired(deadline.count())) {
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, slice);
    }
    return condition();
}

/// Counts the frames of all layers that it is given to.
class FrameCounter final : public gpu::FrameObserver {
public:
    std::atomic<std::uint64_t> taken = 0;
    std::atomic<std::uint64_t> completed = 0;
    std::atomic<std::uint64_t> failed = 0;
    std::atomic<std::uint64_t> mostInFlight = 0;

    void drawableTaken(const gpu::Drawable&) override {
        const std::uint64_t inFlight = ++taken - completed;
        mostInFlight = std::max(mostInFlight.load(), inFlight);
    }
    void frameCommitted(const gpu::Drawable&) override {}
    void frameScheduled(const gpu::Drawable&) override {}
    void frameCompleted(const gpu::Drawable&, bool succeeded) override {
        failed += succeeded ? 0 : 1;
        ++completed;
    }
};

/// A view as its widget presents it, but on a display that refreshes a thousand times a second.
class FastView final : public platform::HostView {
public:
    FastView(std::shared_ptr<platform::HostView> view, std::shared_ptr<FrameCounter> counter)
        : _view(std::move(view)), _counter(std::move(counter)) {}

    platform::Rect bounds() const override { return _view->bounds(); }
    platform::Rect convertRectToBacking(const platform::Rect& rect) const override {
        return _view->convertRectToBacking(rect);
    }
    std::optional<std::uint32_t> screenNumber() const override { return _view->screenNumber(); }
    int createDisplayLink(std::uint32_t, std::unique_ptr<platform::DisplayLink>& link) override {
        link = platform::makeTimerDisplayLink({1, 1000});
        return platform::displayLinkSuccess;
    }
    void setLayer(std::shared_ptr<gpu::Layer> newLayer) override {
        if (newLayer != nullptr) {
            newLayer->setFrameObserver(_counter);
        }
        layer = newLayer;
        _view->setLayer(std::move(newLayer));
    }
    void setWantsLayer(bool wantsLayer) override { _view->setWantsLayer(wantsLayer); }

    std::weak_ptr<gpu::Layer> layer;

private:
    std::shared_ptr<platform::HostView> _view;
    std::shared_ptr<FrameCounter> _counter;
};

double median(std::vector<std::uint64_t> values) {
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return static_cast<double>(values[values.size() / 2]);
}

std::uint64_t residentBytes() {
    malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    std::uint64_t total = 0;
    std::uint64_t resident = 0;
    file >> total >> resident;
    return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

enum class Validation { Off, On };

/// A running view of the clouds in a window, on the real driver.
class Soak : public testing::TestWithParam<Validation> {
protected:
    Soak() {
        platform::setPreferencesStore(platform::makeMemoryPreferencesStore());
        platform::setSystemLogSink([](std::string_view) {});
        gpu::vulkan::VulkanOptions options;
        options.presentation = platform::applicationPresentationServer();
        options.validate = GetParam() == Validation::On;
        options.validationMessage = [this](std::string_view message) {
            const std::lock_guard lock(_mutex);
            _messages.emplace_back(message);
        };
        gpu::setBackend(gpu::vulkan::makeVulkanBackend(std::move(options)));

        view = std::make_unique<QZLCirraneView>(
            platform::Rect{0, 0, double(usualSize.width()), double(usualSize.height())}, false);
        hostView = std::make_shared<FastView>(view->hostView(), counter);
        view->setHostView(hostView);
        view->show();
        view->startAnimation();
    }

    ~Soak() override {
        view.reset();
        gpu::setBackend(nullptr);
        platform::setSystemLogSink({});
        for (const std::string& message : _messages) {
            ADD_FAILURE() << message;
        }
    }

    bool drawFrames(std::uint64_t count) const {
        const std::uint64_t wanted = counter->completed + count;
        return eventually([&] { return counter->completed >= wanted; });
    }

    /// True once the picture has the window's size.
    bool isSharp() const {
        const auto layer = hostView->layer.lock();
        return layer != nullptr && layer->drawableSize() == gpu::Extent{static_cast<std::uint64_t>(view->width()),
                                                                        static_cast<std::uint64_t>(view->height())};
    }

    fake::BuiltBundle bundle;
    std::shared_ptr<FrameCounter> counter = std::make_shared<FrameCounter>();
    std::unique_ptr<QZLCirraneView> view;
    std::shared_ptr<FastView> hostView;

private:
    std::mutex _mutex;
    std::vector<std::string> _messages;
};

constexpr std::uint64_t frames = 20'000;
constexpr int resizes = 200;
constexpr int stops = 50;
constexpr int hides = 20;

TEST_P(Soak, TwentyThousandFramesOverResizesStopsAndHidesLoseNothing) {
    std::mt19937 random(1);  // NOLINT(cert-msc51-cpp): the same run every time
    const auto between = [&random](int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(random);
    };

    std::vector<std::uint64_t> resident;  // at the usual size, again and again
    const auto measureMemory = [&] {
        view->resize(usualSize);
        ASSERT_TRUE(eventually([&] { return isSharp(); }) && drawFrames(50));
        resident.push_back(residentBytes());
    };
    for (int step = 0; step < resizes; ++step) {
        if (step % (resizes / 20) == 0) {
            measureMemory();
        }
        view->resize(between(100, 500), between(80, 400));
        if (step % 2 == 0) {  // every second one comes before the one before it has settled
            ASSERT_TRUE(eventually([&] { return isSharp(); })) << step;
        }
        if (step % (resizes / stops) == 0) {
            view->stopAnimation();
            view->startAnimation();
        }
        if (step % (resizes / hides) == 0) {
            view->hide();
            QApplication::processEvents();
            view->show();
        }
        ASSERT_TRUE(drawFrames(20)) << step;
    }
    measureMemory();
    ASSERT_TRUE(eventually([&] { return counter->completed >= frames; }, std::chrono::minutes(5)));
    measureMemory();
    EXPECT_EQ(counter->failed, 0U);
    EXPECT_FALSE(view->shownError());

    counter->mostInFlight = 0;
    EXPECT_TRUE(eventually([&] { return counter->mostInFlight == QZLMetalRenderer::inFlightSlots; }))
        << "a slot was lost";

    // The first quarter fills caches; the validation layer keeps books that grow.
    if (GetParam() == Validation::Off) {
        const auto half = resident.begin() + static_cast<std::ptrdiff_t>(resident.size() * 5 / 8);
        const double before = median({resident.begin() + static_cast<std::ptrdiff_t>(resident.size() / 4), half});
        const double after = median({half, resident.end()});
        std::cout << counter->completed << " frames; " << before / 1024 << " KiB, then " << after / 1024 << " KiB\n";
        EXPECT_LT(after, 1.02 * before);
    }
}

TEST_P(Soak, InTheSecondAfterAStopNothingIsSubmittedToTheGpu) {
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(drawFrames(30));
        EXPECT_GT(fake::vulkan::submissions(), 0U);
        view->stopAnimation();
        const std::uint64_t submitted = fake::vulkan::submissions();
        const std::uint64_t taken = counter->taken;
        QElapsedTimer second;
        second.start();
        eventually([&] { return second.hasExpired(1000); });
        EXPECT_EQ(fake::vulkan::submissions(), submitted);
        EXPECT_EQ(counter->taken, taken);
        view->startAnimation();
    }
}

INSTANTIATE_TEST_SUITE_P(Validation, Soak, testing::Values(Validation::Off, Validation::On),
                         [](const auto& parameter) { return parameter.param == Validation::On ? "On" : "Off"; });

}  // namespace
