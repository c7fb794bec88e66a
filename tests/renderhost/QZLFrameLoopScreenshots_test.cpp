#include "tests/renderhost/RendererTest.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A renderer that wants every frame saved, and a Desktop to save it on.
class QZLFrameLoopScreenshots : public RendererTest {
protected:
    QZLFrameLoopScreenshots() {
        std::filesystem::create_directory(desktop());
        view->viewBounds = {0, 0, 5, 3};
        renderer->onShouldSaveScreenshot = [] { return true; };
    }

    void attachForScreenshots() {
        renderer->setScreenshotsEnabled(true);
        ASSERT_FALSE(attach());
    }

    std::filesystem::path desktop() const { return home.path() / "Desktop"; }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(desktop())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

}  // namespace

TEST_F(QZLFrameLoopScreenshots, AreWrittenWhenTheFrameHasCompleted) {
    attachForScreenshots();
    renderer->presentFrame();
    EXPECT_THAT(files(), IsEmpty());
    gpu->completeNext();
    EXPECT_THAT(files(), ElementsAre("Cirrane 0.bmp"));
    EXPECT_EQ(std::filesystem::file_size(desktop() / "Cirrane 0.bmp"), 54U + 3 * 16);
}

TEST_F(QZLFrameLoopScreenshots, HoldTheFramesPixels) {
    renderer->setClearFrameColor({1.0, 0.0, 0.0, 1.0});
    renderer->onDraw = [](QZLDrawContext& context) { context.renderCommandEncoderWithState(nullptr)->endEncoding(); };
    attachForScreenshots();
    renderer->presentFrame();
    gpu->completeNext();
    std::ifstream file(desktop() / "Cirrane 0.bmp", std::ios::binary);
    file.seekg(54);
    EXPECT_EQ(file.get(), 0x00);
    EXPECT_EQ(file.get(), 0x00);
    EXPECT_EQ(file.get(), 0xFF);
}

TEST_F(QZLFrameLoopScreenshots, AreNumberedOn) {
    attachForScreenshots();
    gpu->setCompletesAtCommit(true);
    for (int frame = 0; frame < 3; ++frame) {
        renderer->presentFrame();
    }
    EXPECT_THAT(files(), ElementsAre("Cirrane 0.bmp", "Cirrane 1.bmp", "Cirrane 2.bmp"));
}

TEST_F(QZLFrameLoopScreenshots, TheNumberOfAFrameWithoutACommandBufferIsSpent) {
    gpu->plan().failingCommandBuffers = {0};
    attachForScreenshots();
    gpu->setCompletesAtCommit(true);
    renderer->presentFrame();
    renderer->presentFrame();
    EXPECT_THAT(files(), ElementsAre("Cirrane 1.bmp"));
}

TEST_F(QZLFrameLoopScreenshots, AFrameWithoutADrawableSpendsNoNumberAndIsNotAskedAbout) {
    int asked = 0;
    renderer->onShouldSaveScreenshot = [&asked] { return ++asked > 0; };
    gpu->plan().failingDrawables = {0};
    attachForScreenshots();
    gpu->setCompletesAtCommit(true);
    renderer->presentFrame();
    EXPECT_EQ(asked, 0);
    renderer->presentFrame();
    EXPECT_THAT(files(), ElementsAre("Cirrane 0.bmp"));
}

TEST_F(QZLFrameLoopScreenshots, TheSaverIsAskedOnlyWhileTheyAreEnabled) {
    int asked = 0;
    renderer->onShouldSaveScreenshot = [&asked] { return ++asked < 0; };
    EXPECT_FALSE(attach());
    renderer->presentFrame();
    EXPECT_EQ(asked, 0);
    renderer->setScreenshotsEnabled(true);
    renderer->presentFrame();
    EXPECT_EQ(asked, 1);
    gpu->completeAll();
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(QZLFrameLoopScreenshots, AFramebufferOnlyLayerYieldsNoneAndLosesNoSlot) {
    EXPECT_FALSE(attach());
    renderer->setScreenshotsEnabled(true);  // too late for this layer
    for (int frame = 0; frame < 5; ++frame) {
        renderer->presentFrame();
        gpu->completeNext();
    }
    EXPECT_EQ(renderer->frames.size(), 5U);
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(QZLFrameLoopScreenshots, WithoutADesktopTheFramesGoOn) {
    std::filesystem::remove(desktop());
    attachForScreenshots();
    for (int frame = 0; frame < 5; ++frame) {
        renderer->presentFrame();
        gpu->completeNext();
    }
    EXPECT_EQ(renderer->frames.size(), 5U);
}

TEST_F(QZLFrameLoopScreenshots, EndWhenAThousandNumbersAreTaken) {
    for (int number = 0; number < 1000; ++number) {
        std::ofstream(desktop() / ("Cirrane " + std::to_string(number) + ".bmp"));
    }
    std::filesystem::remove(desktop() / "Cirrane 999.bmp");
    attachForScreenshots();
    gpu->setCompletesAtCommit(true);
    renderer->presentFrame();
    renderer->presentFrame();
    EXPECT_EQ(files().size(), 1000U);
    EXPECT_EQ(std::filesystem::file_size(desktop() / "Cirrane 999.bmp"), 54U + 3 * 16);
}

TEST_F(QZLFrameLoopScreenshots, AreWrittenAfterTheRendererHasGone) {
    attachForScreenshots();
    renderer->presentFrame();
    renderer.reset();
    view.reset();
    gpu->completeNext();
    EXPECT_THAT(files(), ElementsAre("Cirrane 0.bmp"));
}
