#include "host/CommandLine.hpp"

#include "host/Number.hpp"
#include "host/WindowIdentifier.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <span>

namespace host {
namespace {

/// The settings of the saver, by the names that `--set` takes.
constexpr std::array settingsKeys{"Colors",      "Brightness",         "Speed",      "Zoom",
                                  "MultiScreen", "ScreenshotInterval", "Diagnostics"};

/// Nothing when the value was good, else what is wrong with it.
using Complaint = std::optional<std::string>;

/// Screen saver hosts write some options with one dash.
enum class Dashes { Two, OneOrTwo };

struct Option {
    std::string_view name;
    Dashes dashes;
    bool headlessOnly;
    /// Null for an option without a value.
    Complaint (*takeValue)(CommandLine&, std::string_view);
    void (*take)(CommandLine&);
};

Complaint takeSize(CommandLine& line, std::string_view text) {
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) {
        return "a size looks like 1920x1080";
    }
    const auto width = wholeNumber<std::uint32_t>(text.substr(0, cross));
    const auto height = wholeNumber<std::uint32_t>(text.substr(cross + 1));
    if (!width || !height) {
        return "a size looks like 1920x1080";
    }
    if (*width == 0 || *height == 0 || *width > maximumSize || *height > maximumSize) {
        return "width and height run from 1 to " + std::to_string(maximumSize);
    }
    line.headless.width = *width;
    line.headless.height = *height;
    return {};
}

Complaint takeFrames(CommandLine& line, std::string_view text) {
    const auto frames = wholeNumber<std::uint64_t>(text);
    if (!frames || *frames == 0) {
        return "a whole number above 0 is needed";
    }
    line.headless.frames = *frames;
    return {};
}

Complaint takeFramesPerSecond(CommandLine& line, std::string_view text) {
    const auto rate = decimalNumber(text);
    if (!rate || !(*rate >= 1.0 && *rate <= 1000.0)) {
        return "a rate from 1 to 1000 frames per second is needed";
    }
    line.headless.framesPerSecond = *rate;
    return {};
}

Complaint takeTime(CommandLine& line, std::string_view text) {
    const auto seconds = wholeNumber<std::int64_t>(text);
    if (!seconds) {
        return "seconds since 1970 as a whole number are needed";
    }
    line.headless.calendarSeconds = *seconds;
    return {};
}

Complaint takeSetting(CommandLine& line, std::string_view text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        return "a setting looks like Speed=0.5";
    }
    const std::string_view key = text.substr(0, equals);
    const std::string_view value = text.substr(equals + 1);
    for (const char* known : settingsKeys) {
        if (key == known) {
            if (!decimalNumber(value)) {
                return std::string(key) + " needs a number";
            }
            line.headless.settings.emplace_back(key, value);
            return {};
        }
    }
    return "there is no setting " + std::string(key);
}

Complaint takeEvery(CommandLine& line, std::string_view text) {
    const auto every = wholeNumber<std::uint64_t>(text);
    if (!every || *every == 0) {
        return "a whole number above 0 is needed";
    }
    line.headless.every = *every;
    return {};
}

Complaint takeOutput(CommandLine& line, std::string_view text) {
    line.headless.outputDirectory = text;
    return {};
}

Complaint takeStatistics(CommandLine& line, std::string_view text) {
    line.headless.statisticsFile = text;
    return {};
}

Complaint takeDevice(CommandLine& line, std::string_view text) {
    line.device = text;
    return {};
}

Complaint takeModule(CommandLine& line, std::string_view text) {
    line.module = text;
    return {};
}

Complaint takeWindowIdentifier(CommandLine& line, std::string_view text) {
    const auto window = parseWindowIdentifier(text);
    if (!window) {
        return "an X11 window looks like 0x3c00007 or 62914567";
    }
    line.mode = Mode::WindowId;
    line.windowIdentifier = *window;
    return {};
}

Complaint takeTestError(CommandLine& line, std::string_view text) {
    const std::size_t colon = std::min(text.find(':'), text.size());
    const auto code = wholeNumber<std::int64_t>(text.substr(0, colon));
    const auto subCode =
        colon == text.size() ? std::optional<std::int64_t>(0) : wholeNumber<std::int64_t>(text.substr(colon + 1));
    if (!code || !subCode) {
        return "an error looks like 303 or 200:-6661";
    }
    line.testError = ErrorCode{*code, *subCode};
    return {};
}

Complaint takeDisplay(CommandLine& line, std::string_view text) {
    line.display = text;
    return {};
}

Complaint ignoreValue(CommandLine&, std::string_view) {
    return {};
}

void ignore(CommandLine&) {}

constexpr std::array options{
    Option{"--window", Dashes::OneOrTwo, false, nullptr, [](CommandLine& line) { line.mode = Mode::Window; }},
    Option{"--fullscreen", Dashes::Two, false, nullptr, [](CommandLine& line) { line.mode = Mode::Fullscreen; }},
    // Previews are asked for by adding --window-id to a line that says --root.
    Option{"--root", Dashes::OneOrTwo, false, nullptr,
           [](CommandLine& line) { line.mode = line.mode == Mode::WindowId ? Mode::WindowId : Mode::Root; }},
    Option{"--window-id", Dashes::OneOrTwo, false, takeWindowIdentifier, nullptr},
    Option{"--configure", Dashes::OneOrTwo, false, nullptr, [](CommandLine& line) { line.mode = Mode::Configure; }},
    Option{"--test-error", Dashes::Two, false, takeTestError, nullptr},
    Option{"--headless", Dashes::Two, false, nullptr, [](CommandLine& line) { line.mode = Mode::Headless; }},
    Option{"--size", Dashes::Two, true, takeSize, nullptr},
    Option{"--frames", Dashes::Two, true, takeFrames, nullptr},
    Option{"--fps", Dashes::Two, true, takeFramesPerSecond, nullptr},
    Option{"--realtime", Dashes::Two, true, nullptr, [](CommandLine& line) { line.headless.realtime = true; }},
    Option{"--time", Dashes::Two, true, takeTime, nullptr},
    Option{"--set", Dashes::Two, true, takeSetting, nullptr},
    Option{"--output", Dashes::Two, true, takeOutput, nullptr},
    Option{"--every", Dashes::Two, true, takeEvery, nullptr},
    Option{"--stats", Dashes::Two, true, takeStatistics, nullptr},
    Option{"--device", Dashes::Two, false, takeDevice, nullptr},
    Option{"--validate", Dashes::Two, false, nullptr, [](CommandLine& line) { line.validate = true; }},
    Option{"--module", Dashes::Two, false, takeModule, nullptr},
    Option{"--list-devices", Dashes::Two, false, nullptr, [](CommandLine& line) { line.mode = Mode::ListDevices; }},
    Option{"--version", Dashes::OneOrTwo, false, nullptr, [](CommandLine& line) { line.mode = Mode::Version; }},
    Option{"--help", Dashes::OneOrTwo, false, nullptr, [](CommandLine& line) { line.mode = Mode::Help; }},
    Option{"--display", Dashes::OneOrTwo, false, takeDisplay, nullptr},
    // What hosts add to the lines of all their savers, and what means nothing to this one.
    Option{"-fps", Dashes::Two, false, nullptr, ignore},
    Option{"--no-fps", Dashes::OneOrTwo, false, nullptr, ignore},
    Option{"--visual", Dashes::OneOrTwo, false, ignoreValue, nullptr},
    Option{"--geometry", Dashes::OneOrTwo, false, ignoreValue, nullptr},
    Option{"--mono", Dashes::OneOrTwo, false, nullptr, ignore},
    Option{"--install", Dashes::OneOrTwo, false, nullptr, ignore},
    Option{"--noinstall", Dashes::OneOrTwo, false, nullptr, ignore},
};

const Option* findOption(std::string_view name) {
    for (const Option& option : options) {
        const bool hasOneDash = option.dashes == Dashes::OneOrTwo && option.name.substr(1) == name;
        if (option.name == name || hasOneDash) {
            return &option;
        }
    }
    return nullptr;
}

}  // namespace

std::variant<CommandLine, std::string> parseCommandLine(const std::vector<std::string_view>& arguments) {
    CommandLine line;
    std::string_view firstHeadlessOnly;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string name(arguments[i]);
        const Option* option = findOption(name);
        if (name == "--fps" && (i + 1 == arguments.size() || arguments[i + 1].starts_with('-'))) {
            continue;  // not the rate of headless runs but the hosts' own
        }
        if (option == nullptr) {
            return "unknown option " + name + " (--help lists them)";
        }
        if (option->headlessOnly && firstHeadlessOnly.empty()) {
            firstHeadlessOnly = option->name;
        }
        if (option->takeValue == nullptr) {
            option->take(line);
            continue;
        }
        if (++i == arguments.size() || arguments[i].empty()) {
            return name + " needs a value";
        }
        if (const Complaint complaint = option->takeValue(line, arguments[i])) {
            return name + " " + std::string(arguments[i]) + ": " + *complaint;
        }
    }
    const bool showsWindows = line.mode < Mode::Headless;
    if (showsWindows && !firstHeadlessOnly.empty()) {
        return std::string(firstHeadlessOnly) + " goes with --headless only";
    }
    if (!showsWindows && line.testError) {
        return "--test-error needs a window";
    }
    if (line.headless.every && !line.headless.outputDirectory) {
        return "--every needs --output";
    }
    return line;
}

}  // namespace host
