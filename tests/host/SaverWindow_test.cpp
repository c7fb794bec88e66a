// Windows that hold a view of a saver, on no display and with a saver that only tells what it is asked to do.
#include "host/SaverWindow.hpp"

#include "host/SaverWindows.hpp"
#include "tests/host/RecordingSaver.hpp"
#include "tests/support/EventLoop.hpp"
#include "tests/support/FakeGpu.hpp"

#include <gtest/gtest.h>

#include <QtGui/QImage>
#include <QtWidgets/QApplication>

namespace {

using fake::RecordingSaver;
using host::ErrorCode;
using host::SaverWindow;
using host::SaverWindows;
using host::Showing;
using Lines = std::vector<std::string>;

class SaverWindowTest : public testing::Test {
protected:
    static void handleEvents() {
        for (int round = 0; round < 3; ++round) {
            QApplication::sendPostedEvents();
            QApplication::processEvents();
        }
    }

    Showing showing(bool isPreview = false, std::optional<ErrorCode> error = {}) const {
        return {saver.module(), isPreview, error};
    }

    /// What a driver does when its device has been lost.
    void loseDevice() {
        const auto device = gpu->systemDefaultDevice();
        gpu->plan().lostAfterCommits = 0;
        const auto queue = device->newCommandQueue();
        queue->commandBuffer()->commit();
        handleEvents();
    }

    fake::ScopedGpu gpu;
    RecordingSaver saver;
};

TEST_F(SaverWindowTest, MakesItsViewWhenItIsFirstShownAndStartsItAtItsRealSize) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(640, 360);
    handleEvents();
    EXPECT_EQ(saver.lines(), Lines{});
    window.show();
    window.resize(320, 240);
    handleEvents();
    EXPECT_EQ(saver.lines(), (Lines{"make 640x360", "start 320x240"}));
}

TEST_F(SaverWindowTest, TellsTheViewWhetherItIsAPreview) {
    SaverWindows windows(showing(true));
    SaverWindow& window = windows.add();
    window.resize(200, 120);
    window.show();
    EXPECT_EQ(saver.lines(), Lines{"make 200x120 preview"});
}

TEST_F(SaverWindowTest, KeepsItsViewFilled) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(640, 360);
    window.show();
    handleEvents();
    window.resize(1000, 700);
    handleEvents();
    EXPECT_EQ(saver.newestView()->geometry(), QRect(0, 0, 1000, 700));
}

TEST_F(SaverWindowTest, StopsTheViewWhenHiddenAndStartsTheSameOneAgain) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    window.hide();
    EXPECT_EQ(saver.lines(), (Lines{"make 64x64", "start 64x64", "stop"})) << "stopped at once";
    window.show();
    handleEvents();
    EXPECT_EQ(saver.lines(), (Lines{"make 64x64", "start 64x64", "stop", "start 64x64"}));
}

TEST_F(SaverWindowTest, IsNotStartedWhenHiddenAgainAtOnce) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    window.hide();
    handleEvents();
    EXPECT_EQ(saver.lines(), Lines{"make 64x64"});
}

TEST_F(SaverWindowTest, StopsTheViewWhileMinimised) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    window.setWindowState(Qt::WindowMinimized);
    handleEvents();
    EXPECT_EQ(saver.lines(), (Lines{"make 64x64", "start 64x64", "stop"}));
    window.setWindowState(Qt::WindowNoState);
    handleEvents();
    EXPECT_EQ(saver.lines().back().substr(0, 5), "start");
}

TEST_F(SaverWindowTest, StopsTheViewAndLetsItGoWhenItGoes) {
    {
        SaverWindows windows(showing());
        SaverWindow& window = windows.add();
        window.resize(64, 64);
        window.show();
        handleEvents();
        windows.remove(window);
        EXPECT_EQ(saver.lines(), (Lines{"make 64x64", "start 64x64", "stop", "end"}));
        windows.add().show();
        handleEvents();
        saver.forgetLines();
    }
    EXPECT_EQ(saver.lines(), (Lines{"stop", "end"}));
}

TEST_F(SaverWindowTest, ShowsTheErrorThatWasAskedForAndStartsNothing) {
    SaverWindows windows(showing(false, ErrorCode{200, -6661}));
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    EXPECT_EQ(saver.lines(), (Lines{"make 64x64", "error 200:-6661"}));
}

TEST_F(SaverWindowTest, LeavesAViewThatShowsAnErrorAsItIs) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    saver.setStartFails(true);
    window.show();
    handleEvents();
    const Lines failed{"make 64x64", "start 64x64", "error 108:0"};
    EXPECT_EQ(saver.lines(), failed);
    window.hide();
    window.show();
    loseDevice();
    EXPECT_EQ(saver.lines(), failed) << "an error is final";
}

TEST_F(SaverWindowTest, ASaverThatCannotBeLoadedIsAReasonInWhiteOnRed) {
    SaverWindows windows(Showing{std::string("no saver bundle at /nowhere"), false, {}});
    SaverWindow& window = windows.add();
    window.resize(400, 200);
    window.show();
    handleEvents();
    window.resize(600, 300);
    handleEvents();
    const QImage picture = window.grab().toImage();
    EXPECT_EQ(picture.pixelColor(2, 2), QColor(Qt::red));
    EXPECT_EQ(picture.pixelColor(597, 297), QColor(Qt::red)) << "it fills the window";
    bool hasWhite = false;
    for (int x = 0; x < picture.width(); ++x) {
        for (int y = 0; y < picture.height(); ++y) {
            hasWhite = hasWhite || picture.pixelColor(x, y) == QColor(Qt::white);
        }
    }
    EXPECT_TRUE(hasWhite);
    window.hide();
    window.show();
    loseDevice();
}

TEST_F(SaverWindowTest, ASaverThatMakesNoViewIsAReasonToo) {
    saver.setMakesNoView(true);
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(400, 200);
    window.show();
    handleEvents();
    EXPECT_EQ(window.grab().toImage().pixelColor(2, 2), QColor(Qt::red));
}

TEST_F(SaverWindowTest, IsBlackWhereTheViewDrawsNothing) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    EXPECT_EQ(window.grab().toImage().pixelColor(32, 32), QColor(Qt::black));
}

TEST_F(SaverWindowTest, EveryWindowGetsAnotherViewWhenTheDeviceIsLost) {
    SaverWindows windows(showing());
    for (int width : {64, 128}) {
        SaverWindow& window = windows.add();
        window.resize(width, 64);
        window.show();
    }
    handleEvents();
    saver.forgetLines();
    loseDevice();
    EXPECT_EQ(saver.lines(),
              (Lines{"stop", "end", "make 64x64", "stop", "end", "make 128x64", "start 64x64", "start 128x64"}));
}

TEST_F(SaverWindowTest, AHiddenWindowsViewIsMadeAnewButNotStarted) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    window.hide();
    saver.forgetLines();
    loseDevice();
    EXPECT_EQ(saver.lines(), (Lines{"stop", "end", "make 64x64"}));
}

TEST_F(SaverWindowTest, AfterThreeLostDevicesWithinAMinuteTheErrorStands) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    for (int loss = 0; loss < 3; ++loss) {
        saver.forgetLines();
        loseDevice();
        EXPECT_EQ(saver.lines(), (Lines{"stop", "end", "make 64x64", "start 64x64"})) << loss;
    }
    saver.forgetLines();
    loseDevice();
    EXPECT_EQ(saver.lines(), Lines{"error 303:0"});
    loseDevice();
    EXPECT_EQ(saver.lines(), Lines{"error 303:0"});
}

TEST_F(SaverWindowTest, AViewThatCannotBeStartedAfterALossIsTriedAgainAndThenTheErrorStands) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    saver.forgetLines();
    saver.setStartFails(true);
    loseDevice();
    const Lines failing{"end", "make 64x64", "start 64x64", "error 108:0"};
    EXPECT_EQ(saver.lines(), (Lines{"stop", "end", "make 64x64", "start 64x64", "error 108:0"}));
    for (int attempt = 0; attempt < 2; ++attempt) {
        saver.forgetLines();
        EXPECT_TRUE(fake::eventuallyInLoop([this, &failing] { return saver.lines() == failing; })) << attempt;
    }
    saver.forgetLines();
    EXPECT_TRUE(fake::eventuallyInLoop([this] { return saver.lines() == Lines{"end", "make 64x64", "error 303:0"}; }));
}

TEST_F(SaverWindowTest, AViewThatStartsAtTheSecondAttemptAfterALossGoesOn) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    saver.setStartFails(true);
    loseDevice();
    saver.setStartFails(false);
    EXPECT_TRUE(fake::eventuallyInLoop(
        [this] { return saver.newestView()->isAnimating() && !saver.newestView()->shownError(); }));
}

TEST_F(SaverWindowTest, AnErrorThatComesWhileHiddenIsSeenWhenShownAgain) {
    SaverWindows windows(showing());
    SaverWindow& window = windows.add();
    window.resize(64, 64);
    window.show();
    handleEvents();
    for (int loss = 0; loss < 3; ++loss) {
        loseDevice();
    }
    window.hide();
    handleEvents();
    EXPECT_FALSE(saver.newestView()->updatesEnabled()) << "nothing is painted while stopped";
    loseDevice();
    EXPECT_EQ(saver.lines().back(), "error 303:0");
    window.show();
    handleEvents();
    EXPECT_TRUE(saver.newestView()->updatesEnabled());
}

TEST_F(SaverWindowTest, ALossThatIsToldAfterTheWindowsHaveGoneIsNobodys) {
    const auto device = gpu->systemDefaultDevice();
    {
        SaverWindows windows(showing());
        windows.add().show();
        gpu->plan().lostAfterCommits = 0;
        const auto queue = device->newCommandQueue();
        queue->commandBuffer()->commit();
    }
    saver.forgetLines();
    handleEvents();
    EXPECT_EQ(saver.lines(), Lines{});
}

}  // namespace
