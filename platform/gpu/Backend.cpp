#include "platform/gpu/Backend.hpp"

#include <new>
#include <utility>

namespace gpu {
namespace {

/// Stands in until the host chooses: a machine without graphics.
class NoBackend final : public Backend {
public:
    std::string platformVersion() override { return {}; }
    std::shared_ptr<Layer> newLayer() override { return nullptr; }

private:
    std::shared_ptr<Device> openDevice() override { return nullptr; }
};

struct BackendInForce {
    std::mutex mutex;
    std::shared_ptr<Backend> backend = std::make_shared<NoBackend>();
};

BackendInForce& inForce() {
    static auto* const instance = new BackendInForce;  // leaked on purpose: threads may ask until the process ends
    return *instance;
}

}  // namespace

std::shared_ptr<Device> Backend::systemDefaultDevice() {
    const std::lock_guard opening(_openMutex);
    std::shared_ptr<Device> device = knownDevice();
    if (device == nullptr || device->isLost()) {
        device = openDevice();
        const std::lock_guard lock(_mutex);
        _device = device;
    }
    return device;
}

std::shared_ptr<Device> Backend::knownDevice() {
    const std::lock_guard lock(_mutex);
    return _device.lock();
}

std::shared_ptr<RenderPassDescriptor> Backend::newRenderPassDescriptor() {
    try {
        return std::make_shared<RenderPassDescriptor>();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void Backend::setDeviceLostHandler(std::function<void()> handler) {
    const std::lock_guard lock(_mutex);
    _deviceLostHandler.swap(handler);
}

void Backend::deviceWasLost(const Device& device) {
    std::function<void()> handler;
    {
        const std::lock_guard lock(_mutex);
        // By owner, not by pointer: the last reference must not be dropped here, under the lock.
        const std::weak_ptr<const Device> lost = device.weak_from_this();
        if (!lost.owner_before(_device) && !_device.owner_before(lost)) {
            _device.reset();
        }
        handler = _deviceLostHandler;
    }
    if (handler) {
        handler();
    }
}

std::shared_ptr<Backend> backend() {
    const std::lock_guard lock(inForce().mutex);
    return inForce().backend;
}

void setBackend(std::shared_ptr<Backend> backend) {
    if (backend == nullptr) {
        backend = std::make_shared<NoBackend>();
    }
    const std::lock_guard lock(inForce().mutex);
    inForce().backend.swap(backend);
}

std::shared_ptr<Device> createSystemDefaultDevice() {
    return backend()->systemDefaultDevice();
}

std::shared_ptr<Layer> createLayer() {
    return backend()->newLayer();
}

std::shared_ptr<RenderPassDescriptor> createRenderPassDescriptor() {
    return backend()->newRenderPassDescriptor();
}

}  // namespace gpu
