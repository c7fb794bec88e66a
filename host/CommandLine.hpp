#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace host {

/// Runs without any window system: frames are drawn, counted and, where asked, written as pictures.
struct HeadlessOptions {
    std::uint32_t width = 1920;
    std::uint32_t height = 1080;
    std::uint64_t frames = 600;
    double framesPerSecond = 60.0;
    bool realtime = false;
    std::optional<std::int64_t> calendarSeconds;
    std::vector<std::pair<std::string, std::string>> settings;
    std::optional<std::filesystem::path> outputDirectory;
    /// Every how many frames one is written; nothing means the last one only.
    std::optional<std::uint64_t> every;
    std::optional<std::filesystem::path> statisticsFile;
};

enum class Mode { Window, Headless, ListDevices, Version, Help };

/// What the program was asked to do.
struct CommandLine {
    Mode mode = Mode::Window;
    HeadlessOptions headless;
    std::string device;
    bool validate = false;
    std::optional<std::filesystem::path> module;
};

/// The largest width or height that is taken for sane, in pixels.
inline constexpr std::uint32_t maximumSize = 16384;

/// The command line, or one line that says what is wrong with it. `arguments` are those after the program's name.
std::variant<CommandLine, std::string> parseCommandLine(const std::vector<std::string_view>& arguments);

/// What `--help` prints.
std::string_view helpText();

}  // namespace host
