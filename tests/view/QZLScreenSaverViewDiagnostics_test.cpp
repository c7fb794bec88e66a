#include "tests/support/FakeLayer.hpp"
#include "tests/view/ViewTest.hpp"

namespace {

using platform::Rect;

class QZLScreenSaverViewDiagnostics : public ViewTest {
protected:
    std::unique_ptr<LookedAtView> makeViewOfSize(double width, double height, bool isPreview = false) {
        return makeView(isPreview, 0, {0, 0, width, height});
    }

    static constexpr const char* normalFormat = "normal %.3lf|%.3lf|%.3lf|%.3lf|%.3lf|%.3lf";
    fake::Bundle formats{{{"Vistashade",
                           {{"QZL_JOURNAL_MESSAGE_FORMAT", "%@%@\n"},
                            {"QZL_JOURNAL_LOG_FORMAT", "%@%@%@"},
                            {"QZL_DIAG_FORMAT_NORMAL", normalFormat},
                            {"QZL_DIAG_FORMAT_PREVIEW", "preview %.1lf"}}}}};
};

TEST_F(QZLScreenSaverViewDiagnostics, AFullScreenGetsAStripOfAProportionalHeightAndTheLongLine) {
    const auto made = makeViewOfSize(1920, 1080);
    made->setShowDiagnostics(true);
    EXPECT_EQ(made->diagnosticField()->frame(), (Rect{0, 0, 1920, 40}));
    EXPECT_EQ(made->diagnosticField()->geometry(), QRect(0, 1040, 1920, 40));
    EXPECT_EQ(made->diagnosticField()->textFont().size, 30.0);
    EXPECT_THAT(made->diagnosticText(), testing::StartsWith("normal "));
}

TEST_F(QZLScreenSaverViewDiagnostics, ASmallPreviewGetsTheLeastHeightAndTheShortLine) {
    const auto made = makeViewOfSize(300, 200, true);
    made->setShowDiagnostics(true);
    EXPECT_EQ(made->diagnosticField()->frame(), (Rect{0, 0, 300, 16}));
    EXPECT_EQ(made->diagnosticField()->textFont().size, 12.0);
    EXPECT_THAT(made->diagnosticText(), testing::StartsWith("preview "));
}

TEST_F(QZLScreenSaverViewDiagnostics, TheLongLineNeedsMoreThanThirtyTimesTheHeight) {
    const auto narrow = makeViewOfSize(900, 810);
    narrow->setShowDiagnostics(true);
    EXPECT_EQ(narrow->diagnosticField()->frame().height, 30.0);
    EXPECT_THAT(narrow->diagnosticText(), testing::StartsWith("preview "));
    const auto wide = makeViewOfSize(901, 810);
    wide->setShowDiagnostics(true);
    EXPECT_THAT(wide->diagnosticText(), testing::StartsWith("normal "));
}

TEST_F(QZLScreenSaverViewDiagnostics, HeightAndFontMayBeFractionsOfAPoint) {
    const auto made = makeViewOfSize(1024, 768);
    made->setShowDiagnostics(true);
    EXPECT_DOUBLE_EQ(made->diagnosticField()->frame().height, 768.0 / 27.0);
    EXPECT_DOUBLE_EQ(made->diagnosticField()->textFont().size, 768.0 / 36.0);
}

TEST_F(QZLScreenSaverViewDiagnostics, TheStripIsWhiteOnTranslucentBlueInAFontOfOneWidth) {
    const auto made = makeView();
    made->setShowDiagnostics(true);
    const platform::TextField& field = *made->diagnosticField();
    EXPECT_EQ(field.textColor(), QColor(Qt::white));
    EXPECT_EQ(field.backgroundColor(), QColor::fromRgbF(0.0F, 0.0F, 1.0F, 0.6F));
    EXPECT_EQ(field.textFont().family, platform::userFixedPitchFont(1.0).family);
    EXPECT_TRUE(field.testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST_F(QZLScreenSaverViewDiagnostics, ShownTwiceThereIsOneStripAndOneTimer) {
    const auto made = makeView();
    const auto timersBefore = made->findChildren<QTimer*>().size();
    made->setShowDiagnostics(true);
    made->setShowDiagnostics(true);
    EXPECT_EQ(made->findChildren<QWidget*>().size(), 1);
    EXPECT_EQ(made->findChildren<QTimer*>().size(), timersBefore + 1);
    made->setShowDiagnostics(false);
    made->setShowDiagnostics(false);
    EXPECT_FALSE(made->showDiagnostics());
    EXPECT_EQ(made->findChildren<QWidget*>().size(), 0);
    EXPECT_EQ(made->findChildren<QTimer*>().size(), timersBefore);
}

TEST_F(QZLScreenSaverViewDiagnostics, ItIsRefreshedFourTimesASecondFromTheFirstTickOn) {
    const auto made = makeView(true);
    made->setShowDiagnostics(true);
    EXPECT_EQ(made->diagnosticField()->stringValue(), "");
    EXPECT_EQ(made->diagnosticTimer()->intervalAsDuration(), std::chrono::milliseconds(250));
    EXPECT_TRUE(made->diagnosticTimer()->isActive());
    EXPECT_FALSE(made->diagnosticTimer()->isSingleShot());
    ASSERT_TRUE(
        fake::eventuallyInLoop([&] { return made->diagnosticField()->stringValue() == made->diagnosticText(); }));
}

TEST_F(QZLScreenSaverViewDiagnostics, TheLineTellsRateTimesLoadAndElapsedTimeInThisOrder) {
    const auto made = makeViewOfSize(1920, 1080);
    made->setShowDiagnostics(true);
    made->startAnimation();  // at 60 Hz
    QZLStatistics& measured = *made->statistics();
    for (int frame = 0; frame < 60; ++frame) {
        // 1 ms to prepare, 2 ms waiting, 4 ms to render; a frame every 20 ms.
        measured.recordFramePresented();
        measured.notifyFrameStarted(frame % 3);
        clock.advance(0.001);
        measured.notifyFrameQueued(frame % 3);
        clock.advance(0.002);
        measured.notifyFrameScheduled(frame % 3);
        clock.advance(0.004);
        measured.notifyFrameCompleted(frame % 3);
        clock.advance(0.013);
    }
    EXPECT_EQ(made->diagnosticText(), "normal 50.000|1.000|4.000|5.000|30.000|7.000");
}

TEST_F(QZLScreenSaverViewDiagnostics, AViewThatDoesNotDrawHasNoneUntilTheSettingsChange) {
    const auto made = makeView(false, 1);
    made->setShowDiagnostics(true);
    made->startAnimation();
    EXPECT_FALSE(made->showDiagnostics());
    made->setShowDiagnostics(true);  // what a saver does when it hears of changed settings
    EXPECT_TRUE(made->showDiagnostics());
}

TEST_F(QZLScreenSaverViewDiagnostics, AResizedViewKeepsStripAndFormatAtItsBottomEdge) {
    const auto made = makeViewOfSize(300, 200, true);
    made->show();
    made->setShowDiagnostics(true);
    made->resize(1920, 1080);
    QApplication::processEvents();
    EXPECT_EQ(made->diagnosticField()->frame(), (Rect{0, 0, 300, 16}));
    EXPECT_EQ(made->diagnosticField()->geometry(), QRect(0, 1064, 300, 16));
    EXPECT_THAT(made->diagnosticText(), testing::StartsWith("preview "));
}

TEST_F(QZLScreenSaverViewDiagnostics, AResizedViewShowsItAboveTheFramesAtItsNewPlaceAtOnce) {
    gpu->setCompletesAtCommit(true);  // the link is a real one here
    LookedAtView made(QZLMakeRenderer<RecordingRenderer>(), {0, 0, 300, 200}, true);
    made.setShowDiagnostics(true);
    made.show();
    ASSERT_TRUE(fake::eventuallyInLoop([&] { return made.isAnimating(); }));
    const auto layer = std::dynamic_pointer_cast<fake::Layer>(made.renderer()->layer());
    made.resize(320, 300);
    ASSERT_FALSE(layer->overlays().empty());
    ASSERT_NE(layer->overlays().back(), nullptr);
    EXPECT_EQ(layer->overlays().back()->y, 284);
}

TEST_F(QZLScreenSaverViewDiagnostics, AfterAnErrorItCanBeShownAgainAboveTheTextWithoutAnyLoad) {
    const auto made = makeViewOfSize(1920, 1080);
    made->setShowDiagnostics(true);
    gpu->plan().noCommandQueue = true;
    made->startAnimation();
    ASSERT_TRUE(made->shownError());
    EXPECT_FALSE(made->showDiagnostics());
    made->setShowDiagnostics(true);
    EXPECT_EQ(made->diagnosticText(), "normal 0.000|0.000|0.000|0.000|0.000|0.000");
    ASSERT_NE(made->errorView(), nullptr);
    const QObjectList& children = made->children();
    const auto isAbove = [&] {
        return children.indexOf(made->diagnosticField()) > children.indexOf(made->errorView());
    };
    EXPECT_TRUE(isAbove());
    made->resize(1280, 720);
    made->show();
    QApplication::processEvents();
    EXPECT_TRUE(isAbove());
}

TEST_F(QZLScreenSaverViewDiagnostics, ThePicturesOfTheStripAreBlueWithWhiteText) {
    const auto made = makeViewOfSize(1280, 720);
    made->setShowDiagnostics(true);
    made->updateDiagnosticText();
    made->show();
    QApplication::processEvents();
    const QImage picture = made->grab(QRect(0, 690, 1280, 30)).toImage();
    int white = 0;
    for (int x = 0; x < picture.width(); ++x) {
        for (int y = 0; y < picture.height(); ++y) {
            white += picture.pixelColor(x, y) == QColor(Qt::white) ? 1 : 0;
        }
    }
    EXPECT_GT(white, 200);
    EXPECT_NEAR(picture.pixelColor(picture.width() - 1, 15).blue(), 153, 1) << "0.6 of blue on black";
}

}  // namespace
