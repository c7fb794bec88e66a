// The program on machines whose Vulkan is missing, old or broken: what it says, and with which code.
#include "platform/StringFormat.hpp"
#include "tests/host/Process.hpp"
#include "tests/host/StartedSaver.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Environment = std::vector<std::string>;
using fake::ProcessEnd;

/// The environment of a machine whose Vulkan loader lies in that folder.
Environment withLoaderFrom(const fs::path& directory, Environment more = {}) {
    more.insert(more.end(), {"DISPLAY", "WAYLAND_DISPLAY", "LD_LIBRARY_PATH=" + directory.string()});
    return more;
}

struct Machine {
    const char* name;
    Environment standIn;
    const char* code;
    const char* text;
};

void PrintTo(const Machine& machine, std::ostream* stream) {
    *stream << machine.name;
}

constexpr const char* notAvailable = "QZL_ERROR_METAL_NOT_AVAILABLE";
constexpr const char* tooOld = "QZL_ERROR_MACOS_VERSION_2";
constexpr const char* lacksFeatures = "QZL_ERROR_METAL_FEATURE_SET";
constexpr const char* noResources = "QZL_ERROR_METAL_RESOURCES";

/// On every machine: the saver's error, and the program's one line and exit status.
void expectRefusal(const Environment& environment, const std::string& code, const char* text) {
    const fake::StartedSaver saver(CIRRANE_BUILT_BUNDLE, environment);
    EXPECT_EQ(saver.code(), code);
    EXPECT_EQ(saver.text(), fake::englishText(text));

    const ProcessEnd headless = fake::runCirrane({"--headless", "--frames", "2"}, environment);
    EXPECT_EQ(headless.exitStatus, 1);
    EXPECT_EQ(headless.standardError, "cirrane: " + fake::englishText(text) + "\n");
    EXPECT_EQ(headless.standardOutput, "");
}

void expectNoDevicesListed(const Environment& environment) {
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"--list-devices"}, {"--headless", "--device", "0"}, {"--headless", "--validate"}}) {
        const ProcessEnd end = fake::runCirrane(command, environment);
        EXPECT_EQ(end.exitStatus, 1);
        EXPECT_EQ(end.standardError, "cirrane: no Vulkan device found\n");
        EXPECT_EQ(end.standardOutput, "");
    }
}

class FaultyVulkan : public testing::TestWithParam<Machine> {};

TEST_P(FaultyVulkan, IsAClearFailureWithItsCode) {
    expectRefusal(withLoaderFrom(STAND_IN_VULKAN, GetParam().standIn), GetParam().code, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    On, FaultyVulkan,
    testing::Values(
        Machine{
            "ALoaderOfVersion10", {"STAND_IN_VULKAN_LOADER=1.0", "STAND_IN_VULKAN_DEVICE=1.0"}, "301:0", notAvailable},
        Machine{"ALoaderOfVersion11", {"STAND_IN_VULKAN_LOADER=1.1", "STAND_IN_VULKAN_DEVICE=1.1"}, "300:0", tooOld},
        Machine{"ALoaderOfVersion12", {"STAND_IN_VULKAN_LOADER=1.2", "STAND_IN_VULKAN_DEVICE=1.2"}, "300:0", tooOld},
        Machine{
            "AnOldLoaderWithANewDevice", {"STAND_IN_VULKAN_LOADER=1.1", "STAND_IN_VULKAN_DEVICE=1.3"}, "300:0", tooOld},
        Machine{"AnOldLoaderWithoutDevices", {"STAND_IN_VULKAN_LOADER=1.1"}, "303:0", noResources},
        Machine{"ALoaderWithoutDevices", {"STAND_IN_VULKAN_LOADER=1.3"}, "303:0", noResources},
        Machine{"ADeviceOfVersion10", {"STAND_IN_VULKAN_DEVICE=1.0"}, "303:0", noResources},
        Machine{"ADeviceOfVersion11", {"STAND_IN_VULKAN_DEVICE=1.1"}, "302:0", lacksFeatures},
        Machine{"ADeviceOfVersion12", {"STAND_IN_VULKAN_DEVICE=1.2"}, "302:0", lacksFeatures},
        Machine{"ADeviceWithoutTheFeatures", {"STAND_IN_VULKAN_DEVICE=1.3"}, "302:0", lacksFeatures},
        Machine{"ADeviceWithoutTheFormats",
                {"STAND_IN_VULKAN_DEVICE=1.3", "STAND_IN_VULKAN_FEATURES=1"},
                "302:0",
                lacksFeatures},
        Machine{"ADriverThatDoesNotStart",
                {"STAND_IN_VULKAN_DEVICE=1.3", "STAND_IN_VULKAN_FAILING=vkCreateInstance"},
                "303:0",
                noResources},
        Machine{"ADeviceThatDoesNotOpen",
                {"STAND_IN_VULKAN_DEVICE=1.3", "STAND_IN_VULKAN_FAILING=vkCreateDevice"},
                "303:0",
                noResources}),
    [](const auto& machine) { return std::string(machine.param.name); });

TEST(FaultyVulkan, WithoutALoaderItSaysSo) {
    // Files that cannot be loaded, lest the next folder's be.
    const fake::TemporaryDirectory directory;
    for (const char* name : {"libvulkan.so", "libvulkan.so.1"}) {
        fake::writeFile(directory.path() / name, "");
    }
    expectRefusal(withLoaderFrom(directory.path()), "301:0", notAvailable);
    expectNoDevicesListed(withLoaderFrom(directory.path()));
}

TEST(FaultyVulkan, ALibraryOfTheLoadersNameThatIsNoneCountsAsNone) {
    const fake::TemporaryDirectory directory;
    for (const char* name : {"libvulkan.so", "libvulkan.so.1"}) {
        fs::copy_file(NO_VULKAN, directory.path() / name);
    }
    expectRefusal(withLoaderFrom(directory.path()), "301:0", notAvailable);
    expectNoDevicesListed(withLoaderFrom(directory.path()));
}

TEST(FaultyVulkan, WithoutDriversTheSystemsLoaderHasNoDevice) {
    const Environment environment{"DISPLAY", "WAYLAND_DISPLAY", "VK_DRIVER_FILES=/nonexistent",
                                  "VK_ICD_FILENAMES=/nonexistent"};
    expectRefusal(environment, "303:0", noResources);
    expectNoDevicesListed(environment);
}

TEST(FaultyVulkan, ADeviceThatLacksWhatIsNeededIsListedAsSuch) {
    const ProcessEnd end =
        fake::runCirrane({"--list-devices"}, withLoaderFrom(STAND_IN_VULKAN, {"STAND_IN_VULKAN_DEVICE=1.1"}));
    EXPECT_EQ(end.exitStatus, 0);
    EXPECT_EQ(end.standardOutput, "0  Stand-in  (other, driver version 0, Vulkan 1.1.200; lacks what Cirrane needs)\n");
}

}  // namespace
