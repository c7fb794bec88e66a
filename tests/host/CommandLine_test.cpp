#include "host/CommandLine.hpp"

#include <gtest/gtest.h>

namespace {

using host::CommandLine;
using host::Mode;

std::variant<CommandLine, std::string> parse(const std::vector<std::string_view>& arguments) {
    return host::parseCommandLine(arguments);
}

CommandLine accepted(const std::vector<std::string_view>& arguments) {
    auto parsed = parse(arguments);
    if (const auto* complaint = std::get_if<std::string>(&parsed)) {
        ADD_FAILURE() << "refused: " << *complaint;
        return {};
    }
    return std::get<CommandLine>(std::move(parsed));
}

std::string refused(const std::vector<std::string_view>& arguments) {
    auto parsed = parse(arguments);
    if (auto* complaint = std::get_if<std::string>(&parsed)) {
        return *complaint;
    }
    ADD_FAILURE() << "accepted";
    return {};
}

TEST(CommandLine, WithoutArgumentsAsksForAWindow) {
    EXPECT_EQ(accepted({}).mode, Mode::Window);
}

TEST(CommandLine, HeadlessHasSensibleDefaults) {
    const CommandLine line = accepted({"--headless"});
    EXPECT_EQ(line.mode, Mode::Headless);
    EXPECT_EQ(line.headless.width, 1920U);
    EXPECT_EQ(line.headless.height, 1080U);
    EXPECT_EQ(line.headless.frames, 600U);
    EXPECT_EQ(line.headless.framesPerSecond, 60.0);
    EXPECT_FALSE(line.headless.realtime);
    EXPECT_FALSE(line.headless.outputDirectory);
}

TEST(CommandLine, TakesEveryHeadlessOption) {
    const CommandLine line = accepted({"--headless", "--size", "640x480", "--frames", "12",         "--fps", "59.94",
                                       "--realtime", "--time", "-5",      "--set",    "Speed=0.25", "--set", "Zoom=1",
                                       "--output",   "out",    "--every", "3",        "--stats",    "s.json"});
    EXPECT_EQ(line.headless.width, 640U);
    EXPECT_EQ(line.headless.height, 480U);
    EXPECT_EQ(line.headless.frames, 12U);
    EXPECT_EQ(line.headless.framesPerSecond, 59.94);
    EXPECT_TRUE(line.headless.realtime);
    EXPECT_EQ(line.headless.calendarSeconds, -5);
    ASSERT_EQ(line.headless.settings.size(), 2U);
    EXPECT_EQ(line.headless.settings[0], (std::pair<std::string, std::string>("Speed", "0.25")));
    EXPECT_EQ(line.headless.settings[1], (std::pair<std::string, std::string>("Zoom", "1")));
    EXPECT_EQ(line.headless.outputDirectory, "out");
    EXPECT_EQ(line.headless.every, 3U);
    EXPECT_EQ(line.headless.statisticsFile, "s.json");
}

TEST(CommandLine, TakesTheOptionsOfEveryMode) {
    const CommandLine line = accepted({"--device", "llvmpipe", "--validate", "--module", "/x/Cirrane.saver"});
    EXPECT_EQ(line.device, "llvmpipe");
    EXPECT_TRUE(line.validate);
    EXPECT_EQ(line.module, "/x/Cirrane.saver");
    EXPECT_EQ(accepted({"--list-devices"}).mode, Mode::ListDevices);
    EXPECT_EQ(accepted({"--version"}).mode, Mode::Version);
    EXPECT_EQ(accepted({"--help"}).mode, Mode::Help);
}

TEST(CommandLine, OurOwnOptionsHaveTwo) {
    EXPECT_EQ(refused({"-fullscreen"}), "unknown option -fullscreen (--help lists them)");
    EXPECT_EQ(refused({"-headless"}), "unknown option -headless (--help lists them)");
    EXPECT_EQ(refused({"---root"}), "unknown option ---root (--help lists them)");
}

TEST(CommandLine, FpsWithoutANumberIsTheHostsOwn) {
    EXPECT_EQ(accepted({"--fps", "--root"}).mode, Mode::Root);
    EXPECT_EQ(accepted({"--root", "--fps"}).mode, Mode::Root);
    EXPECT_EQ(refused({"--root", "--fps", "60"}), "--fps goes with --headless only");
}

TEST(CommandLine, TakesAnErrorToShowInAnyWindow) {
    for (const char* mode : {"--window", "--fullscreen", "--root"}) {
        EXPECT_EQ(accepted({mode, "--test-error", "303"}).testError, (host::ErrorCode{303, 0})) << mode;
    }
    EXPECT_EQ(accepted({"--test-error", "200:-6661", "--window-id", "7"}).testError, (host::ErrorCode{200, -6661}));
    EXPECT_EQ(accepted({"--test-error", "-9223372036854775808:9223372036854775807"}).testError,
              (host::ErrorCode{INT64_MIN, INT64_MAX}));
}

TEST(CommandLine, RefusesAnUnknownOptionByName) {
    EXPECT_EQ(refused({"--fast"}), "unknown option --fast (--help lists them)");
    EXPECT_EQ(refused({"picture.png"}), "unknown option picture.png (--help lists them)");
    EXPECT_EQ(refused({""}), "unknown option  (--help lists them)");
}

TEST(CommandLine, RefusesAnOptionWithoutItsValue) {
    EXPECT_EQ(refused({"--headless", "--size"}), "--size needs a value");
    EXPECT_EQ(refused({"--device", ""}), "--device needs a value");
}

TEST(CommandLine, RefusesHeadlessOptionsWithoutHeadless) {
    EXPECT_EQ(refused({"--frames", "3"}), "--frames goes with --headless only");
}

TEST(CommandLine, RefusesEveryWithoutOutput) {
    EXPECT_EQ(refused({"--headless", "--every", "3"}), "--every needs --output");
}

class RefusedValue : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(RefusedValue, IsAClearLineThatNamesOptionAndValue) {
    const auto [option, value] = GetParam();
    const std::string complaint = refused({"--headless", "--output", "o", option, value});
    EXPECT_EQ(complaint.find(std::string(option) + " " + value + ": "), 0U) << complaint;
    EXPECT_EQ(complaint.find('\n'), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, RefusedValue,
    testing::Values(
        std::pair{"--size", "1920"}, std::pair{"--size", "x"}, std::pair{"--size", "12x"}, std::pair{"--size", "-1x5"},
        std::pair{"--size", "0x480"}, std::pair{"--size", "640x0"}, std::pair{"--size", "16385x10"},
        std::pair{"--size", "10x16385"}, std::pair{"--size", "99999999999x10"}, std::pair{"--size", "10x10x10"},
        std::pair{"--size", "10 x10"}, std::pair{"--frames", "0"}, std::pair{"--frames", "-1"},
        std::pair{"--frames", "1.5"}, std::pair{"--frames", "99999999999999999999"}, std::pair{"--fps", "0"},
        std::pair{"--fps", "nan"}, std::pair{"--fps", "inf"}, std::pair{"--fps", "1e9"}, std::pair{"--fps", "60,5"},
        std::pair{"--time", "now"}, std::pair{"--set", "Speed"}, std::pair{"--set", "Speed="},
        std::pair{"--set", "Speed=fast"}, std::pair{"--set", "speed=1"}, std::pair{"--set", "=1"},
        std::pair{"--every", "0"}, std::pair{"--window-id", "0"}, std::pair{"--window-id", "token"},
        std::pair{"--window-id", "-1"}, std::pair{"--window-id", "0x100000000"}, std::pair{"-window-id", "7 "},
        std::pair{"--test-error", "all"}, std::pair{"--test-error", "303:"}, std::pair{"--test-error", ":1"},
        std::pair{"--test-error", "303:1:2"}, std::pair{"--test-error", "9223372036854775808"}));

TEST(CommandLine, TheLargestSizeIsAccepted) {
    const CommandLine line = accepted({"--headless", "--size", "16384x16384"});
    EXPECT_EQ(line.headless.width, 16384U);
}

TEST(CommandLine, HelpNamesEveryOption) {
    const std::string_view help = host::helpText();
    for (const char* option :
         {"--window",       "--fullscreen", "--root",   "--window-id", "--test-error", "--display",
          "-fps",           "-no-fps",      "-visual",  "-geometry",   "-mono",        "-install",
          "-noinstall",     "--headless",   "--size",   "--frames",    "--fps",        "--realtime",
          "--time",         "--set",        "--output", "--every",     "--stats",      "--device",
          "--list-devices", "--validate",   "--module", "--version",   "--help"}) {
        EXPECT_NE(help.find(option), std::string_view::npos) << option;
    }
}

TEST(CommandLine, KnowsTheWaysToShow) {
    EXPECT_EQ(accepted({"--window"}).mode, Mode::Window);
    EXPECT_EQ(accepted({"--fullscreen"}).mode, Mode::Fullscreen);
    EXPECT_EQ(accepted({"--configure"}).mode, Mode::Configure);
    EXPECT_EQ(accepted({"--root"}).mode, Mode::Root);
    EXPECT_EQ(accepted({"--window-id", "0x3c00007"}).mode, Mode::WindowId);
    EXPECT_EQ(accepted({"--window-id", "0x3c00007"}).windowIdentifier, 0x3c00007U);
    EXPECT_EQ(accepted({"--window-id", "62914567"}).windowIdentifier, 62914567U);
}

TEST(CommandLine, TakesWhatHostsWriteWithOneDash) {
    EXPECT_EQ(accepted({"-root"}).mode, Mode::Root);
    EXPECT_EQ(accepted({"-window-id", "12"}).windowIdentifier, 12U);
    EXPECT_EQ(accepted({"-window"}).mode, Mode::Window);
    EXPECT_EQ(accepted({"-configure"}).mode, Mode::Configure);
    EXPECT_EQ(accepted({"-help"}).mode, Mode::Help);
    EXPECT_EQ(accepted({"-version"}).mode, Mode::Version);
    EXPECT_EQ(refused({"-fullscreen"}), "unknown option -fullscreen (--help lists them)");
}

TEST(CommandLine, APreviewsWindowWinsOverTheRoot) {
    EXPECT_EQ(accepted({"--root", "--window-id", "0x12"}).mode, Mode::WindowId);
    EXPECT_EQ(accepted({"--window-id", "0x12", "-root"}).mode, Mode::WindowId);
}

TEST(CommandLine, RefusesWhatIsNoWindow) {
    for (const char* text : {"0", "0x", "window", "-3", "0x100000000", "12 "}) {
        EXPECT_EQ(refused({"--window-id", text}),
                  std::string("--window-id ") + text + ": an X11 window looks like 0x3c00007 or 62914567");
    }
    EXPECT_EQ(refused({"--window-id"}), "--window-id needs a value");
}

TEST(CommandLine, AcceptsWhatHostsAddAndMeansNothing) {
    for (const char* option : {"-fps", "--fps", "-no-fps", "--no-fps", "-mono", "--mono", "-install", "--install",
                               "-noinstall", "--noinstall"}) {
        EXPECT_EQ(accepted({"-root", option}).mode, Mode::Root) << option;
        EXPECT_EQ(accepted({option, "-root"}).mode, Mode::Root) << option;
    }
    for (const char* option : {"-visual", "--visual", "-geometry", "--geometry"}) {
        EXPECT_EQ(accepted({"-root", option, "default"}).mode, Mode::Root) << option;
        EXPECT_EQ(refused({"-root", option}), std::string(option) + " needs a value");
    }
}

TEST(CommandLine, TakesTheDisplay) {
    EXPECT_EQ(accepted({"-display", ":1.0"}).display, ":1.0");
    EXPECT_EQ(accepted({"--display", "host:0"}).display, "host:0");
}

TEST(CommandLine, TakesAnErrorToShow) {
    EXPECT_EQ(accepted({"--test-error", "303"}).testError, (host::ErrorCode{303, 0}));
    EXPECT_EQ(accepted({"--test-error", "200:-6661"}).testError, (host::ErrorCode{200, -6661}));
    EXPECT_EQ(accepted({"--root", "--test-error", "-1:0"}).testError, (host::ErrorCode{-1, 0}));
    for (const char* text : {"", ":", "x", "303:", ":5", "303:x", "1.5"}) {
        EXPECT_NE(refused({"--test-error", text}), "") << text;
    }
    EXPECT_EQ(refused({"--headless", "--test-error", "303"}), "--test-error needs a window");
}

}  // namespace
