#pragma once

#include "settings/QZLDefaultsManager.hpp"
#include "tests/foundation/ScopedPlatformVersion.hpp"
#include "tests/settings/RecordingStore.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

/// The process's manager over a fresh store, in a bundle of version 1.2.3 on platform 10.13.2.
class DefaultsManagerFixture : public testing::Test {
protected:
    DefaultsManagerFixture() {
        manager.registerDefaults();
        store->clearCalls();
    }
    ~DefaultsManagerFixture() override { platform::setPreferencesStore(nullptr); }

    ScopedPlatformVersion platformVersion{"10.13.2"};
    fake::Bundle bundle;
    std::shared_ptr<RecordingStore> store = RecordingStore::install();
    QZLDefaultsManager& manager = QZLDefaultsManager::sharedInstance();
};
