#include "host/SaverHosts.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace host {
namespace {

/// How a shell takes the text for one word.
std::string quoted(const std::string& text) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=./,:@%";
    if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) {
        return text;
    }
    std::string result = "'";
    for (const char character : text) {
        result += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return result + "'";
}

std::string fullscreenCommand(const std::string& program) {
    return quoted(program) + " --fullscreen";
}

struct KnownHost {
    const char* program;  ///< by which it is found
    const char* name;
    const char* explanationKey;
    /// Null when there is nothing to write.
    std::string (*line)(const std::string& program);
};

constexpr std::array knownHosts{
    KnownHost{"xscreensaver", "XScreenSaver", "HOST_ENABLE_XSCREENSAVER",
              [](const std::string& program) { return "\"Cirrane\"  " + quoted(program) + " --root \\n\\"; }},
    KnownHost{"mate-screensaver", "MATE Screensaver", "HOST_ENABLE_MATE", nullptr},
    KnownHost{"xfce4-screensaver", "Xfce Screensaver", "HOST_ENABLE_XFCE", nullptr},
    KnownHost{"swayidle", "swayidle", "HOST_ENABLE_SWAYIDLE",
              [](const std::string& program) { return "swayidle timeout 300 " + quoted(fullscreenCommand(program)); }},
    KnownHost{"hypridle", "hypridle", "HOST_ENABLE_HYPRIDLE",
              [](const std::string& program) { return "on-timeout = " + fullscreenCommand(program); }},
    KnownHost{
        "xautolock", "xautolock", "HOST_ENABLE_XAUTOLOCK",
        [](const std::string& program) { return "xautolock -time 5 -locker " + quoted(fullscreenCommand(program)); }},
};

bool isInstalled(const std::string& program, std::string_view searchPath) {
    while (!searchPath.empty()) {
        const std::size_t end = std::min(searchPath.find(':'), searchPath.size());
        const std::filesystem::path file = std::filesystem::path(searchPath.substr(0, end)) / program;
        std::error_code error;
        if (file.is_absolute() && access(file.c_str(), X_OK) == 0 && std::filesystem::is_regular_file(file, error)) {
            return true;
        }
        searchPath.remove_prefix(std::min(end + 1, searchPath.size()));
    }
    return false;
}

}  // namespace

std::vector<SaverHost> findSaverHosts(std::string_view searchPath, const std::filesystem::path& program) {
    std::vector<SaverHost> found;
    for (const KnownHost& known : knownHosts) {
        if (isInstalled(known.program, searchPath)) {
            found.push_back(
                {known.name, known.explanationKey, known.line != nullptr ? known.line(program.string()) : ""});
        }
    }
    return found;
}

}  // namespace host
