#pragma once

#include "platform/PreferencesStore.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "tests/renderhost/RendererTest.hpp"
#include "tests/support/EventLoop.hpp"
#include "view/QZLScreenSaverView.hpp"

#include <QtWidgets/QApplication>

/// A saver's view whose parts a test may look at.
class LookedAtView : public QZLScreenSaverView {
public:
    using QZLScreenSaverView::diagnosticField;
    using QZLScreenSaverView::diagnosticTimer;
    using QZLScreenSaverView::errorView;
    using QZLScreenSaverView::QZLScreenSaverView;
    using QZLScreenSaverView::renderer;
    using QZLScreenSaverView::sizeSettled;
};

/// Views on fake screens, with settings in memory.
class ViewTest : public testing::Test, protected RendererWorld {
protected:
    ViewTest() {
        store = platform::makeMemoryPreferencesStore();
        platform::setPreferencesStore(store);
        platform::setSystemLogSink([this](std::string_view line) { log.emplace_back(line); });
    }
    ~ViewTest() override { platform::setPreferencesStore(nullptr); }

    /// A view of the fixture's renderer on the fixture's screen; each view that follows has a renderer of its own.
    template <typename View = LookedAtView>
    std::unique_ptr<View> makeView(bool isPreview = false, std::optional<std::uint32_t> screen = 0,
                                   const platform::Rect& frame = {0, 0, 640, 480}) {
        const auto hostView = std::exchange(nextHostView, std::make_shared<fake::HostView>());
        hostView->screen = screen;
        hostView->viewBounds = {0, 0, frame.width, frame.height};
        const auto nextRenderer = std::exchange(ownRenderer, QZLMakeRenderer<RecordingRenderer>());
        auto made = std::make_unique<View>(nextRenderer, frame, isPreview);
        made->setHostView(hostView);
        return made;
    }

    static std::vector<std::string> linesOf(const QZLScreenSaverView& view) {
        std::vector<std::string> lines;
        std::istringstream text(view.journal()->accumulatedMessages());
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    std::shared_ptr<platform::PreferencesStore> store;
    std::vector<std::string> log;

private:
    std::shared_ptr<fake::HostView> nextHostView = view;
    std::shared_ptr<RecordingRenderer> ownRenderer = QZLMakeRenderer<RecordingRenderer>();
};
