#pragma once

#include "foundation/QZLEnvironment.hpp"
#include "foundation/QZLJournal.hpp"
#include "foundation/QZLPrecisionTime.hpp"
#include "platform/SystemLog.hpp"
#include "renderhost/QZLMetalRenderer.hpp"
#include "tests/support/FakeClock.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/FakeHostView.hpp"
#include "tests/support/ScopedEnvironment.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "tests/support/TestBundle.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

/// A saver's renderer that keeps what each frame was drawn with.
class RecordingRenderer : public QZLMetalRenderer {
public:
    struct Frame {
        std::int32_t bufferIndex;
        float brightness;
        std::uint64_t frameNumber;
        bool operator==(const Frame&) const = default;
    };

    std::vector<Frame> frames;
    std::function<void(QZLDrawContext&)> onDraw;
    std::function<bool()> onShouldSaveScreenshot;
    std::function<void()> onDetach;

    void drawFrame(QZLDrawContext& context) override {
        frames.push_back({context.bufferIndex(), context.brightness(), context.frameNumber()});
        if (onDraw) {
            onDraw(context);
        }
    }
    bool shouldSaveScreenshot() override { return onShouldSaveScreenshot && onShouldSaveScreenshot(); }
    void detachFromView() override {
        if (onDetach) {
            onDetach();
        }
        QZLMetalRenderer::detachFromView();
    }

    std::vector<std::int32_t> bufferIndices() const {
        std::vector<std::int32_t> result;
        for (const Frame& frame : frames) {
            result.push_back(frame.bufferIndex);
        }
        return result;
    }
};

/// All that a renderer needs, as fakes: a bundle, a home folder, a GPU, a view whose display link is fired by hand.
class RendererWorld {
public:
    RendererWorld() {
        platform::setSystemLogSink([](std::string_view) {});
        QZLForgetMacOsVersion();
        QZLPrecisionTimeNanoseconds();  // the process's zero point, at which no period can open
        clock.advance(1.0);
        renderer->setJournal(journal);
    }
    ~RendererWorld() {
        renderer.reset();
        QZLForgetMacOsVersion();
        platform::setSystemLogSink({});
    }

    std::optional<platform::Error> attach() { return renderer->attachToView(view, false, 0, statistics); }

    /// What the journal holds, line by line.
    std::vector<std::string> journalLines() const {
        std::vector<std::string> lines;
        std::istringstream text(journal->accumulatedMessages());
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    /// That many refreshes of the display.
    void fire(int refreshes) {
        for (int refresh = 0; refresh < refreshes; ++refresh) {
            view->displayLink->fire();
        }
    }

    /// The recorded GPU calls that start with this.
    std::vector<std::string> callsStartingWith(const std::string& start) const {
        std::vector<std::string> result;
        for (const std::string& call : gpu->calls()) {
            if (call.starts_with(start)) {
                result.push_back(call);
            }
        }
        return result;
    }

    fake::TemporaryDirectory home;
    fake::ScopedEnvironment homeVariable{"HOME", home.path().string()};
    fake::Clock clock;
    fake::Bundle bundle{
        {{"Vistashade", {{"QZL_JOURNAL_MESSAGE_FORMAT", "%@%@\n"}, {"QZL_JOURNAL_LOG_FORMAT", "%@%@%@"}}}}};
    fake::ScopedGpu gpu;
    std::shared_ptr<fake::HostView> view = std::make_shared<fake::HostView>();
    std::shared_ptr<QZLJournal> journal = std::make_shared<QZLJournal>();
    std::shared_ptr<QZLStatistics> statistics = std::make_shared<QZLStatistics>();
    std::shared_ptr<RecordingRenderer> renderer = QZLMakeRenderer<RecordingRenderer>();
};

class RendererTest : public testing::Test, protected RendererWorld {};
