#pragma once

#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "tests/platform/gpu/Conformance.hpp"

/// The Vulkan backend under validation, whose every message fails the test.
inline TestedBackend vulkanBackend() {
    return {.name = "Vulkan",
            .make =
                [](std::function<void(std::string)> complain) {
                    gpu::vulkan::VulkanOptions options;
                    options.validate = true;
                    options.validationMessage = [complain = std::move(complain)](std::string_view message) {
                        complain(std::string(message));
                    };
                    return gpu::vulkan::makeVulkanBackend(std::move(options));
                },
            .step = [](gpu::Backend&) {},
            .loseDevice = [](gpu::Backend&, gpu::Device& device) { gpu::vulkan::loseDevice(device); }};
}
