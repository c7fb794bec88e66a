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

enum class Mode {
    Window,      ///< one view in a resizable window
    Fullscreen,  ///< one view on every screen
    Root,        ///< in the window that the environment names
    WindowId,    ///< in another program's window, as a preview
    Configure,   ///< a window for the settings, with a preview
    Headless,
    ListDevices,
    Version,
    Help,
};

/// An error by its numbers.
struct ErrorCode {
    std::int64_t code = 0;
    std::int64_t subCode = 0;
    bool operator==(const ErrorCode&) const = default;
};

/// What the program was asked to do.
struct CommandLine {
    Mode mode = Mode::Window;
    HeadlessOptions headless;
    /// The X11 window of `Mode::WindowId`.
    std::uint32_t windowIdentifier = 0;
    /// Shown instead of the picture, in whichever window.
    std::optional<ErrorCode> testError;
    /// The X11 display, where the environment's is not meant.
    std::string display;
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
