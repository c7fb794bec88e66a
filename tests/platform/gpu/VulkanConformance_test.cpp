#include "tests/platform/gpu/VulkanBackendUnderTest.hpp"

INSTANTIATE_TEST_SUITE_P(Vulkan, Conformance, testing::Values(vulkanBackend()));
