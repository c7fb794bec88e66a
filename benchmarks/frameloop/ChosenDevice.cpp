#include "benchmarks/frameloop/ChosenDevice.hpp"

#include "platform/gpu/Backend.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"

#include <stdexcept>

namespace bench {

std::string chosenDeviceName() {
    gpu::setBackend(gpu::vulkan::makeVulkanBackend({}));
    const auto device = gpu::createSystemDefaultDevice();
    if (device == nullptr) {
        throw std::runtime_error("no Vulkan device found");
    }
    return device->name();
}

}  // namespace bench
