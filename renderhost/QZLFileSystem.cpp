#include "renderhost/QZLFileSystem.hpp"

#include "platform/Paths.hpp"
#include "platform/StringFormat.hpp"

#include <sys/stat.h>

namespace {

/// False also for what cannot be examined.
bool isTaken(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

}  // namespace

std::string QZLFileSystemPath(std::uint64_t location) {
    const std::string home = platform::homeDirectory().string();
    return location == QZLLocationDesktop ? home + "/Desktop" : home;
}

std::optional<std::string> QZLNextAvailableFileName(std::uint64_t location, const std::optional<std::string>& baseName,
                                                    const std::string& extension, std::uint32_t& counter,
                                                    std::int32_t limit) {
    const std::string folder = QZLFileSystemPath(location);
    while (limit <= 0 || static_cast<std::int32_t>(counter) < limit) {
        const auto number = static_cast<std::int32_t>(counter++);
        std::string candidate = folder + platform::formatted("/%@ %d%@", baseName, number, extension);
        if (!isTaken(candidate)) {
            return candidate;
        }
    }
    return std::nullopt;
}
