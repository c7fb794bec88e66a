#include "settings/QZLDefaultsManager.hpp"

#include "tests/settings/DefaultsManagerFixture.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <optional>
#include <thread>

using testing::ElementsAre;

namespace {

using QZLDefaultsManagerReport = DefaultsManagerFixture;

TEST_F(QZLDefaultsManagerReport, IsAbsentAtFirst) {
    EXPECT_FALSE(manager.haveSavedError());
    EXPECT_EQ(manager.savedErrorCode(), 0);
    EXPECT_EQ(manager.savedErrorSubCode(), 0);
    EXPECT_EQ(manager.savedErrorJournal(), std::nullopt);
}

TEST_F(QZLDefaultsManagerReport, ReadsAsItWasSaved) {
    const std::string journal = "[Screen] Wolke \u2601 = 100%\n\t\"two\"; [three]\n";
    manager.saveError(105, -1003, journal);
    EXPECT_TRUE(manager.haveSavedError());
    EXPECT_EQ(manager.savedErrorCode(), 105);
    EXPECT_EQ(manager.savedErrorSubCode(), -1003);
    EXPECT_EQ(manager.savedErrorJournal(), journal);
    EXPECT_EQ(store->stringForKey("SavedErrorVersion"), "1.2.3");
    EXPECT_EQ(store->stringForKey("SavedErrorMacOsVersion"), "10.13.2");
}

TEST_F(QZLDefaultsManagerReport, KeepsAllOfSixtyFourBits) {
    manager.saveError(std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(), "");
    EXPECT_EQ(manager.savedErrorCode(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(manager.savedErrorSubCode(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(manager.savedErrorJournal(), "");
}

TEST_F(QZLDefaultsManagerReport, IsWrittenInOrderThenSynchronized) {
    manager.saveError(200, 1003, "journal");
    EXPECT_THAT(store->calls(),
                ElementsAre("setString SavedErrorVersion 1.2.3", "setString SavedErrorMacOsVersion 10.13.2",
                            "setInteger SavedErrorCode 200", "setInteger SavedErrorSubCode 1003",
                            "setString SavedErrorJournal journal", "synchronize"));
}

TEST_F(QZLDefaultsManagerReport, IsRemovedInOrderThenSynchronized) {
    manager.saveError(200, 1, "journal");
    store->clearCalls();
    manager.clearSavedErrorReport();
    EXPECT_THAT(store->calls(),
                ElementsAre("remove SavedErrorVersion", "remove SavedErrorMacOsVersion", "remove SavedErrorCode",
                            "remove SavedErrorSubCode", "remove SavedErrorJournal", "synchronize"));
    EXPECT_FALSE(manager.haveSavedError());
    EXPECT_EQ(manager.savedErrorCode(), 0);
    EXPECT_EQ(manager.savedErrorSubCode(), 0);
    EXPECT_EQ(manager.savedErrorJournal(), std::nullopt);
}

TEST_F(QZLDefaultsManagerReport, ClearingLeavesTheSettings) {
    manager.setSpeed(0.25F);
    manager.saveError(200, 1, "journal");
    manager.clearSavedErrorReport();
    EXPECT_EQ(manager.speed(), 0.25F);
}

TEST_F(QZLDefaultsManagerReport, OfAnotherVersionOfTheSaverIsIgnoredButKept) {
    manager.saveError(105, 1003, "journal");
    bundle.setInfo("CFBundleShortVersionString", "1.2.4");
    EXPECT_FALSE(manager.haveSavedError());
    EXPECT_EQ(manager.savedErrorCode(), 105);
    EXPECT_EQ(manager.savedErrorJournal(), "journal");
    bundle.setInfo("CFBundleShortVersionString", "1.2.3");
    EXPECT_TRUE(manager.haveSavedError());
}

TEST_F(QZLDefaultsManagerReport, VersionsAreComparedAsPlainText) {
    manager.saveError(105, 0, "journal");
    for (const char* const version : {"1.2.30", "1.2", "1.2.3 ", "01.2.3", ""}) {
        bundle.setInfo("CFBundleShortVersionString", version);
        EXPECT_FALSE(manager.haveSavedError()) << version;
    }
}

TEST_F(QZLDefaultsManagerReport, OfAnotherPlatformVersionIsIgnoredButKept) {
    manager.saveError(105, 1003, "journal");
    {
        const ScopedPlatformVersion newer("10.13.3");
        EXPECT_FALSE(manager.haveSavedError());
        EXPECT_EQ(manager.savedErrorSubCode(), 1003);
    }
    EXPECT_TRUE(manager.haveSavedError());
}

TEST_F(QZLDefaultsManagerReport, OfAnUnknownPlatformCountsOnOne) {
    const ScopedPlatformVersion unknown("");
    manager.saveError(301, 0, "journal");
    EXPECT_EQ(store->stringForKey("SavedErrorMacOsVersion"), "(unknown)");
    EXPECT_TRUE(manager.haveSavedError());
    const ScopedPlatformVersion known("10.13.2");
    EXPECT_FALSE(manager.haveSavedError());
}

TEST_F(QZLDefaultsManagerReport, NeedsBothVersionsStored) {
    manager.saveError(105, 0, "journal");
    store->removeObjectForKey("SavedErrorVersion");
    EXPECT_FALSE(manager.haveSavedError());
    manager.saveError(105, 0, "journal");
    store->removeObjectForKey("SavedErrorMacOsVersion");
    EXPECT_FALSE(manager.haveSavedError());
}

TEST_F(QZLDefaultsManagerReport, NeedsNeitherCodeNorJournal) {
    store->setString("1.2.3", "SavedErrorVersion");
    store->setString("10.13.2", "SavedErrorMacOsVersion");
    EXPECT_TRUE(manager.haveSavedError());
    EXPECT_EQ(manager.savedErrorCode(), 0);
    EXPECT_EQ(manager.savedErrorJournal(), std::nullopt);
}

TEST_F(QZLDefaultsManagerReport, OfABundleWithoutVersionStoresNoneAndIsIgnored) {
    manager.saveError(105, 0, "journal");
    platform::Bundle::setOverride(nullptr);  // the test program itself lies in no bundle
    manager.saveError(106, 0, "journal");
    EXPECT_FALSE(store->isStored("SavedErrorVersion"));
    EXPECT_EQ(manager.savedErrorCode(), 106);
    EXPECT_FALSE(manager.haveSavedError());
}

TEST_F(QZLDefaultsManagerReport, GoesWithAReset) {
    manager.saveError(105, 1003, "journal");
    manager.reset();
    EXPECT_FALSE(manager.haveSavedError());
    EXPECT_EQ(manager.savedErrorCode(), 0);
    EXPECT_EQ(manager.savedErrorJournal(), std::nullopt);
}

TEST_F(QZLDefaultsManagerReport, SynchronizingHoldsNoLock) {
    bool hasCalledBack = false;
    store->onSynchronize([&] {
        if (!hasCalledBack) {
            hasCalledBack = true;
            manager.clearSavedErrorReport();  // would wait for ever for a lock that the first call held
        }
    });
    manager.saveError(105, 0, "journal");
    EXPECT_TRUE(hasCalledBack);
    hasCalledBack = false;
    manager.reset();
    EXPECT_TRUE(hasCalledBack);
    hasCalledBack = false;
    manager.clearSavedErrorReport();
    EXPECT_TRUE(hasCalledBack);
}

TEST_F(QZLDefaultsManagerReport, IsWrittenAsAUnit) {
    constexpr int rounds = 200;
    {
        std::vector<std::jthread> threads;
        for (const std::int64_t number : {1, 2}) {
            threads.emplace_back([this, number] {
                for (int i = 0; i < rounds; ++i) {
                    manager.saveError(number, number, std::to_string(number));
                }
            });
        }
    }
    // Every report's five writes stand together: none of another's lies between them.
    std::vector<std::string> writes = store->calls();
    std::erase(writes, "synchronize");
    ASSERT_EQ(writes.size(), 2U * rounds * 5U);
    for (std::size_t i = 0; i < writes.size(); i += 5) {
        const std::string number = writes[i + 4].substr(writes[i + 4].rfind(' ') + 1);
        ASSERT_EQ(writes[i], "setString SavedErrorVersion 1.2.3");
        ASSERT_EQ(writes[i + 2], "setInteger SavedErrorCode " + number);
        ASSERT_EQ(writes[i + 3], "setInteger SavedErrorSubCode " + number);
        ASSERT_EQ(writes[i + 4], "setString SavedErrorJournal " + number);
    }
    EXPECT_EQ(manager.savedErrorCode(), manager.savedErrorSubCode());
    EXPECT_EQ(manager.savedErrorJournal(), std::to_string(manager.savedErrorCode()));
}

}  // namespace
