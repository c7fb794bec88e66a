#include "foundation/QZLEnvironment.hpp"

#include "foundation/QZLBundle.hpp"
#include "foundation/QZLError.hpp"
#include "platform/StringFormat.hpp"
#include "platform/gpu/Backend.hpp"

#include <compare>
#include <cstdio>
#include <mutex>

namespace {

struct Version {
    std::int32_t major = 0;
    std::int32_t minor = 0;
    std::int32_t patch = 0;

    bool isKnown() const { return major != 0; }
    auto operator<=>(const Version&) const = default;
};

/// A lock and a flag rather than a once token, so that a test can have the probe run again.
struct VersionCache {
    std::mutex mutex;
    bool isFilled = false;
    Version version;
};

constinit VersionCache versionCache;

Version probeVersion() {
    const std::string text = gpu::backend()->platformVersion();
    Version version;
    switch (std::sscanf(text.c_str(), " %d.%d.%d", &version.major, &version.minor, &version.patch)) {
        case 3:
        case 2:  // the patch has stayed 0
            return version;
        default: return {};
    }
}

Version currentVersion() {
    const std::lock_guard lock(versionCache.mutex);
    if (!versionCache.isFilled) {
        versionCache.version = probeVersion();
        versionCache.isFilled = true;
    }
    return versionCache.version;
}

platform::Error versionError(const Version& required) {
    const char* const key = required.patch != 0 ? "QZL_ERROR_MACOS_VERSION_3" : "QZL_ERROR_MACOS_VERSION_2";
    const std::string message =
        platform::formatted(QZLLocalizedVistashadeString(key), QZLSaverBundleString("CFBundleName"), required.major,
                            required.minor, required.patch);
    return QZLCreateError(message, 300, 0);
}

}  // namespace

bool QZLMacOsVersion(std::int32_t& major, std::int32_t& minor, std::int32_t& patch) {
    const Version version = currentVersion();
    major = version.major;
    minor = version.minor;
    patch = version.patch;
    return version.isKnown();
}

std::string QZLMacOsVersionString() {
    const Version version = currentVersion();
    return version.isKnown() ? platform::formatted("%d.%d.%d", version.major, version.minor, version.patch)
                             : "(unknown)";
}

bool QZLValidateMacOsVersion(std::int32_t major, std::int32_t minor, std::int32_t patch, platform::ErrorPlace error) {
    const Version required{major, minor, patch};
    const Version current = currentVersion();
    if (current.isKnown() && current >= required) {
        return true;
    }
    if (error != nullptr) {
        *error = versionError(required);
    }
    return false;
}

bool QZLValidateMetalFeatureSet(const gpu::Device& device, gpu::FeatureSet featureSet, std::int64_t subCode,
                                platform::ErrorPlace error) {
    if (device.supportsFeatureSet(featureSet)) {
        return true;
    }
    if (error != nullptr) {
        *error = QZLCreateVistashadeError(302, subCode);
    }
    return false;
}

void QZLForgetMacOsVersion() {
    const std::lock_guard lock(versionCache.mutex);
    versionCache.isFilled = false;
}
