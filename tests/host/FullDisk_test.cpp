// The program where nothing, or only so much, can be written.
#include "tests/support/FullDisk.hpp"
#include "tests/host/Process.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using fake::ProcessEnd;

/// With a home folder of its own, and folders for all that may be written.
class FullDisk : public testing::Test {
protected:
    FullDisk() {
        fs::create_directories(desktop);
        fs::create_directories(cache);
    }

    ProcessEnd run(std::vector<std::string> more) const {
        more.insert(more.begin(), {"--headless", "--size", "320x200", "--time", "1000"});
        // The driver has a cache of its own, which is not the matter here.
        return fake::runCirrane(
            more, {"DISPLAY", "WAYLAND_DISPLAY", "HOME=" + home.path().string(), "XDG_CACHE_HOME=" + cache.string(),
                   "MESA_SHADER_CACHE_DISABLE=true", "MESA_GLSL_CACHE_DISABLE=true"});
    }
    ProcessEnd runOnFullDisk(const std::vector<std::string>& more) const {
        const fake::FullDisk disk(bytesLeft);  // children inherit it
        return run(more);
    }
    /// The first screenshot comes two seconds after the start.
    std::vector<std::string> withScreenshots() const {
        return {"--frames", "150", "--realtime", "--set", "ScreenshotInterval=1", "--stats", stats.string()};
    }
    void expectAllFrames(const ProcessEnd& end) const {
        EXPECT_EQ(end.exitStatus, 0) << end.standardError;
        EXPECT_EQ(end.standardError, "");
        EXPECT_EQ(nlohmann::json::parse(fake::readFile(stats)).at("frames"), 150);
    }

    static auto filesIn(const fs::path& directory) {
        const fs::directory_iterator entries(directory);
        return std::distance(begin(entries), end(entries));
    }

    /// Enough for the report of a run, not for a picture.
    static constexpr rlim_t bytesLeft = 4096;

    fake::TemporaryDirectory home;
    fs::path desktop = home.path() / "Desktop";
    fs::path cache = home.path() / "cache";
    fs::path out = home.path() / "out";
    fs::path stats = home.path() / "stats.json";
};

TEST_F(FullDisk, APictureThatCannotBeWrittenIsAFailureAndLeavesNoPart) {
    const ProcessEnd end = runOnFullDisk({"--frames", "70", "--output", out.string()});
    EXPECT_EQ(end.exitStatus, 1);
    EXPECT_EQ(end.standardError.find("cirrane: cannot write " + (out / "frame-000070.png").string() + ": "), 0U)
        << end.standardError;
    EXPECT_TRUE(fs::is_empty(out));
}

TEST_F(FullDisk, AReportThatCannotBeWrittenIsAFailureAndLeavesNoPart) {
    const fake::FullDisk disk(100);
    const ProcessEnd end = run({"--frames", "2", "--stats", stats.string()});
    EXPECT_EQ(end.exitStatus, 1);
    EXPECT_EQ(end.standardError.find("cirrane: cannot write " + stats.string() + ": "), 0U) << end.standardError;
    EXPECT_EQ(filesIn(home.path()), 2) << "the Desktop and the cache";
}

TEST_F(FullDisk, PipelinesThatCannotBeKeptAreNoMatter) {
    {
        const fake::FullDisk disk(16);
        const ProcessEnd end = run({"--frames", "2"});
        EXPECT_EQ(end.exitStatus, 0) << end.standardError;
        EXPECT_EQ(end.standardError, "");
    }
    EXPECT_TRUE(fs::is_empty(cache / "cirrane"));
    EXPECT_EQ(run({"--frames", "2"}).exitStatus, 0);
    EXPECT_FALSE(fs::is_empty(cache / "cirrane")) << "with room again they are";
}

TEST_F(FullDisk, ACacheFolderThatCannotBeMadeIsNoMatter) {
    fs::remove(cache);
    fake::writeFile(cache, "a file in its place");
    const ProcessEnd end = run({"--frames", "2"});
    EXPECT_EQ(end.exitStatus, 0) << end.standardError;
    EXPECT_EQ(fake::readFile(cache), "a file in its place");
}

TEST_F(FullDisk, ScreenshotsThatCannotBeWrittenLeaveNoPartAndTheAnimationGoesOn) {
    expectAllFrames(runOnFullDisk(withScreenshots()));
    EXPECT_TRUE(fs::is_empty(desktop));
}

TEST_F(FullDisk, WithoutADesktopThereIsNoScreenshotAndTheAnimationGoesOn) {
    fs::remove(desktop);
    expectAllFrames(run(withScreenshots()));
    EXPECT_FALSE(fs::exists(desktop));
    fake::writeFile(desktop, "a file in its place");
    expectAllFrames(run(withScreenshots()));
    EXPECT_EQ(fake::readFile(desktop), "a file in its place");
}

TEST_F(FullDisk, ADesktopThatHoldsAllNumbersGetsNoMoreScreenshots) {
    for (int number = 0; number < 1000; ++number) {
        fake::writeFile(desktop / ("Cirrane " + std::to_string(number) + ".bmp"), "taken");
    }
    expectAllFrames(run(withScreenshots()));
    EXPECT_EQ(filesIn(desktop), 1000);
    EXPECT_EQ(fake::readFile(desktop / "Cirrane 999.bmp"), "taken");
}

}  // namespace
