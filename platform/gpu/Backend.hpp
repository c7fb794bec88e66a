#pragma once

#include "platform/gpu/Device.hpp"
#include "platform/gpu/Layer.hpp"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace gpu {

/// A way to reach GPUs: the Vulkan one in the program, a fake one under test. One per process is in force.
/// Thread-safe; operations never throw and never fail other than by returning null or an empty text.
class Backend {
public:
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;
    virtual ~Backend() = default;

    /// The version of the graphics platform as three numbers, "10.13.239" for Vulkan 1.3.239; empty when there is none.
    virtual std::string platformVersion() = 0;

    /// The process-wide device, opened on first use, shared by all who hold it and closed when the last lets go; null
    /// when the machine has none. A lost device is forgotten, so that the next call opens a new one.
    std::shared_ptr<Device> systemDefaultDevice();

    virtual std::shared_ptr<Layer> newLayer() = 0;
    virtual std::shared_ptr<RenderPassDescriptor> newRenderPassDescriptor();

    /// Called once for every device that is lost, on the thread that noticed, with no lock held.
    void setDeviceLostHandler(std::function<void()> handler);

protected:
    Backend() = default;

    /// For backends: forget the lost device and tell the handler.
    void deviceWasLost(const Device& device);

private:
    virtual std::shared_ptr<Device> openDevice() = 0;
    std::shared_ptr<Device> knownDevice();

    std::mutex _openMutex;  ///< held while a device is opened, which may take long and may find the device lost
    std::mutex _mutex;
    std::weak_ptr<Device> _device;
    std::function<void()> _deviceLostHandler;
};

/// The backend in force; until one is set, one that knows no version and no device. Never null.
std::shared_ptr<Backend> backend();
void setBackend(std::shared_ptr<Backend> backend);

/// Short for the operations of the backend in force that the renderers use.
std::shared_ptr<Device> createSystemDefaultDevice();
std::shared_ptr<Layer> createLayer();
std::shared_ptr<RenderPassDescriptor> createRenderPassDescriptor();

}  // namespace gpu
