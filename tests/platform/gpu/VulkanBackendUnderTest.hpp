#pragma once

#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "tests/platform/gpu/Conformance.hpp"

/// Validation on, each of its messages a complaint.
inline gpu::vulkan::VulkanOptions validatedOptions(std::function<void(std::string)> complain) {
    gpu::vulkan::VulkanOptions options;
    options.validate = true;
    options.validationMessage = [complain = std::move(complain)](std::string_view message) {
        complain(std::string(message));
    };
    return options;
}

/// The Vulkan backend under validation, whose every message fails the test.
inline TestedBackend vulkanBackend() {
    return {.name = "Vulkan",
            .make =
                [](std::function<void(std::string)> complain) {
                    return gpu::vulkan::makeVulkanBackend(validatedOptions(std::move(complain)));
                },
            .step = [](gpu::Backend&) {},
            .loseDevice = [](gpu::Backend&, gpu::Device& device) { gpu::vulkan::loseDevice(device); }};
}
