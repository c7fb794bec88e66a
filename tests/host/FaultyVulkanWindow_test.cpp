// The program in its window on machines without a Vulkan to draw it with.
#include "tests/host/Process.hpp"
#include "tests/host/StartedSaver.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

void expectEndWithText(const std::vector<std::string>& environment, const char* text) {
    const fake::ProcessEnd end = fake::runCirrane({}, environment);
    EXPECT_EQ(end.exitStatus, 1);
    EXPECT_EQ(end.standardError, "cirrane: " + fake::englishText(text) + "\n");
}

TEST(FaultyVulkanWindow, WithoutALoaderItEndsAndSaysSo) {
    const fake::TemporaryDirectory directory;
    for (const char* name : {"libvulkan.so", "libvulkan.so.1"}) {
        fake::writeFile(directory.path() / name, "");
    }
    expectEndWithText({"LD_LIBRARY_PATH=" + directory.path().string()}, "QZL_ERROR_METAL_NOT_AVAILABLE");
}

TEST(FaultyVulkanWindow, WithoutADeviceItEndsAndSaysSo) {
    expectEndWithText({"VK_DRIVER_FILES=/nonexistent", "VK_ICD_FILENAMES=/nonexistent"}, "QZL_ERROR_METAL_RESOURCES");
}

TEST(FaultyVulkanWindow, ADeviceThatCannotPresentHereCountsAsNone) {
    expectEndWithText({std::string("LD_LIBRARY_PATH=") + STAND_IN_VULKAN, "STAND_IN_VULKAN_DEVICE=1.3"},
                      "QZL_ERROR_METAL_RESOURCES");
}

}  // namespace
