#pragma once

#include <memory>
#include <optional>
#include <string>

namespace platform {
class Bundle;
}

/// What a module sees as its own bundle, for a test that has loaded the module.
struct BundleProbe {
    std::shared_ptr<const platform::Bundle> (*saverBundle)();
    std::string (*localizedSaverString)(const std::string& key);
    std::string (*localizedVistashadeString)(const std::string& key);
    std::optional<std::string> (*saverBundleString)(const std::string& key);
};

extern "C" {
/// Exported by the module under this name.
__attribute__((visibility("default"))) extern const BundleProbe bundleProbe;
}
