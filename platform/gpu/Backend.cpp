#include "platform/gpu/Backend.hpp"

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
    const std::lock_guard lock(_mutex);
    std::shared_ptr<Device> device = _device.lock();
    if (device == nullptr || device->isLost()) {
        device = openDevice();
        _device = device;
    }
    return device;
}

std::shared_ptr<RenderPassDescriptor> Backend::newRenderPassDescriptor() {
    return std::make_shared<RenderPassDescriptor>();
}

void Backend::setDeviceLostHandler(std::function<void()> handler) {
    const std::lock_guard lock(_mutex);
    _deviceLostHandler = std::move(handler);
}

void Backend::deviceWasLost(const Device& device) {
    std::function<void()> handler;
    {
        const std::lock_guard lock(_mutex);
        if (_device.lock().get() == &device) {
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
    const std::lock_guard lock(inForce().mutex);
    inForce().backend = backend != nullptr ? std::move(backend) : std::make_shared<NoBackend>();
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
