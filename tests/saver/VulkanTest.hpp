#pragma once

#include "foundation/QZLEnvironment.hpp"
#include "platform/PreferencesStore.hpp"
#include "platform/SystemLog.hpp"
#include "platform/gpu/Backend.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "tests/support/FakeClock.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

/// The bundle as it was built, on the machine's real driver under validation, with settings in memory and at their
/// defaults. A test fails for every message of the validation layer.
class VulkanTest : public testing::Test {
protected:
    VulkanTest() {
        static const bool storeIsInPlace = [] {
            platform::setPreferencesStore(platform::makeMemoryPreferencesStore());
            return true;
        }();
        EXPECT_TRUE(storeIsInPlace);
        QZLDefaultsManager::sharedInstance().reset();
        platform::setSystemLogSink([](std::string_view) {});

        gpu::vulkan::VulkanOptions options;
        options.validate = true;
        options.validationMessage = [this](std::string_view message) {
            const std::lock_guard lock(_mutex);
            _messages.emplace_back(message);
        };
        gpu::setBackend(gpu::vulkan::makeVulkanBackend(std::move(options)));
        QZLForgetMacOsVersion();
    }

    ~VulkanTest() override {
        gpu::setBackend(nullptr);
        QZLForgetMacOsVersion();
        platform::setSystemLogSink({});
        QZLDefaultsManager::sharedInstance().reset();
        for (const std::string& message : _messages) {
            ADD_FAILURE() << message;
        }
    }

    void SetUp() override {
        device = gpu::createSystemDefaultDevice();
        ASSERT_NE(device, nullptr) << "this test needs a Vulkan driver";
    }

    fake::Clock clock;
    fake::BuiltBundle bundle;
    std::shared_ptr<gpu::Device> device;

private:
    std::mutex _mutex;
    std::vector<std::string> _messages;
};
