// The error screen: what is shown, journalled and saved.
#include "foundation/QZLError.hpp"
#include "tests/view/ViewTest.hpp"

namespace {

using testing::Contains;
using testing::SizeIs;

class QZLScreenSaverViewError : public ViewTest {
protected:
    /// What the label says, part by part.
    static std::vector<std::string> shownTexts(const LookedAtView& view) {
        std::vector<std::string> texts;
        for (const auto& part : view.errorView()->text().parts()) {
            texts.push_back(part.text);
        }
        return texts;
    }

    bool hasReport() const { return QZLDefaultsManager::sharedInstance().haveSavedError(); }

    fake::Bundle texts{{{"Vistashade",
                         {{"QZL_JOURNAL_MESSAGE_FORMAT", "%@%@\n"},
                          {"QZL_JOURNAL_LOG_FORMAT", "%@%@%@"},
                          {"QZL_ERROR_FORMAT_TITLE", "%@, %@\n"},
                          {"QZL_ERROR_FORMAT_SIMPLE", "%@ (%ld)"},
                          {"QZL_ERROR_FORMAT_EXTENDED", "%@ (%ld, %ld)"},
                          {"QZL_ERROR_METAL_RESOURCES", "No resources."},
                          {"QZL_ERROR_UNKNOWN", "Unknown."}}}}};
    std::unique_ptr<LookedAtView> made = makeView();
};

TEST_F(QZLScreenSaverViewError, AFailedStartShowsTitleAndMessageWithItsCode) {
    gpu->plan().noCommandQueue = true;
    made->startAnimation();
    ASSERT_NE(made->errorView(), nullptr);
    EXPECT_THAT(shownTexts(*made), testing::ElementsAre("Cirrane, 1.2.3\n", "No resources. (303)"));
}

TEST_F(QZLScreenSaverViewError, AnErrorWithASubCodeShowsBothNumbers) {
    made->showErrorCode(303, 1004);
    EXPECT_EQ(shownTexts(*made).back(), "No resources. (303, 1004)");
}

TEST_F(QZLScreenSaverViewError, WithoutNameAndVersionTheTitleSaysSo) {
    fake::Bundle nameless{{{"Vistashade", {{"QZL_ERROR_FORMAT_TITLE", "%@, %@\n"}}}},
                          {{"CFBundleName", ""}, {"CFBundleShortVersionString", ""}}};
    made->showErrorCode(303, 0);
    EXPECT_EQ(shownTexts(*made).front(), ", \n");
}

TEST_F(QZLScreenSaverViewError, ANegativeSubCodeIsShownAsItIs) {
    made->showErrorCode(303, -6661);
    EXPECT_EQ(shownTexts(*made).back(), "No resources. (303, -6661)");
}

TEST_F(QZLScreenSaverViewError, IsInHelveticaWhiteOnRedUnlessASaverSaysOtherwise) {
    EXPECT_EQ(made->errorFontName(), "Helvetica");
    EXPECT_EQ(made->errorForeground(), QColor(Qt::white));
    EXPECT_EQ(made->errorBackground(), QColor(Qt::red));
    made->setErrorForeground(Qt::green);
    made->setErrorBackground(QColor(0, 0, 255, 128));
    made->showErrorCode(303, 0);
    EXPECT_EQ(made->errorView()->backgroundColor(), QColor(0, 0, 255, 128));
    EXPECT_FALSE(made->errorView()->isOpaque());
    for (const auto& part : made->errorView()->text().parts()) {
        EXPECT_EQ(part.attributes.foreground, QColor(Qt::green));
        EXPECT_EQ(part.attributes.background, QColor(0, 0, 255, 128));
    }
}

TEST_F(QZLScreenSaverViewError, ItIsFinal) {
    gpu->plan().noCommandQueue = true;
    made->startAnimation();
    EXPECT_FALSE(made->isAnimating());
    EXPECT_EQ(made->renderer(), nullptr);
    EXPECT_EQ(view->layer, nullptr) << "nothing may lie above the text";

    gpu->plan().noCommandQueue = false;
    const auto* const label = made->errorView();
    made->startAnimation();
    EXPECT_TRUE(made->isAnimating());
    made->stopAnimation();
    made->handleConfigurationChanged();
    EXPECT_EQ(made->errorView(), label);
    EXPECT_THAT(linesOf(*made), Contains(testing::HasSubstr("Aborting")).Times(1));
}

TEST_F(QZLScreenSaverViewError, APreviewThatIsRedrawnStartsAgainWithoutASecondError) {
    const auto preview = makeView(true);
    gpu->plan().noCommandQueue = true;
    preview->startAnimation();
    EXPECT_FALSE(preview->isAnimating());
    preview->drawRect({0, 0, 10, 10});
    EXPECT_TRUE(preview->isAnimating());
    EXPECT_THAT(linesOf(*preview), Contains(testing::HasSubstr("Aborting")).Times(1));
}

TEST_F(QZLScreenSaverViewError, AnErrorOfARunningViewStopsAndDetachesItsRenderer) {
    made->startAnimation();
    made->showErrorCode(303, 0);
    EXPECT_FALSE(view->displayLink->exists);
    EXPECT_EQ(made->shownError()->code(), 303);
    const auto lines = linesOf(*made);
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[lines.size() - 3], "[Screen 0] Stopped animation.");
    EXPECT_EQ(lines[lines.size() - 2], "[Screen 0] Detached Metal renderer.");
    EXPECT_EQ(lines[lines.size() - 1], "[Screen 0] Aborting with error: (303:0) No resources.");
}

TEST_F(QZLScreenSaverViewError, AReportHoldsTheCodesAndTheJournalToItsLastLine) {
    view->displayLink->createResult = platform::displayLinkAllocationFailed;
    made->startAnimation();
    ASSERT_TRUE(hasReport());
    const auto& manager = QZLDefaultsManager::sharedInstance();
    EXPECT_EQ(manager.savedErrorCode(), 200);
    EXPECT_EQ(manager.savedErrorSubCode(), platform::displayLinkAllocationFailed);
    EXPECT_EQ(manager.savedErrorJournal(), made->journal()->accumulatedMessages());
    EXPECT_THAT(*manager.savedErrorJournal(), testing::HasSubstr("Aborting with error: (200:-6662)"));
}

TEST_F(QZLScreenSaverViewError, AReportIsSavedEvenWhenNoTextFits) {
    const auto small = makeView(true, 0, {0, 0, 90, 60});
    small->showErrorCode(201, 0);
    EXPECT_EQ(small->errorView(), nullptr);
    EXPECT_TRUE(hasReport());
}

class QZLScreenSaverViewReport : public QZLScreenSaverViewError,
                                 public testing::WithParamInterface<std::pair<std::int64_t, bool>> {};

TEST_P(QZLScreenSaverViewReport, IsSavedForErrorsThatItHelpsWith) {
    const auto [code, isReportable] = GetParam();
    EXPECT_EQ(made->errorIsReportable(code), isReportable);
    made->showErrorCode(code, 0);
    EXPECT_EQ(hasReport(), isReportable);
    EXPECT_NE(made->errorView(), nullptr) << "shown in either case";
    EXPECT_THAT(linesOf(*made), Contains(testing::HasSubstr("(" + std::to_string(code) + ":0)")));
}

using Kind = std::pair<std::int64_t, bool>;
INSTANTIATE_TEST_SUITE_P(Code, QZLScreenSaverViewReport,
                         testing::Values(Kind{0, false}, Kind{-1, true}, Kind{1, true}, Kind{99, true}, Kind{100, true},
                                         Kind{101, false}, Kind{102, false}, Kind{103, false}, Kind{104, false},
                                         Kind{105, true}, Kind{106, true}, Kind{107, false}, Kind{108, false},
                                         Kind{109, false}, Kind{110, false}, Kind{111, true}, Kind{200, true},
                                         Kind{201, true}, Kind{299, true}, Kind{300, false}, Kind{301, false},
                                         Kind{302, false}, Kind{303, false}, Kind{304, false}, Kind{305, true},
                                         Kind{1008, true}, Kind{INT64_MIN, true}, Kind{INT64_MAX, true}));

TEST_F(QZLScreenSaverViewError, ASaverMayDecideOtherwise) {
    struct Discreet : LookedAtView {
        using LookedAtView::LookedAtView;
        bool errorIsReportable(std::int64_t) const override { return false; }
    };
    const auto discreet = makeView<Discreet>();
    discreet->showErrorCode(201, 0);
    EXPECT_FALSE(hasReport());
}

TEST_F(QZLScreenSaverViewError, WhatTheBundleLacksIsShownByItsKey) {
    const fake::Bundle poor{{{"Vistashade", {}}}};
    made->showErrorCode(303, 0);
    EXPECT_THAT(shownTexts(*made), testing::ElementsAre("QZL_ERROR_FORMAT_TITLE", "QZL_ERROR_FORMAT_SIMPLE"));
}

TEST_F(QZLScreenSaverViewError, AViewHasOneErrorLabelHoweverOftenItIsResized) {
    made->showErrorCode(303, 0);
    made->show();
    for (const int width : {800, 900, 1000}) {
        made->resize(width, 600);
    }
    QApplication::processEvents();
    EXPECT_THAT(made->findChildren<QWidget*>(), SizeIs(1));
    EXPECT_EQ(made->errorView()->frame(), (platform::Rect{0, 0, 1000, 600}));
    made->resize(1000, 80);
    EXPECT_EQ(made->errorView(), nullptr);
    made->resize(1000, 600);
    EXPECT_NE(made->errorView(), nullptr);
}

}  // namespace
