#include "platform/PreferencesStore.hpp"

#include "tests/platform/FilePreferencesStoreTest.hpp"
#include "tests/support/FullDisk.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <optional>
#include <string>

namespace {

/// More than the disk takes of any file, and even than a lock file holds.
const std::string journal(20000, 'j');

/// The parameter is how many bytes the disk still takes of a file.
class FilePreferencesStoreFullDisk : public FilePreferencesStoreTest, public testing::WithParamInterface<rlim_t> {
protected:
    auto filesInDirectory() const {
        const std::filesystem::directory_iterator entries(directory.path());
        return std::distance(begin(entries), end(entries));
    }
};

INSTANTIATE_TEST_SUITE_P(OfBytes, FilePreferencesStoreFullDisk, testing::Values(0, 10, 1000),
                         testing::PrintToStringParamName());

TEST_P(FilePreferencesStoreFullDisk, LeavesTheFileAsItWasAndTheValuesInMemory) {
    const std::string former = "[General]\nSpeed=0.5\nZoom=0.25\n";
    write(former);
    const auto store = open();
    store->setFloat(0.75F, "Speed");
    store->setString(journal, "SavedErrorJournal");
    {
        const fake::FullDisk disk(GetParam());
        EXPECT_FALSE(store->synchronize());
        EXPECT_FALSE(store->synchronize());
    }
    EXPECT_TRUE(fake::readFile(file) == former);
    EXPECT_EQ(filesInDirectory(), 1) << "nothing half-made, no lock";
    EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
    EXPECT_EQ(store->floatForKey("Zoom"), 0.25F);
}

TEST_P(FilePreferencesStoreFullDisk, WhatCouldNotBeWrittenIsOnceThereIsRoom) {
    const auto store = open();
    store->setFloat(0.75F, "Speed");
    store->setString(journal, "SavedErrorJournal");
    {
        const fake::FullDisk disk(GetParam());
        EXPECT_FALSE(store->synchronize());
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(filesInDirectory(), 1);
    const auto next = open();
    EXPECT_EQ(next->floatForKey("Speed"), 0.75F);
    EXPECT_TRUE(next->stringForKey("SavedErrorJournal") == journal);
}

TEST_P(FilePreferencesStoreFullDisk, OthersGoOnReadingTheFile) {
    write("[General]\nZoom=0.25\n");
    const auto store = open();
    store->setString(journal, "SavedErrorJournal");
    const fake::FullDisk disk(GetParam());
    EXPECT_FALSE(store->synchronize());
    const auto other = open();
    EXPECT_EQ(other->floatForKey("Zoom"), 0.25F);
    EXPECT_TRUE(other->synchronize());
    EXPECT_EQ(other->floatForKey("Zoom"), 0.25F);
}

TEST_P(FilePreferencesStoreFullDisk, ADamagedFileStaysWholeUntilItCanBeKeptAside) {
    const std::string torn = "[General]\nColors 0.5\nText=" + journal + "\nZoom=0.25\n";
    write(torn);
    const auto store = open();
    store->setFloat(0.75F, "Speed");
    {
        const fake::FullDisk disk(GetParam());
        EXPECT_FALSE(store->synchronize());
    }
    EXPECT_TRUE(fake::readFile(file) == torn);
    EXPECT_EQ(filesInDirectory(), 1);
    EXPECT_TRUE(store->synchronize());
    EXPECT_TRUE(fake::readFile(damaged()) == torn);
    const auto next = open();
    EXPECT_EQ(next->floatForKey("Speed"), 0.75F);
    EXPECT_EQ(next->floatForKey("Zoom"), 0.25F);
    EXPECT_TRUE(next->stringForKey("Text") == journal);
}

TEST_F(FilePreferencesStoreFullDisk, ADamagedFileStaysUntilItsSuccessorIsWhole) {
    const std::string torn = "[General]\nColors 0.5\nZoom=0.25\nText=" + std::string(500, 't') + "\n";
    write(torn);
    const auto store = open();
    store->setString(journal, "SavedErrorJournal");
    {
        const fake::FullDisk disk(torn.size());  // room for the copy, but not for the new value
        EXPECT_FALSE(store->synchronize());
    }
    EXPECT_FALSE(std::filesystem::exists(damaged()));
    EXPECT_TRUE(fake::readFile(file) == torn);
    EXPECT_TRUE(store->synchronize());
    EXPECT_TRUE(fake::readFile(damaged()) == torn);
    EXPECT_EQ(open()->floatForKey("Zoom"), 0.25F);
    EXPECT_TRUE(open()->stringForKey("SavedErrorJournal") == journal);
}

}  // namespace
