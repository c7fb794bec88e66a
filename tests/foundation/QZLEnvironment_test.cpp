#include "foundation/QZLEnvironment.hpp"

#include "foundation/QZLError.hpp"
#include "tests/foundation/ScopedPlatformVersion.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <latch>
#include <optional>
#include <ostream>
#include <thread>
#include <vector>

namespace {

struct VersionCase {
    const char* text;
    const char* shown;
    std::array<std::int32_t, 3> numbers;
};

/// Names the case in the list of tests.
std::ostream& operator<<(std::ostream& stream, const VersionCase& versionCase) {
    return stream << versionCase.shown;
}

class QZLVersionText : public testing::TestWithParam<VersionCase> {};

TEST_P(QZLVersionText, IsReadAsThreeNumbers) {
    const ScopedPlatformVersion version(GetParam().text);
    std::array<std::int32_t, 3> numbers{-1, -1, -1};
    const bool isKnown = QZLMacOsVersion(numbers[0], numbers[1], numbers[2]);
    EXPECT_EQ(isKnown, numbers[0] != 0);
    EXPECT_EQ(numbers, GetParam().numbers);
    EXPECT_EQ(QZLMacOsVersionString(), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, QZLVersionText,
    testing::Values(VersionCase{"10.13.239", "10.13.239", {10, 13, 239}}, VersionCase{"10.13", "10.13.0", {10, 13, 0}},
                    VersionCase{" \n11.0.1\n", "11.0.1", {11, 0, 1}},
                    VersionCase{"10.13.5.2 beta", "10.13.5", {10, 13, 5}},
                    VersionCase{"10.13.x", "10.13.0", {10, 13, 0}}, VersionCase{"10", "(unknown)", {0, 0, 0}},
                    VersionCase{"10 .13", "(unknown)", {0, 0, 0}}, VersionCase{"", "(unknown)", {0, 0, 0}},
                    VersionCase{"none", "(unknown)", {0, 0, 0}}, VersionCase{"0.9.1", "(unknown)", {0, 9, 1}}));

TEST(QZLEnvironment, AVersionIsAtLeastAnOlderOrEqualOne) {
    const ScopedPlatformVersion version("10.13.2");
    EXPECT_TRUE(QZLValidateMacOsVersion(10, 13, 2, nullptr));
    EXPECT_TRUE(QZLValidateMacOsVersion(10, 13, 0, nullptr));
    EXPECT_TRUE(QZLValidateMacOsVersion(10, 12, 6, nullptr));
    EXPECT_TRUE(QZLValidateMacOsVersion(9, 99, 99, nullptr));
    EXPECT_TRUE(QZLValidateMacOsVersion(10, -1, 99, nullptr));
    EXPECT_FALSE(QZLValidateMacOsVersion(10, 13, 3, nullptr));
    EXPECT_FALSE(QZLValidateMacOsVersion(10, 14, 0, nullptr));
    EXPECT_FALSE(QZLValidateMacOsVersion(11, 0, 0, nullptr));
}

TEST(QZLEnvironment, AVersionOfTwoNumbersPassesWithPatchZero) {
    const ScopedPlatformVersion version("10.13");
    EXPECT_TRUE(QZLValidateMacOsVersion(10, 13, 0, nullptr));
    EXPECT_FALSE(QZLValidateMacOsVersion(10, 13, 1, nullptr));
}

TEST(QZLEnvironment, AnOlderMinorFailsWhateverItsPatch) {
    const ScopedPlatformVersion version("10.12.6");
    EXPECT_FALSE(QZLValidateMacOsVersion(10, 13, 0, nullptr));
}

TEST(QZLEnvironment, ANewerMajorPassesWhateverItsMinor) {
    const ScopedPlatformVersion version("11.0.1");
    EXPECT_TRUE(QZLValidateMacOsVersion(10, 13, 0, nullptr));
}

TEST(QZLEnvironment, AnUnknownVersionFailsEveryRequirement) {
    const ScopedPlatformVersion version("");
    EXPECT_FALSE(QZLValidateMacOsVersion(10, 11, 0, nullptr));
    EXPECT_FALSE(QZLValidateMacOsVersion(0, 0, 0, nullptr));
    EXPECT_FALSE(QZLValidateMacOsVersion(-1, 0, 0, nullptr));
}

class QZLVersionError : public testing::Test {
protected:
    platform::Error errorFor(std::int32_t major, std::int32_t minor, std::int32_t patch) {
        std::optional<platform::Error> error;
        EXPECT_FALSE(QZLValidateMacOsVersion(major, minor, patch, &error));
        return error.value();
    }

    ScopedPlatformVersion version{"10.11.6"};
    fake::Bundle bundle{
        {{"Vistashade",
          {{"QZL_ERROR_MACOS_VERSION_2", "%@ needs %d.%d"}, {"QZL_ERROR_MACOS_VERSION_3", "%@ needs %d.%d.%d"}}}}};
};

TEST_F(QZLVersionError, HasCodeThreeHundredAndNoSubCode) {
    const platform::Error error = errorFor(10, 13, 0);
    EXPECT_EQ(error.domain(), QZLVistashadeErrorDomain);
    EXPECT_EQ(error.code(), 300);
    EXPECT_EQ(QZLGetErrorSubCode(error), 0);
}

TEST_F(QZLVersionError, NamesTwoNumbersWhenThePatchIsZeroThoughTheSystemHasOne) {
    EXPECT_EQ(errorFor(10, 13, 0).localizedDescription(), "Cirrane needs 10.13");
}

TEST_F(QZLVersionError, NamesThreeNumbersWhenAPatchIsRequired) {
    EXPECT_EQ(errorFor(10, 13, 4).localizedDescription(), "Cirrane needs 10.13.4");
    EXPECT_EQ(errorFor(11, 0, -1).localizedDescription(), "Cirrane needs 11.0.-1");
}

TEST_F(QZLVersionError, GivesTheTwoNumberTextAllThree) {
    const fake::Bundle other({{"Vistashade", {{"QZL_ERROR_MACOS_VERSION_2", "%4$d %3$d %2$d %1$@"}}}});
    EXPECT_EQ(errorFor(12, 7, 0).localizedDescription(), "0 7 12 Cirrane");
}

TEST_F(QZLVersionError, SaysWhatItCanWithATextThatDoesNotMatchItsArguments) {
    const fake::Bundle other(
        {{"Vistashade",
          {{"QZL_ERROR_MACOS_VERSION_2", "%d needs %@ %lf %s %@ %n"}, {"QZL_ERROR_MACOS_VERSION_3", ""}}}});
    EXPECT_EQ(errorFor(12, 7, 0).localizedDescription(), "Cirrane needs 12 7 0 (null) %n");
    EXPECT_EQ(errorFor(12, 7, 1).localizedDescription(), "");
}

TEST_F(QZLVersionError, NamesNullWithoutABundle) {
    platform::Bundle::setOverride(nullptr);
    EXPECT_EQ(errorFor(12, 7, 0).localizedDescription(), "QZL_ERROR_MACOS_VERSION_2");
    const fake::Bundle nameless({{"Vistashade", {{"QZL_ERROR_MACOS_VERSION_2", "%@ needs %d.%d"}}}});
    std::filesystem::remove(nameless.directory() / "Info.json");
    platform::Bundle::setOverride(platform::Bundle::open(nameless.directory()));
    EXPECT_EQ(errorFor(12, 7, 0).localizedDescription(), "(null) needs 12.7");
}

TEST_F(QZLVersionError, IsTheKeyWhenTheTextIsMissing) {
    const fake::Bundle other;
    EXPECT_EQ(errorFor(12, 7, 0).localizedDescription(), "QZL_ERROR_MACOS_VERSION_2");
    EXPECT_EQ(errorFor(12, 7, 1).localizedDescription(), "QZL_ERROR_MACOS_VERSION_3");
}

TEST_F(QZLVersionError, IsNotMadeOnSuccess) {
    std::optional<platform::Error> error;
    EXPECT_TRUE(QZLValidateMacOsVersion(10, 11, 0, &error));
    EXPECT_EQ(error, std::nullopt);
}

TEST_F(QZLVersionError, OfBeforeStaysInItsPlaceOnSuccess) {
    std::optional<platform::Error> error = QZLCreateError("former", 42, 7);
    EXPECT_TRUE(QZLValidateMacOsVersion(10, 11, 0, &error));
    EXPECT_EQ(error.value().code(), 42);
}

TEST(QZLEnvironment, ThePlatformIsProbedOnceEvenWhenManyAskAtOnce) {
    const ScopedPlatformVersion version("10.13.0");
    constexpr std::ptrdiff_t count = 8;
    std::latch start(count);
    std::atomic<int> agreeing{0};
    {
        std::vector<std::jthread> threads;
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            threads.emplace_back([&start, &agreeing, i] {
                start.arrive_and_wait();
                agreeing +=
                    i % 2 == 0 ? QZLMacOsVersionString() == "10.13.0" : QZLValidateMacOsVersion(10, 13, 0, nullptr);
            });
        }
    }
    EXPECT_EQ(agreeing, count);
    EXPECT_EQ(version.probes(), 1);
}

TEST(QZLEnvironment, AnUnknownVersionIsNotProbedAgain) {
    const ScopedPlatformVersion version("");
    EXPECT_EQ(QZLMacOsVersionString(), "(unknown)");
    EXPECT_FALSE(QZLValidateMacOsVersion(10, 11, 0, nullptr));
    EXPECT_EQ(version.probes(), 1);
}

TEST(QZLEnvironment, ADeviceWithTheFeatureSetPasses) {
    const fake::ScopedGpu gpu;
    const auto device = gpu::createSystemDefaultDevice();
    ASSERT_NE(device, nullptr);
    std::optional<platform::Error> error;
    EXPECT_TRUE(QZLValidateMetalFeatureSet(*device, gpu::FeatureSet::MacOsGpuFamily1V3, 0, &error));
    EXPECT_EQ(error, std::nullopt);
    EXPECT_TRUE(QZLValidateMetalFeatureSet(*device, gpu::FeatureSet::MacOsGpuFamily1V3, 0, nullptr));
}

TEST(QZLEnvironment, ADeviceThatPassesLeavesAFormerErrorInItsPlace) {
    const fake::ScopedGpu gpu;
    const auto device = gpu::createSystemDefaultDevice();
    ASSERT_NE(device, nullptr);
    std::optional<platform::Error> error = QZLCreateError("former", 42, 7);
    EXPECT_TRUE(QZLValidateMetalFeatureSet(*device, gpu::FeatureSet::MacOsGpuFamily1V3, 21, &error));
    EXPECT_EQ(error.value().code(), 42);
}

TEST(QZLEnvironment, ADeviceWithoutTheFeatureSetGivesItsErrorWithTheSubCode) {
    fake::FaultPlan plan;
    plan.noFeatureSet = true;
    const fake::ScopedGpu gpu(plan);
    const auto device = gpu::createSystemDefaultDevice();
    ASSERT_NE(device, nullptr);
    std::optional<platform::Error> error;
    EXPECT_FALSE(QZLValidateMetalFeatureSet(*device, gpu::FeatureSet::MacOsGpuFamily1V3, 21, &error));
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code(), 302);
    EXPECT_EQ(QZLGetErrorSubCode(*error), 21);
    EXPECT_EQ(error->localizedDescription(), "QZL_ERROR_METAL_FEATURE_SET");
    EXPECT_FALSE(QZLValidateMetalFeatureSet(*device, gpu::FeatureSet::MacOsGpuFamily1V3, 21, nullptr));
}

}  // namespace
