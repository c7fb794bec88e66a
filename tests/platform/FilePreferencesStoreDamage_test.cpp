#include "platform/PreferencesStore.hpp"

#include "tests/platform/FilePreferencesStoreTest.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using FilePreferencesStoreDamage = FilePreferencesStoreTest;

TEST_F(FilePreferencesStoreDamage, ADamagedFileIsReadAsFarAsItMakesSense) {
    write("[General]\nColors 0.5\nZoom=0.25\n");
    EXPECT_EQ(open()->floatForKey("Zoom"), 0.25F);
    EXPECT_FALSE(std::filesystem::exists(damaged()));
}

TEST_F(FilePreferencesStoreDamage, ADamagedFileIsCopiedAsideBeforeTheFirstWrite) {
    const std::string torn = "[General]\nColors 0.5\nZoom=0.25\n";
    write(torn);
    const auto store = open();
    open();  // reading it again does not make it sound
    store->setFloat(0.75F, "Speed");
    EXPECT_TRUE(store->synchronize());

    EXPECT_EQ(fake::readFile(damaged()), torn);
    const auto next = open();
    EXPECT_EQ(next->floatForKey("Zoom"), 0.25F);
    EXPECT_EQ(next->floatForKey("Speed"), 0.75F);
    next->setFloat(1.0F, "Speed");
    EXPECT_TRUE(next->synchronize());
    EXPECT_EQ(fake::readFile(damaged()), torn);
}

TEST_F(FilePreferencesStoreDamage, AnyFormOfDamageIsSeen) {
    for (const std::string& bytes :
         {std::string("[General\nZoom=1\n"), std::string("[General]\nZoom=1\nSpe"), std::string("=1\n"),
          std::string("[General]\nZoom=\xFF\xFE\n"), std::string("Zoom=1\0\0\0", 9), std::string(4096, '\0')}) {
        std::filesystem::remove(damaged());
        write(bytes);
        const auto store = open();
        store->setFloat(0.75F, "Speed");
        EXPECT_TRUE(store->synchronize());
        EXPECT_EQ(fake::readFile(damaged()), bytes);
        EXPECT_EQ(open()->floatForKey("Speed"), 0.75F);
        EXPECT_FALSE(open()->isStored(""));
    }
}

TEST_F(FilePreferencesStoreDamage, OfBinaryRubbishNothingIsKept) {
    std::string rubbish;
    for (int i = 0; i < 5000; ++i) {
        rubbish += static_cast<char>((i * 7919) >> 3);
    }
    write(rubbish + "\nZoom=1\n");
    const auto store = open();
    EXPECT_TRUE(store->allKeys().empty());
    EXPECT_TRUE(store->synchronize());
    store->setFloat(0.75F, "Speed");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(fake::readFile(file), "[General]\nSpeed=0.75\n");
    EXPECT_EQ(fake::readFile(damaged()), rubbish + "\nZoom=1\n");
}

TEST_F(FilePreferencesStoreDamage, SoundFilesAreNotCopiedAside) {
    for (const char* bytes : {"", "\n", "Zoom=1\n", "; a comment\n\n[General]\n Zoom = 1 \r\n[Other]\nx=\n"}) {
        write(bytes);
        const auto store = open();
        store->setFloat(0.75F, "Speed");
        EXPECT_TRUE(store->synchronize());
        EXPECT_FALSE(std::filesystem::exists(damaged())) << bytes;
    }
}

TEST_F(FilePreferencesStoreDamage, WhatCannotBeWrittenAgainAsItStandsNeverKeepsChangesOut) {
    // Keys that a writer would name otherwise, and texts that begin as values of other types do.
    for (const std::string odd : {"[Gencral]\n=5\nZoom=0.1\n", "List=@^yet 2, 3\n", "[/en;eral]\nReports=0.4\n",
                                  "Colors=0.4\n\\ext=x\n", "[]Gen[General]\nts=5.4Drt]\n", "a//b=1\n/c=2\nd/=3\n"}) {
        SCOPED_TRACE(odd);
        write(odd);
        const auto store = open();
        store->setFloat(0.5F, "Zoom");
        EXPECT_TRUE(store->synchronize());
        EXPECT_EQ(open()->floatForKey("Zoom"), 0.5F);
    }
}

TEST_F(FilePreferencesStoreDamage, WhatCannotBeWrittenAgainIsKeptAsideAndLeavesASoundFile) {
    const std::string odd = "Zoom=1\nd/=2\n";
    write(odd);
    const auto store = open();
    for (const float speed : {0.25F, 0.5F}) {
        store->setFloat(speed, "Speed");
        EXPECT_TRUE(store->synchronize());
        EXPECT_EQ(fake::readFile(damaged()), speed == 0.25F ? odd : "") << speed;
        std::filesystem::remove(damaged());
    }
    EXPECT_EQ(open()->floatForKey("Zoom"), 1.0F);
}

TEST_F(FilePreferencesStoreDamage, AFileThatCannotBeReadIsNeverReplaced) {
    write("Zoom=0.25\n");
    std::filesystem::resize_file(file, std::uintmax_t{17} * 1024 * 1024);  // too large to be one of settings
    const auto store = open();
    EXPECT_EQ(store->floatForKey("Zoom"), 0.0F);
    store->setFloat(0.75F, "Speed");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
    EXPECT_EQ(std::filesystem::file_size(file), std::uintmax_t{17} * 1024 * 1024);
}

TEST_F(FilePreferencesStoreDamage, APipeInTheFilesPlaceKeepsNobodyWaiting) {
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    const auto store = open();
    store->setFloat(0.75F, "Speed");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
}

TEST_F(FilePreferencesStoreDamage, ALinePartsOfWhichLookLikeForeignValuesReadsAsItsText) {
    write("List=@^yet 2, 3\n");
    EXPECT_EQ(open()->stringForKey("List"), "@^yet 2,3");
}

}  // namespace
