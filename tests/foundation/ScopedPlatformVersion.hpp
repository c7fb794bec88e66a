#pragma once

#include "foundation/QZLEnvironment.hpp"
#include "platform/gpu/Backend.hpp"

#include <atomic>
#include <memory>
#include <string>
#include <utility>

/// Puts a graphics platform in force, for the life of this object, that only knows its version, has not been probed yet
/// and counts how often it is.
class ScopedPlatformVersion {
public:
    explicit ScopedPlatformVersion(std::string version)
        : _former(gpu::backend()), _backend(std::make_shared<VersionOnly>(std::move(version))) {
        gpu::setBackend(_backend);
        QZLForgetMacOsVersion();
    }
    ~ScopedPlatformVersion() {
        gpu::setBackend(_former);
        QZLForgetMacOsVersion();
    }
    ScopedPlatformVersion(const ScopedPlatformVersion&) = delete;
    ScopedPlatformVersion& operator=(const ScopedPlatformVersion&) = delete;

    int probes() const { return _backend->probes; }

private:
    struct VersionOnly final : gpu::Backend {
        explicit VersionOnly(std::string text) : version(std::move(text)) {}

        std::string platformVersion() override {
            ++probes;
            return version;
        }
        std::shared_ptr<gpu::Layer> newLayer() override { return nullptr; }
        std::shared_ptr<gpu::Device> openDevice() override { return nullptr; }

        const std::string version;
        std::atomic<int> probes{0};
    };

    std::shared_ptr<gpu::Backend> _former;
    std::shared_ptr<VersionOnly> _backend;
};
