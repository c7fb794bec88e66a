#include "tests/platform/gpu/VulkanBackendUnderTest.hpp"
#include "tests/support/KeptLibraries.hpp"

#include <dlfcn.h>

INSTANTIATE_TEST_SUITE_P(Vulkan, Conformance, testing::Values(vulkanBackend()));

/// Without it the tests would see fewer faults, silently.
TEST(VulkanConformance, RunsUnderTheValidationLayer) {
    const auto backend = vulkanBackend().make([](const std::string&) {});
    const auto device = backend->systemDefaultDevice();
    ASSERT_NE(device, nullptr);
    fake::keepLoadedLibraries();
    void* const layer = dlopen("libVkLayer_khronos_validation.so", RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(layer, nullptr) << "the validation layer is not installed";
    dlclose(layer);
}
