#include "platform/PreferencesStore.hpp"

#include "tests/platform/FilePreferencesStoreTest.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace {

using FilePreferencesStorePermissions = FilePreferencesStoreTest;

TEST_F(FilePreferencesStorePermissions, WhatCannotBeWrittenStaysInMemoryUntilItCan) {
    const std::filesystem::path obstacle = directory.path() / "config";
    std::ofstream(obstacle) << "a file where the directory should be";
    file = obstacle / "test.conf";
    const auto store = open();
    store->setFloat(0.75F, "Speed");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
    EXPECT_TRUE(store->isStored("Speed"));

    std::filesystem::remove(obstacle);
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(open()->floatForKey("Speed"), 0.75F);
}

TEST_F(FilePreferencesStorePermissions, ADirectoryInTheFilesPlaceIsNeitherReadNorWritten) {
    std::filesystem::create_directory(file);
    const auto store = open();
    store->setFloat(0.75F, "Speed");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
    EXPECT_TRUE(std::filesystem::is_directory(file));
}

/// An ordinary user's view of the file system, also where the tests run as root.
class AsOrdinaryUser {
public:
    AsOrdinaryUser() { _changed = geteuid() == 0 && seteuid(65534) == 0; }
    ~AsOrdinaryUser() {
        if (_changed && seteuid(0) != 0) {
            std::abort();
        }
    }

private:
    bool _changed = false;
};

TEST_F(FilePreferencesStorePermissions, AReadOnlyDirectoryIsReportedAndTheValuesStay) {
    write("[General]\nZoom=0.25\n");
    ASSERT_EQ(chmod(file.c_str(), 0666), 0);
    ASSERT_EQ(chmod(directory.path().c_str(), 0555), 0);
    {
        const AsOrdinaryUser user;
        const auto store = open();
        EXPECT_TRUE(store->synchronize());
        store->setFloat(0.75F, "Speed");
        EXPECT_FALSE(store->synchronize());
        EXPECT_EQ(store->floatForKey("Zoom"), 0.25F);
        EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
        EXPECT_EQ(open()->allKeys(), std::vector<std::string>{"Zoom"});
    }
    ASSERT_EQ(chmod(directory.path().c_str(), 0755), 0);
    EXPECT_EQ(fake::readFile(file), "[General]\nZoom=0.25\n");
}

TEST_F(FilePreferencesStorePermissions, AReadOnlyFileIsReportedAndTheValuesStay) {
    write("[General]\nZoom=0.25\n");
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(chmod(directory.path().c_str(), 0777), 0);
    const AsOrdinaryUser user;
    const auto store = open();
    store->setFloat(0.75F, "Speed");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
    EXPECT_EQ(open()->allKeys(), std::vector<std::string>{"Zoom"});
    EXPECT_EQ(fake::readFile(file), "[General]\nZoom=0.25\n");
}

TEST_F(FilePreferencesStorePermissions, WhatOthersChangeInAFileThatCannotBeWrittenIsTakenIn) {
    write("[General]\nZoom=0.25\n");
    ASSERT_EQ(chmod(directory.path().c_str(), 0777), 0);
    const auto store = open();
    write("[General]\nZoom=0.9\nSpeed=0.3\n");
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    store->setFloat(0.2F, "Speed");
    {
        const AsOrdinaryUser user;
        EXPECT_FALSE(store->synchronize());
    }
    EXPECT_EQ(store->floatForKey("Zoom"), 0.9F);
    EXPECT_EQ(store->floatForKey("Speed"), 0.2F);
    EXPECT_FALSE(store->hasForeignChanges());
    EXPECT_EQ(store->foreignChangesTakenIn(), 1U);
}

}  // namespace
