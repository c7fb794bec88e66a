#include "platform/gpu/vulkan/VulkanBackend.hpp"

#include "platform/SystemLog.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"
#include "platform/gpu/vulkan/VulkanDeviceChoice.hpp"
#include "platform/gpu/vulkan/VulkanInstance.hpp"
#include "platform/gpu/vulkan/VulkanLayer.hpp"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

namespace gpu::vulkan {
namespace {

class VulkanBackend final : public Backend, public std::enable_shared_from_this<VulkanBackend> {
public:
    VulkanBackend(VulkanOptions options, bool opensBareDevices)
        : _options(std::move(options)), _opensBareDevices(opensBareDevices) {}

    std::string platformVersion() override;
    std::shared_ptr<Layer> newLayer() override;

private:
    std::shared_ptr<Device> openDevice() override;
    std::shared_ptr<const VulkanInstance> instance();

    const VulkanOptions _options;
    const bool _opensBareDevices;
    std::mutex _instanceMutex;
    std::shared_ptr<const VulkanInstance> _instance;
};

std::string VulkanBackend::platformVersion() {
    const std::optional<std::uint32_t> version = loaderVersion();
    if (!version.has_value()) {
        return {};
    }
    return "10." + std::to_string(10 + VK_API_VERSION_MINOR(*version)) + '.' +
           std::to_string(VK_API_VERSION_PATCH(*version));
}

std::shared_ptr<Layer> VulkanBackend::newLayer() {
    try {
        return std::make_shared<VulkanLayer>();
    } catch (const std::exception& error) {
        platform::systemLog(std::string("gpu: no layer: ") + error.what());
        return nullptr;
    }
}

std::shared_ptr<Device> VulkanBackend::openDevice() {
    try {
        const std::shared_ptr<const VulkanInstance> opened = instance();
        if (opened == nullptr) {
            return nullptr;
        }
        std::optional<DeviceCandidate> chosen = chooseDevice(findDevices(*opened), _options);
        if (!chosen.has_value()) {
            platform::systemLog("gpu: no Vulkan device that fits");
            return nullptr;
        }
        chosen->hasAllFeatures = chosen->hasAllFeatures && !_opensBareDevices;
        return VulkanDevice::open(opened, std::move(*chosen), _options.pipelineCacheDirectory,
                                  [backend = weak_from_this()](const Device& device) {
                                      if (const auto known = backend.lock()) {
                                          known->deviceWasLost(device);
                                      }
                                  });
    } catch (const std::exception& error) {
        platform::systemLog(std::string("gpu: no Vulkan device: ") + error.what());
        return nullptr;
    }
}

std::shared_ptr<const VulkanInstance> VulkanBackend::instance() {
    const std::lock_guard lock(_instanceMutex);
    if (_instance == nullptr) {
        _instance = VulkanInstance::open(_options);
    }
    return _instance;
}

}  // namespace

std::shared_ptr<Backend> makeVulkanBackend(VulkanOptions options) {
    return std::make_shared<VulkanBackend>(std::move(options), false);
}

std::shared_ptr<Backend> makeBareVulkanBackend(VulkanOptions options) {
    return std::make_shared<VulkanBackend>(std::move(options), true);
}

std::vector<DeviceListing> listDevices(const VulkanOptions& options) {
    try {
        std::vector<DeviceListing> listings;
        if (const std::shared_ptr<const VulkanInstance> instance = VulkanInstance::open(options)) {
            std::ranges::transform(findDevices(*instance), std::back_inserter(listings), describe);
        }
        return listings;
    } catch (const std::exception& error) {
        platform::systemLog(std::string("gpu: no list of devices: ") + error.what());
        return {};
    }
}

void loseDevice(Device& device) {
    static_cast<VulkanDevice&>(device).lose();
}

}  // namespace gpu::vulkan
