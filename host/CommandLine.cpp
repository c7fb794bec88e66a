#include "host/CommandLine.hpp"

#include "host/Number.hpp"

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

struct Option {
    std::string_view name;
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

constexpr std::array options{
    Option{"--headless", false, nullptr, [](CommandLine& line) { line.mode = Mode::Headless; }},
    Option{"--size", true, takeSize, nullptr},
    Option{"--frames", true, takeFrames, nullptr},
    Option{"--fps", true, takeFramesPerSecond, nullptr},
    Option{"--realtime", true, nullptr, [](CommandLine& line) { line.headless.realtime = true; }},
    Option{"--time", true, takeTime, nullptr},
    Option{"--set", true, takeSetting, nullptr},
    Option{"--output", true, takeOutput, nullptr},
    Option{"--every", true, takeEvery, nullptr},
    Option{"--stats", true, takeStatistics, nullptr},
    Option{"--device", false, takeDevice, nullptr},
    Option{"--validate", false, nullptr, [](CommandLine& line) { line.validate = true; }},
    Option{"--module", false, takeModule, nullptr},
    Option{"--list-devices", false, nullptr, [](CommandLine& line) { line.mode = Mode::ListDevices; }},
    Option{"--version", false, nullptr, [](CommandLine& line) { line.mode = Mode::Version; }},
    Option{"--help", false, nullptr, [](CommandLine& line) { line.mode = Mode::Help; }},
};

const Option* findOption(std::string_view name) {
    for (const Option& option : options) {
        if (option.name == name) {
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
    if (line.mode == Mode::Window && !firstHeadlessOnly.empty()) {
        return std::string(firstHeadlessOnly) + " goes with --headless only";
    }
    if (line.headless.every && !line.headless.outputDirectory) {
        return "--every needs --output";
    }
    return line;
}

std::string_view helpText() {
    return R"(Usage: cirrane [OPTION]…

Slowly drifting, colour-shifting clouds. Without a mode: in a window; Escape or q ends it.

  --headless            draw without any window system:
    --size WxH            size of the picture in pixels (1920x1080)
    --frames N            number of frames (600)
    --fps R               rate of the display that is played, in Hz (60)
    --realtime            at that rate, not as fast as possible
    --time SECONDS        the time (since 1970) that seeds the clouds; the same time gives the same picture
    --set KEY=VALUE       a setting: Colors, Brightness, Speed, Zoom (0 to 1), MultiScreen, Diagnostics (0, 1),
                          ScreenshotInterval (0 to 3); may be repeated
    --output DIR          write frame-NNNNNN.png there: the last frame,
    --every K             or every K-th
    --stats FILE          write what was measured, as JSON

  --device NAME|INDEX   draw on this device
  --list-devices        list the devices
  --validate            check all use of Vulkan, and print what is wrong
  --module PATH         the saver bundle to show
  --version             print the version
  --help                print this

Exit status: 0 when all went well, 1 on a failure, 2 on a wrong command line.
)";
}

}  // namespace host
