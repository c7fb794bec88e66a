#include "saver/QZLCirraneView.hpp"

#include "platform/SaverModule.hpp"
#include "tests/saver/SaverTest.hpp"

#include <gmock/gmock.h>

extern "C" const platform::SaverModule* cirraneSaverModule() noexcept;

namespace {

using testing::Contains;
using testing::EndsWith;
using testing::Pair;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class QZLCirraneViewTest : public SaverTest {
protected:
    QZLCirraneViewTest() {
        platform::setSystemLogSink([this](std::string_view line) { log.emplace_back(line); });
    }

    std::unique_ptr<QZLCirraneView> makeView(bool isPreview = false) {
        auto made = std::make_unique<QZLCirraneView>(platform::Rect{0, 0, 640, 480}, isPreview);
        made->setHostView(view);
        return made;
    }

    std::vector<std::string> log;
};

TEST_F(QZLCirraneViewTest, DrawsTheClouds) {
    view->screen = 0;
    const auto made = makeView();
    made->startAnimation();
    EXPECT_THAT(made->journal()->accumulatedMessages(), StartsWith("[Screen 0] Seed: 0x"));
    EXPECT_TRUE(view->displayLink->running);
    gpu->setCompletesAtCommit(true);
    view->displayLink->fire();
    EXPECT_EQ(gpu->draws().size(), 2U);
}

TEST_F(QZLCirraneViewTest, ShowsItsErrorsInGeorgia) {
    EXPECT_EQ(makeView()->errorFontName(), "Georgia");
}

TEST_F(QZLCirraneViewTest, TakesMultiScreenFromTheSettingsOnlyWhenItIsMade) {
    defaults().setMultiScreen(false);
    const auto off = makeView();
    EXPECT_FALSE(off->multiScreen());
    defaults().setMultiScreen(true);
    off->handleConfigurationChanged();
    EXPECT_FALSE(off->multiScreen());
    EXPECT_TRUE(makeView()->multiScreen());
}

TEST_F(QZLCirraneViewTest, TakesTheStripFromTheSettingsAlsoWhenTheyChange) {
    defaults().setDiagnostics(true);
    const auto made = makeView();
    EXPECT_TRUE(made->showDiagnostics());
    defaults().setDiagnostics(false);
    EXPECT_TRUE(made->showDiagnostics());
    made->handleConfigurationChanged();
    EXPECT_FALSE(made->showDiagnostics());
}

TEST_F(QZLCirraneViewTest, ALackOfMemoryIsNotReportable) {
    const auto made = makeView();
    EXPECT_FALSE(made->errorIsReportable(1008));
    EXPECT_TRUE(made->errorIsReportable(1007));
    EXPECT_TRUE(made->errorIsReportable(201));
    EXPECT_FALSE(made->errorIsReportable(302));
    made->showErrorCode(1008, 0);
    EXPECT_FALSE(defaults().haveSavedError());
}

TEST_F(QZLCirraneViewTest, ALackOfMemoryHasATextOfItsOwn) {
    const auto made = makeView();
    made->showErrorCode(1008, 0);
    EXPECT_EQ(made->shownError()->localizedDescription(), "Out of memory.");
}

TEST_F(QZLCirraneViewTest, AFailedStartShowsItsError) {
    view->screen = 0;
    gpu->plan().failingTextures = {0};
    const auto made = makeView();
    made->startAnimation();
    ASSERT_TRUE(made->shownError());
    EXPECT_EQ(made->shownError()->code(), 107);
    EXPECT_FALSE(view->displayLink->exists);
    EXPECT_EQ(view->layer, nullptr);
}

TEST_F(QZLCirraneViewTest, TellsItsSeedAndTheSizeItComposesIn) {
    view->screen = 0;
    const auto made = makeView();
    EXPECT_THAT(made->facts(), Contains(Pair("intermediateWidth", 0U)));
    made->startAnimation();
    EXPECT_THAT(made->facts(), UnorderedElementsAre(Pair("seed", 1700000000U), Pair("intermediateWidth", 640U),
                                                    Pair("intermediateHeight", 480U)));
    made->showErrorCode(303, 0);
    EXPECT_TRUE(made->facts().empty());
}

TEST_F(QZLCirraneViewTest, TheModuleOffersTheCurrentVersionAndItsViews) {
    const platform::SaverModule* module = cirraneSaverModule();
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->version, platform::SaverModule::currentVersion);
    const std::unique_ptr<platform::ScreenSaverView> made(module->createView({0, 0, 320, 200}, true));
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(made->isPreview());
    EXPECT_EQ(made->size(), QSize(320, 200));
}

TEST_F(QZLCirraneViewTest, SettingsChangedOutsideReachEveryLiveView) {
    const auto first = makeView();
    const auto second = makeView(true);
    makeView();  // and is gone
    defaults().setDiagnostics(true);
    EXPECT_FALSE(first->showDiagnostics());
    cirraneSaverModule()->settingsChanged();
    EXPECT_TRUE(first->showDiagnostics());
    EXPECT_TRUE(second->showDiagnostics());
}

}  // namespace
