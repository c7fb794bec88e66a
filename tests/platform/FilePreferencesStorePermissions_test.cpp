#include "platform/PreferencesStore.hpp"

#include "tests/platform/FilePreferencesStoreTest.hpp"
#include "tests/support/OrdinaryUser.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>

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

TEST_F(FilePreferencesStorePermissions, AReadOnlyDirectoryIsReportedAndTheValuesStay) {
    write("[General]\nZoom=0.25\n");
    ASSERT_EQ(chmod(file.c_str(), 0666), 0);
    ASSERT_EQ(chmod(directory.path().c_str(), 0555), 0);
    {
        const fake::AsOrdinaryUser user;
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
    const fake::AsOrdinaryUser user;
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
        const fake::AsOrdinaryUser user;
        EXPECT_FALSE(store->synchronize());
    }
    EXPECT_EQ(store->floatForKey("Zoom"), 0.9F);
    EXPECT_EQ(store->floatForKey("Speed"), 0.2F);
    EXPECT_FALSE(store->hasForeignChanges());
    EXPECT_EQ(store->foreignChangesTakenIn(), 1U);
}

TEST_F(FilePreferencesStorePermissions, OneIsToldOfAFailureOnceUntilAWriteSucceeds) {
    std::vector<std::filesystem::path> told;
    platform::setPreferencesFailureHandler([&told](const auto& failed) { told.push_back(failed); });
    const auto store = open();
    std::filesystem::create_directory(file);
    EXPECT_FALSE(store->synchronize()) << "nothing can be read";
    EXPECT_TRUE(told.empty()) << "nothing was to be written";
    for (const float speed : {0.1F, 0.2F}) {
        store->setFloat(speed, "Speed");
        EXPECT_FALSE(store->synchronize());
        EXPECT_EQ(told, std::vector{file});
    }
    std::filesystem::remove(file);
    EXPECT_TRUE(store->synchronize());
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    store->setFloat(0.3F, "Speed");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(told, (std::vector{file, file}));
    platform::setPreferencesFailureHandler(nullptr);
}

TEST_F(FilePreferencesStorePermissions, WhoHearsOfAFailureMayLookAtTheSettings) {
    const auto store = open();
    float seen = 0.0F;
    platform::setPreferencesFailureHandler([&](const auto&) { seen = store->floatForKey("Speed"); });
    std::filesystem::create_directory(file);
    store->setFloat(0.75F, "Speed");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(seen, 0.75F);
    platform::setPreferencesFailureHandler(nullptr);
}

}  // namespace
