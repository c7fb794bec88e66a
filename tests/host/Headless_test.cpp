#include "tests/host/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <QtGui/QImage>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using fake::ProcessEnd;
using fake::runCirrane;
namespace fs = std::filesystem;

/// No display of any kind.
const std::vector<std::string> noDisplay{"DISPLAY", "WAYLAND_DISPLAY"};

class Headless : public testing::Test {
protected:
    std::vector<std::string> command(std::vector<std::string> more) const {
        std::vector<std::string> all{"--headless", "--size", "320x200", "--frames", "4", "--time", "1000"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    fs::path out() const { return _directory.path() / "out"; }
    QImage picture(const fs::path& file) const { return QImage(QString::fromStdString(file.string())); }

    fake::TemporaryDirectory _directory;
};

void expectFailure(const ProcessEnd& end, int status, const std::string& reason) {
    EXPECT_EQ(end.exitStatus, status);
    EXPECT_NE(end.standardError.find(reason), std::string::npos) << end.standardError;
    EXPECT_EQ(std::count(end.standardError.begin(), end.standardError.end(), '\n'), 1) << end.standardError;
    EXPECT_EQ(end.standardError.find("cirrane: "), 0U) << end.standardError;
}

TEST_F(Headless, WritesTheLastFrameAsAPicture) {
    const ProcessEnd end = runCirrane(command({"--output", out().string(), "--validate"}), noDisplay);
    EXPECT_EQ(end.exitStatus, 0);
    EXPECT_EQ(end.standardError, "") << "validation must have nothing to say";
    EXPECT_EQ(picture(out() / "frame-000004.png").size(), QSize(320, 200));
    EXPECT_EQ(std::distance(fs::directory_iterator(out()), fs::directory_iterator()), 1);
}

TEST_F(Headless, WritesEveryKthFrame) {
    const ProcessEnd end =
        runCirrane(command({"--frames", "7", "--output", out().string(), "--every", "3"}), noDisplay);
    EXPECT_EQ(end.exitStatus, 0) << end.standardError;
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(out())) {
        names.insert(entry.path().filename());
    }
    EXPECT_EQ(names, (std::set<std::string>{"frame-000003.png", "frame-000006.png"}));
}

TEST_F(Headless, TheSameTimeGivesTheSamePictureAndAnotherGivesAnother) {
    for (const char* run : {"a", "b"}) {
        runCirrane(command({"--output", (_directory.path() / run).string(), "--frames", "70"}), noDisplay);
    }
    runCirrane(command({"--output", (_directory.path() / "c").string(), "--frames", "70", "--time", "2000"}),
               noDisplay);
    const QImage a = picture(_directory.path() / "a" / "frame-000070.png");
    ASSERT_FALSE(a.isNull());
    EXPECT_EQ(a, picture(_directory.path() / "b" / "frame-000070.png"));
    EXPECT_NE(a, picture(_directory.path() / "c" / "frame-000070.png"));
}

TEST_F(Headless, TheFirstFrameOfTheFadeInIsBlackAndALaterOneIsNot) {
    runCirrane(command({"--frames", "60", "--output", out().string(), "--every", "1"}), noDisplay);
    const QImage first = picture(out() / "frame-000001.png");
    const QImage last = picture(out() / "frame-000060.png");
    ASSERT_EQ(first.size(), QSize(320, 200));
    ASSERT_EQ(last.size(), QSize(320, 200));
    EXPECT_LE(qGray(first.pixel(160, 100)), 1);
    EXPECT_GE(qGray(last.pixel(160, 100)), 10);
}

TEST_F(Headless, ASettingChangesThePicture) {
    runCirrane(command({"--frames", "60", "--output", (_directory.path() / "a").string()}), noDisplay);
    runCirrane(command({"--frames", "60", "--output", (_directory.path() / "b").string(), "--set", "Zoom=1"}),
               noDisplay);
    EXPECT_NE(picture(_directory.path() / "a" / "frame-000060.png"),
              picture(_directory.path() / "b" / "frame-000060.png"));
}

TEST_F(Headless, NeverReadsOrWritesTheUsersSettings) {
    const fs::path config = _directory.path() / "config";
    const ProcessEnd end = runCirrane(command({"--output", out().string()}),
                                      {"DISPLAY", "WAYLAND_DISPLAY", "XDG_CONFIG_HOME=" + config.string()});
    EXPECT_EQ(end.exitStatus, 0) << end.standardError;
    EXPECT_FALSE(fs::exists(config));
}

TEST_F(Headless, WritesScreenshotsToTheDesktopOnlyWhenAsked) {
    const fs::path desktop = _directory.path() / "Desktop";
    fs::create_directories(desktop);
    const std::vector<std::string> environment{"DISPLAY", "WAYLAND_DISPLAY", "HOME=" + _directory.path().string()};
    runCirrane(command({"--frames", "150", "--realtime"}), environment);
    EXPECT_TRUE(fs::is_empty(desktop));
    // The first one comes two seconds after the start.
    runCirrane(command({"--frames", "150", "--realtime", "--set", "ScreenshotInterval=1"}), environment);
    ASSERT_TRUE(fs::exists(desktop / "Cirrane 0.bmp"));
    EXPECT_EQ(picture(desktop / "Cirrane 0.bmp").size(), QSize(320, 200));
}

TEST_F(Headless, ReportsWhatItMeasured) {
    const fs::path file = _directory.path() / "stats.json";
    const ProcessEnd end = runCirrane(command({"--frames", "30", "--stats", file.string()}), noDisplay);
    ASSERT_EQ(end.exitStatus, 0) << end.standardError;
    const auto report = nlohmann::json::parse(std::ifstream(file));
    EXPECT_EQ(report.at("frames"), 30);
    EXPECT_EQ(report.at("seed"), 1000);
    EXPECT_EQ(report.at("drawable").at("width"), 320);
    EXPECT_EQ(report.at("drawable").at("height"), 200);
    EXPECT_EQ(report.at("intermediate").at("width"), 320);
    EXPECT_FALSE(report.at("device").get<std::string>().empty());
    EXPECT_FALSE(report.at("driver").get<std::string>().empty());
    EXPECT_GT(report.at("wall_seconds").get<double>(), 0.0);
    EXPECT_GT(report.at("frame_rate").get<double>(), 0.0);
    for (const char* stage : {"preparation_ms", "rendering_ms", "elapsed_ms"}) {
        const auto& summary = report.at(stage);
        EXPECT_GT(summary.at("mean").get<double>(), 0.0) << stage;
        EXPECT_LE(summary.at("p50").get<double>(), summary.at("p99").get<double>()) << stage;
        EXPECT_LE(summary.at("p99").get<double>(), summary.at("max").get<double>()) << stage;
    }
}

TEST_F(Headless, TheReportMayGoAmongThePictures) {
    const ProcessEnd end =
        runCirrane(command({"--output", out().string(), "--stats", (out() / "stats.json").string()}), noDisplay);
    EXPECT_EQ(end.exitStatus, 0) << end.standardError;
    EXPECT_TRUE(fs::exists(out() / "stats.json"));
}

TEST_F(Headless, InRealTimeKeepsToTheRateOfItsDisplay) {
    const fs::path file = _directory.path() / "stats.json";
    const ProcessEnd end =
        runCirrane(command({"--frames", "40", "--fps", "20", "--realtime", "--stats", file.string()}), noDisplay);
    ASSERT_EQ(end.exitStatus, 0) << end.standardError;
    // A late first frame shortens the time measured, so the bound is generous; without a pace it would be in the
    // hundreds.
    EXPECT_LE(nlohmann::json::parse(std::ifstream(file)).at("frame_rate").get<double>(), 30.0);
}

TEST_F(Headless, ABundleThatIsNotThereIsAFailure) {
    expectFailure(runCirrane(command({"--module", "/nonexistent"}), noDisplay), 1, "no saver bundle at /nonexistent");
}

TEST_F(Headless, ABrokenBundleIsAFailure) {
    const fs::path bundle = _directory.path() / "Broken.saver";
    fs::create_directories(bundle);
    expectFailure(runCirrane(command({"--module", bundle.string()}), noDisplay), 1, "has no usable Info.json");
    std::ofstream(bundle / "Info.json") << R"({"SaverLibrary": "Cirrane.so", "SaverEntryPoint": "x"})";
    expectFailure(runCirrane(command({"--module", bundle.string()}), noDisplay), 1, "the saver cannot be loaded");
}

TEST_F(Headless, AnUnwritableOutputDirectoryIsAFailure) {
    std::ofstream(_directory.path() / "file") << "x";
    expectFailure(runCirrane(command({"--output", (_directory.path() / "file" / "out").string()}), noDisplay), 1,
                  "cannot write");
}

TEST_F(Headless, AnUnwritableStatisticsFileIsAFailure) {
    expectFailure(runCirrane(command({"--stats", (_directory.path() / "no" / "stats.json").string()}), noDisplay), 1,
                  "cannot write");
}

TEST_F(Headless, AWrongCommandLineIsAUsageError) {
    expectFailure(runCirrane({"--headless", "--size", "0x0"}, noDisplay), 2, "--size 0x0");
    expectFailure(runCirrane({"--nonsense"}, noDisplay), 2, "unknown option --nonsense");
}

TEST_F(Headless, WithoutAGraphicsDeviceItSaysSo) {
    const ProcessEnd end = runCirrane(
        command({}), {"DISPLAY", "WAYLAND_DISPLAY", "VK_DRIVER_FILES=/nonexistent", "VK_ICD_FILENAMES=/nonexistent"});
    EXPECT_EQ(end.exitStatus, 1);
    EXPECT_EQ(end.standardError.find("cirrane: "), 0U) << end.standardError;
}

TEST_F(Headless, AnUnknownDeviceIsAFailure) {
    expectFailure(runCirrane(command({"--device", "no such device"}), noDisplay), 1, "there is no such device");
    expectFailure(runCirrane(command({"--device", "17"}), noDisplay), 1, "there is no such device");
}

TEST_F(Headless, ValidationWithoutItsLayerIsAFailure) {
    expectFailure(runCirrane(command({"--validate"}), {"DISPLAY", "WAYLAND_DISPLAY", "VK_LAYER_PATH=/nonexistent"}), 1,
                  "the Khronos validation layer is not installed");
}

TEST_F(Headless, TakesADeviceByNameOrIndex) {
    EXPECT_EQ(runCirrane(command({"--device", "LLVMpipe"}), noDisplay).exitStatus, 0);
    EXPECT_EQ(runCirrane(command({"--device", "0"}), noDisplay).exitStatus, 0);
}

class HeadlessSignal : public Headless, public testing::WithParamInterface<int> {};

TEST_P(HeadlessSignal, EndsTheRunByItsDefaultAction) {
    fake::Process process({fake::cirraneProgram(), "--headless", "--size", "320x200", "--frames", "100000000",
                           "--output", out().string(), "--every", "1"},
                          noDisplay);
    ASSERT_TRUE(fake::eventually([&] { return fs::exists(out() / "frame-000003.png"); })) << "it does not draw";
    process.sendSignal(GetParam());
    const auto end = process.waitForEnd(std::chrono::seconds(20));
    ASSERT_TRUE(end);
    EXPECT_EQ(end->signal, GetParam());
    for (const auto& entry : fs::directory_iterator(out())) {
        EXPECT_FALSE(picture(entry.path()).isNull()) << "half-written: " << entry.path();
    }
}

INSTANTIATE_TEST_SUITE_P(Headless, HeadlessSignal, testing::Values(SIGTERM, SIGINT));

TEST(Program, ListsTheDevices) {
    const ProcessEnd end = runCirrane({"--list-devices"}, noDisplay);
    EXPECT_EQ(end.exitStatus, 0);
    EXPECT_EQ(end.standardOutput.find("0  "), 0U) << end.standardOutput;
    EXPECT_NE(end.standardOutput.find("llvmpipe"), std::string::npos) << end.standardOutput;
}

TEST(Program, PrintsHelpAndVersion) {
    const ProcessEnd help = runCirrane({"--help"});
    EXPECT_EQ(help.exitStatus, 0);
    EXPECT_EQ(help.standardOutput.find("Usage: cirrane"), 0U);
    const ProcessEnd version = runCirrane({"--version"});
    EXPECT_EQ(version.exitStatus, 0);
    EXPECT_EQ(version.standardOutput.find("cirrane "), 0U);
}

TEST(Program, WithoutADisplayTheWindowIsAClearFailure) {
    const ProcessEnd end = runCirrane({}, noDisplay);
    expectFailure(end, 1, "no display to open a window on");
    expectFailure(runCirrane({}, {"DISPLAY=:4711", "WAYLAND_DISPLAY"}), 1, "cannot be opened");
}

}  // namespace
