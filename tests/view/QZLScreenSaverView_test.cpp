#include "view/QZLScreenSaverView.hpp"

#include "platform/NotificationCenter.hpp"
#include "settings/QZLNotifications.hpp"
#include "tests/support/FakeLayer.hpp"
#include "tests/view/ViewTest.hpp"

#include <new>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

class QZLScreenSaverViewTest : public ViewTest {};

TEST_F(QZLScreenSaverViewTest, APreviewIsJournalledAsOneAtEveryStart) {
    const auto preview = makeView(true, 3);
    preview->startAnimation();
    preview->stopAnimation();
    preview->startAnimation();
    for (const std::string& line : linesOf(*preview)) {
        EXPECT_THAT(line, StartsWith("[Preview] "));
    }
}

TEST_F(QZLScreenSaverViewTest, BeforeItsFirstStartAFullScreenViewHasNoNumber) {
    const auto made = makeView(false, 1);
    EXPECT_EQ(made->journal()->prefix(), "[Screen] ");
}

TEST_F(QZLScreenSaverViewTest, AFullScreenViewIsJournalledUnderTheScreenItIsOnAtEachStart) {
    const auto made = makeView(false, 0);
    made->setMultiScreen(true);
    made->startAnimation();
    EXPECT_EQ(made->journal()->prefix(), "[Screen 0] ");
    made->stopAnimation();
    view->screen = 1;
    made->startAnimation();
    EXPECT_EQ(made->journal()->prefix(), "[Screen 1] ");
    EXPECT_THAT(linesOf(*made), Contains("[Screen 0] Started animation."));
    EXPECT_THAT(linesOf(*made), Contains("[Screen 1] Started animation."));
}

TEST_F(QZLScreenSaverViewTest, TheSystemLogNamesTheSaver) {
    const auto made = makeView();
    made->startAnimation();
    EXPECT_THAT(log, Contains("Cirrane: [Screen 0] Started animation."));
}

TEST_F(QZLScreenSaverViewTest, ARendererWithoutAJournalGetsTheViews) {
    const auto made = makeView();
    EXPECT_EQ(made->renderer()->journal(), made->journal());
}

TEST_F(QZLScreenSaverViewTest, ARendererWithAJournalKeepsIt) {
    const LookedAtView made(renderer, {0, 0, 640, 480}, false);
    EXPECT_EQ(made.renderer()->journal(), journal);
}

TEST_F(QZLScreenSaverViewTest, HasNoPerFrameOperationOfItsOwn) {
    EXPECT_EQ(makeView()->animationTimeInterval(), -1.0);
}

TEST_F(QZLScreenSaverViewTest, APreviewIsAlwaysOnTheFirstScreen) {
    EXPECT_EQ(makeView(true, 3)->screenIndex(), 0U);
    EXPECT_EQ(makeView(true, std::nullopt)->screenIndex(), 0U);
}

TEST_F(QZLScreenSaverViewTest, OnlyTheFirstScreenDrawsWhileMultiScreenIsOff) {
    const auto first = makeView(false, 0);
    const auto second = makeView(false, 1);
    first->startAnimation();
    second->setShowDiagnostics(true);
    second->startAnimation();
    EXPECT_TRUE(first->renderer()->isAttached());
    EXPECT_FALSE(second->renderer()->isAttached());
    EXPECT_FALSE(second->showDiagnostics());
    EXPECT_TRUE(second->isAnimating());
    EXPECT_THAT(linesOf(*second), ElementsAre());
}

TEST_F(QZLScreenSaverViewTest, EveryScreenDrawsWhileMultiScreenIsOn) {
    for (const std::uint32_t screen : {0U, 1U, 2U}) {
        const auto made = makeView(false, screen);
        made->setMultiScreen(true);
        made->setShowDiagnostics(true);
        made->startAnimation();
        EXPECT_TRUE(made->renderer()->isAttached()) << screen;
        EXPECT_TRUE(made->showDiagnostics()) << screen;
    }
}

TEST_F(QZLScreenSaverViewTest, APreviewDrawsOnAnyScreen) {
    const auto preview = makeView(true, 2);
    preview->startAnimation();
    EXPECT_TRUE(view->displayLink->running);
}

TEST_F(QZLScreenSaverViewTest, AScreenMissingFromTheListCountsAsASecondOne) {
    const auto made = makeView(false, std::nullopt);
    made->startAnimation();
    EXPECT_EQ(made->screenIndex(), QZLScreenSaverView::notFound);
    EXPECT_EQ(made->journal()->prefix(), "[Screen -1] ");
    EXPECT_FALSE(made->renderer()->isAttached());
    made->setMultiScreen(true);
    made->startAnimation();
    EXPECT_TRUE(made->renderer()->isAttached());
}

TEST_F(QZLScreenSaverViewTest, StartedTwiceItAttachesOnceAndStartsItsRendererTwice) {
    const auto made = makeView();
    made->startAnimation();
    made->startAnimation();
    const auto lines = linesOf(*made);
    EXPECT_THAT(lines, Contains("[Screen 0] Attached Metal renderer successfully.").Times(1));
    EXPECT_THAT(lines, Contains("[Screen 0] Started animation.").Times(2));
}

TEST_F(QZLScreenSaverViewTest, StoppedItStaysAttached) {
    const auto made = makeView();
    made->startAnimation();
    EXPECT_TRUE(made->isAnimating());
    made->stopAnimation();
    EXPECT_FALSE(made->isAnimating());
    EXPECT_FALSE(view->displayLink->running);
    EXPECT_TRUE(made->renderer()->isAttached());
    made->startAnimation();
    EXPECT_TRUE(view->displayLink->running);
    EXPECT_THAT(linesOf(*made), Contains(EndsWith("Attached Metal renderer successfully.")).Times(1));
}

TEST_F(QZLScreenSaverViewTest, StartAndStopBeginNewStatistics) {
    const auto made = makeView();
    gpu->setCompletesAtCommit(true);
    const auto measureFrames = [&] {
        for (int frame = 0; frame < 120; ++frame) {
            made->statistics()->recordFramePresented();
            clock.advance(1.0 / 60.0);
        }
        return made->statistics()->frameRate();
    };
    EXPECT_GT(measureFrames(), 0.0);
    made->startAnimation();
    EXPECT_EQ(made->statistics()->frameRate(), 0.0);
    EXPECT_GT(measureFrames(), 0.0);
    made->stopAnimation();
    EXPECT_EQ(made->statistics()->frameRate(), 0.0);
}

TEST_F(QZLScreenSaverViewTest, TheRendererIsGivenTheViewsStatistics) {
    const auto made = makeView();
    gpu->setCompletesAtCommit(true);
    made->startAnimation();
    for (int refresh = 0; refresh < 120; ++refresh) {
        fire(1);
        clock.advance(1.0 / 60.0);
    }
    EXPECT_NEAR(made->statistics()->frameRate(), 60.0, 1.5);
}

TEST_F(QZLScreenSaverViewTest, DestroyingItStopsAndDetachesItsRenderer) {
    makeView()->startAnimation();
    EXPECT_FALSE(view->displayLink->exists);
    EXPECT_THAT(log, Contains(EndsWith("Stopped animation.")).Times(1));
    EXPECT_THAT(log.back(), EndsWith("Detached Metal renderer."));
}

TEST_F(QZLScreenSaverViewTest, DestroyingOneThatWasStoppedDoesNotStopItAgain) {
    {
        const auto made = makeView();
        made->startAnimation();
        made->stopAnimation();
    }
    EXPECT_THAT(log, Contains(EndsWith("Stopped animation.")).Times(1));
}

TEST_F(QZLScreenSaverViewTest, APreviewThatIsRedrawnWhileItStandsStillStarts) {
    const auto preview = makeView(true);
    preview->drawRect({0, 0, 10, 10});
    EXPECT_TRUE(preview->isAnimating());
    preview->drawRect({0, 0, 10, 10});
    EXPECT_EQ(view->displayLink->starts, 1);
    preview->stopAnimation();
    preview->drawRect({0, 0, 10, 10});
    EXPECT_EQ(view->displayLink->starts, 2);
}

TEST_F(QZLScreenSaverViewTest, AFullScreenViewNeverStartsFromDrawing) {
    const auto made = makeView(false);
    made->drawRect({0, 0, 10, 10});
    EXPECT_FALSE(made->isAnimating());
}

TEST_F(QZLScreenSaverViewTest, PaintingAPreviewStartsItFromTheEventLoop) {
    const auto preview = makeView(true);
    preview->show();
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return preview->isAnimating(); }));
    preview->stopAnimation();
    preview->repaint();
    EXPECT_FALSE(preview->isAnimating()) << "not inside the paint event";
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return preview->isAnimating(); }));
}

TEST_F(QZLScreenSaverViewTest, APreviewThatWasHiddenMeanwhileDoesNotStart) {
    const auto preview = makeView(true);
    preview->show();
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return preview->isAnimating(); }));
    preview->stopAnimation();
    preview->repaint();
    preview->hide();
    QApplication::processEvents();
    EXPECT_FALSE(preview->isAnimating());
}

TEST_F(QZLScreenSaverViewTest, AStoppedViewShowsNoMoreFramesUntilItStartsAgain) {
    gpu->setCompletesAtCommit(true);  // the link is a real one here
    LookedAtView made(QZLMakeRenderer<RecordingRenderer>(), {0, 0, 64, 48}, true);
    made.startAnimation();
    const auto layer = std::dynamic_pointer_cast<fake::Layer>(made.renderer()->layer());
    ASSERT_NE(layer, nullptr);
    EXPECT_TRUE(layer->showsFrames());
    made.stopAnimation();
    EXPECT_FALSE(layer->showsFrames());
    made.startAnimation();
    EXPECT_TRUE(layer->showsFrames());
}

TEST_F(QZLScreenSaverViewTest, AViewWithoutARendererIsLeftAlone) {
    LookedAtView made(nullptr, {0, 0, 640, 480}, true);
    made.startAnimation();
    EXPECT_TRUE(made.isAnimating());
    made.handleConfigurationChanged();
    made.sizeSettled();
    made.stopAnimation();
    EXPECT_FALSE(made.isAnimating());
    EXPECT_FALSE(made.shownError());
}

/// Counts how often it was asked for a controller.
class ConfigurableView : public LookedAtView {
public:
    using LookedAtView::LookedAtView;

    class Controller final : public platform::WindowController {
    public:
        Controller() : WindowController(nullptr, {}) {}
        QWidget* window() override { return &_window; }

    private:
        QWidget _window;
    };

    std::unique_ptr<platform::WindowController> createConfigureController() override {
        ++asked;
        if (asksAgain) {
            EXPECT_FALSE(hasConfigureSheet());
        }
        return hasSheet ? std::make_unique<Controller>() : nullptr;
    }

    int asked = 0;
    bool hasSheet = false;
    bool asksAgain = false;
};

TEST_F(QZLScreenSaverViewTest, ASaverWithoutSettingsHasNoSheet) {
    const auto made = makeView();
    EXPECT_FALSE(made->hasConfigureSheet());
    EXPECT_EQ(made->configureSheet(), nullptr);
}

TEST_F(QZLScreenSaverViewTest, ASaverThatYieldsNoControllerIsNeverAskedAgain) {
    const auto made = makeView<ConfigurableView>();
    EXPECT_FALSE(made->hasConfigureSheet());
    made->hasSheet = true;
    EXPECT_FALSE(made->hasConfigureSheet());
    EXPECT_EQ(made->configureSheet(), nullptr);
    EXPECT_EQ(made->asked, 1);
}

TEST_F(QZLScreenSaverViewTest, TheSheetIsMadeOnceAndKept) {
    const auto made = makeView<ConfigurableView>();
    made->hasSheet = true;
    EXPECT_EQ(made->asked, 0);
    QWidget* const sheet = made->configureSheet();
    EXPECT_NE(sheet, nullptr);
    EXPECT_TRUE(made->hasConfigureSheet());
    EXPECT_EQ(made->configureSheet(), sheet);
    EXPECT_EQ(made->asked, 1);
}

TEST_F(QZLScreenSaverViewTest, AskingForTheSheetWhileItIsMadeIsHarmless) {
    const auto made = makeView<ConfigurableView>();
    made->hasSheet = true;
    made->asksAgain = true;
    EXPECT_TRUE(made->hasConfigureSheet());
    EXPECT_EQ(made->asked, 1);
}

/// Notes in which order a view and its renderer hear of changed settings.
struct ListeningRenderer : RecordingRenderer {
    std::vector<std::string>* heard = nullptr;
    void configurationChanged() override { heard->emplace_back("renderer"); }
};
struct ListeningView : LookedAtView {
    using LookedAtView::LookedAtView;
    std::vector<std::string>* heard = nullptr;
    void configurationChanged() override { heard->emplace_back("view"); }
};

TEST_F(QZLScreenSaverViewTest, ChangedSettingsReachEveryLiveViewAndThenItsRenderer) {
    std::vector<std::string> heard;
    const auto make = [&heard] {
        const auto listening = QZLMakeRenderer<ListeningRenderer>();
        listening->heard = &heard;
        auto made = std::make_unique<ListeningView>(listening, platform::Rect{0, 0, 64, 64}, false);
        made->heard = &heard;
        return made;
    };
    const auto first = make();
    auto second = make();
    auto& center = platform::NotificationCenter::defaultCenter();
    center.post(QZLConfigurationStoredNotification);
    EXPECT_THAT(heard, ElementsAre("view", "renderer", "view", "renderer"));
    heard.clear();
    second.reset();
    center.post(QZLConfigurationStoredNotification);
    EXPECT_THAT(heard, ElementsAre("view", "renderer"));
}

/// Runs out of memory when it has attached.
struct ThrowingRenderer : RecordingRenderer {
    std::optional<platform::Error> attachToView(const std::shared_ptr<platform::HostView>& hostView, bool isPreview,
                                                std::int64_t screenIndex,
                                                std::shared_ptr<QZLStatistics> statistics) override {
        EXPECT_FALSE(QZLMetalRenderer::attachToView(hostView, isPreview, screenIndex, std::move(statistics)));
        throw std::bad_alloc();
    }
};

TEST_F(QZLScreenSaverViewTest, AnAttachThatThrowsShowsALackOfResources) {
    LookedAtView made(QZLMakeRenderer<ThrowingRenderer>(), {0, 0, 640, 480}, true);
    made.setHostView(view);
    made.startAnimation();
    ASSERT_TRUE(made.shownError());
    EXPECT_EQ(made.shownError()->code(), 108);
    EXPECT_FALSE(view->displayLink->exists);
    EXPECT_FALSE(made.isAnimating());
}

}  // namespace
