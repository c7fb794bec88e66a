// Machines that cannot draw the clouds: the program stays where its host put it and says why.
#include "tests/hosts/ForeignWindow.hpp"
#include "tests/hosts/XScreenSaver.hpp"

namespace hosts {
namespace {

constexpr Colour red{255, 0, 0};
constexpr Colour white{255, 255, 255};
const std::vector<std::string> noDriver{"VK_DRIVER_FILES=/nonexistent.json", "VK_ICD_FILENAMES=/nonexistent.json"};

bool isErrorScreen(const Picture& picture) {
    return picture.share(red) > 0.7 && picture.share(white) > 0.005 && !picture.isEmpty() && picture.at(0, 0) == red;
}

class OnAMachineWithoutGpu : public ForeignWindowTest {
protected:
    OnAMachineWithoutGpu() { server.display().resize(window, 640, 480); }

    /// What stands in the window once an error does.
    Picture errorScreen() {
        EXPECT_TRUE(fake::eventually([this] { return isErrorScreen(picture()); })) << "no red window with white text";
        EXPECT_TRUE(standsStill([this] { return picture(); }));
        EXPECT_TRUE(process->isRunning()) << "hosts show an end that they did not ask for as a crash";
        return picture();
    }

    /// What the program shows for that code on request.
    Picture screenOf(const std::string& code) {
        start({program(), "--root", "--test-error", code});
        Picture shown = errorScreen();
        endByHost();
        return shown;
    }
};

TEST_F(OnAMachineWithoutGpu, ADeviceThatIsMissingIsShownAndNotReported) {
    start({program(), "--root"}, noDriver);
    const Picture shown = errorScreen();
    endByHost();
    EXPECT_FALSE(home.holdsErrorReport());
    EXPECT_TRUE(shown == screenOf("303"));
    EXPECT_FALSE(shown == screenOf("101"));
}

TEST_F(OnAMachineWithoutGpu, AShaderLibraryThatIsMissingIsShownAndNotReported) {
    const auto bundle = home.path() / "Cirrane.saver";
    std::filesystem::copy(program().parent_path() / "Cirrane.saver", bundle, std::filesystem::copy_options::recursive);
    std::filesystem::remove(bundle / "default.metallib");
    start({program(), "--root", "--module", bundle});
    const Picture shown = errorScreen();
    endByHost();
    EXPECT_FALSE(home.holdsErrorReport());
    EXPECT_TRUE(shown == screenOf("101:1000"));
}

TEST_F(OnAMachineWithoutGpu, ADisplayLinkThatIsRefusedIsShownAndReported) {
    start({program(), "--root"}, {"LD_PRELOAD=" + noScreensLibrary().string()});
    const Picture shown = errorScreen();
    endByHost();
    EXPECT_NE(home.errorReport().find("SavedErrorCode=200\n"), std::string::npos) << home.errorReport();
    EXPECT_NE(home.errorReport().find("SavedErrorSubCode=-6661\n"), std::string::npos) << home.errorReport();
    EXPECT_TRUE(shown == screenOf("200:-6661"));
}

TEST_F(OnAMachineWithoutGpu, XScreenSaverSeesNoCrash) {
    const XScreenSaver daemon("env " + noDriver[0] + " " + noDriver[1] + " " + program().string() + " --root");
    daemon.activate();
    ASSERT_TRUE(fake::eventually([this] { return isErrorScreen(server.picture()); }));
    EXPECT_TRUE(standsStill([this] { return server.picture(); }));
    EXPECT_EQ(runningSavers().size(), 1U);
    daemon.deactivate();
    EXPECT_TRUE(fake::eventually([] { return runningSavers().empty(); }));
    EXPECT_FALSE(daemon.home().holdsErrorReport());
}

}  // namespace
}  // namespace hosts
