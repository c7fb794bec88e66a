#include "platform/Paths.hpp"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace platform {
namespace {

std::filesystem::path environmentPath(const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing here changes the environment
    return value != nullptr ? value : "";
}

std::filesystem::path homeFromPasswordDatabase() {
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> texts(16384);
    const int result = getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found);
    return result == 0 && found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "";
}

/// As the XDG base directory rules say: a relative path counts as unset.
std::filesystem::path baseDirectory(const char* variable, const char* below) {
    const std::filesystem::path given = environmentPath(variable);
    return given.is_absolute() ? given : homeDirectory() / below;
}

}  // namespace

std::filesystem::path homeDirectory() {
    for (const auto& candidate : {environmentPath("HOME"), homeFromPasswordDatabase()}) {
        if (!candidate.empty()) {
            return candidate;
        }
    }
    return "/";
}

std::filesystem::path configDirectory() {
    return baseDirectory("XDG_CONFIG_HOME", ".config");
}

std::filesystem::path cacheDirectory() {
    return baseDirectory("XDG_CACHE_HOME", ".cache");
}

std::filesystem::path stateDirectory() {
    return baseDirectory("XDG_STATE_HOME", ".local/state");
}

}  // namespace platform
