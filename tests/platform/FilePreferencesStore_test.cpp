#include "platform/PreferencesStore.hpp"

#include "tests/platform/FilePreferencesStoreTest.hpp"
#include "tests/support/ScopedEnvironment.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using FilePreferencesStore = FilePreferencesStoreTest;

/// What another run of the program reads of a text that this one stored.
std::optional<std::string> readBack(const std::filesystem::path& file, const std::string& text) {
    const auto store = platform::makeFilePreferencesStore(file);
    store->setString(text, "key");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(store->stringForKey("key"), text);
    return platform::makeFilePreferencesStore(file)->stringForKey("key");
}

TEST_F(FilePreferencesStore, ValuesAreThereInTheNextRun) {
    const auto store = open();
    store->setFloat(0.4F, "Colors");
    store->setInteger(3, "ScreenshotInterval");
    store->setString("1.2.3", "SavedErrorVersion");
    EXPECT_TRUE(store->synchronize());

    const auto next = open();
    EXPECT_EQ(next->floatForKey("Colors"), 0.4F);
    EXPECT_EQ(next->integerForKey("ScreenshotInterval"), 3);
    EXPECT_EQ(next->stringForKey("SavedErrorVersion"), "1.2.3");
}

TEST_F(FilePreferencesStore, TheFileIsPlainText) {
    const auto store = open();
    store->setFloat(0.38F, "Zoom");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(fake::readFile(file), "[General]\nZoom=0.38\n");
}

TEST_F(FilePreferencesStore, NothingIsWrittenBeforeSynchronize) {
    const auto store = open();
    store->setFloat(0.38F, "Zoom");
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(FilePreferencesStore, RegisteredDefaultsAreNeverWritten) {
    const auto store = open();
    store->registerDefaults({{"Speed", 0.7F}});
    store->setFloat(0.38F, "Zoom");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(open()->allKeys(), std::vector<std::string>{"Zoom"});
}

TEST_F(FilePreferencesStore, SynchronizeWithoutChangesLeavesNoFile) {
    EXPECT_TRUE(open()->synchronize());
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(FilePreferencesStore, LeavesNothingButItsFile) {
    const auto store = open();
    store->setFloat(0.38F, "Zoom");
    EXPECT_TRUE(store->synchronize());
    const std::filesystem::directory_iterator entries(directory.path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(FilePreferencesStore, MakesItsDirectory) {
    file = directory.path() / "config" / "deeper" / "test.conf";
    const auto store = open();
    store->setFloat(0.38F, "Zoom");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(open()->floatForKey("Zoom"), 0.38F);
}

TEST_F(FilePreferencesStore, RemovedKeysAreGoneInTheNextRun) {
    const auto store = open();
    store->setFloat(0.5F, "Zoom");
    store->setFloat(0.5F, "Speed");
    EXPECT_TRUE(store->synchronize());
    store->removeObjectForKey("Zoom");
    EXPECT_TRUE(store->synchronize());
    EXPECT_FALSE(open()->isStored("Zoom"));
    EXPECT_TRUE(open()->isStored("Speed"));
}

TEST_F(FilePreferencesStore, ASectionOfARemovedKeysNameStays) {
    write("[General]\na=1\nab=2\n\n[a]\nb=3\nc\\d=4, 5\n");
    const auto store = open();
    store->removeObjectForKey("a");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(fake::readFile(file), "[General]\nab=2\n\n[a]\nb=3\nc\\d=4, 5\n");
    EXPECT_EQ(store->allKeys(), (std::vector<std::string>{"a/b", "a/c/d", "ab"}));
}

TEST_F(FilePreferencesStore, TextsOfEveryKindRoundTrip) {
    for (const std::string text : {"",
                                   " ",
                                   "  leading",
                                   "trailing  ",
                                   "two\nlines\n",
                                   "\r\n\t",
                                   "\"quoted\"",
                                   "a \"b\" c",
                                   "one, two, three",
                                   ",",
                                   "a;b",
                                   "# no comment",
                                   "key=value",
                                   "[section]",
                                   "back\\slash",
                                   "\\n",
                                   "\\",
                                   "%1 %@ %%",
                                   "@",
                                   "@@",
                                   "@Invalid()",
                                   "@ByteArray(x)",
                                   "@Variant(y)",
                                   "@home",
                                   "Grüße, 世界 🌥",
                                   "e\xCC\x81",
                                   "\x01\x02\x7F",
                                   "\x01"
                                   "abc",
                                   "true",
                                   "0.5",
                                   "'"}) {
        EXPECT_EQ(readBack(file, text), text);
    }
}

TEST_F(FilePreferencesStore, RandomKeysAndTextsRoundTrip) {
    const std::vector<std::string> pieces{"@", "\\", "\"",   "=",    ";",      ",",      "[", "]",
                                          "%", "/",  "\n",   "\r",   " ",      "x",      "0", "(",
                                          ")", "#",  "\x01", "\x7F", "\u00e4", "\u2601", "a", std::string(1, '\0')};
    std::mt19937 random(1);
    const auto anyText = [&](std::size_t longest) {
        std::string result;
        for (std::size_t left = random() % longest; left > 0; --left) {
            result += pieces[random() % pieces.size()];
        }
        return result;
    };
    const auto store = open();
    for (int round = 0; round < 100; ++round) {
        const std::string value = anyText(40);
        store->setString(anyText(10), anyText(6));  // whatever the key comes to
        store->setString(value, "key");
        ASSERT_TRUE(store->synchronize());
        ASSERT_EQ(open()->stringForKey("key"), value);
    }
    EXPECT_FALSE(std::filesystem::exists(damaged()));
}

TEST_F(FilePreferencesStore, ALinkToTheFileStays) {
    const std::filesystem::path target = directory.path() / "elsewhere" / "real.conf";
    fake::writeFile(target, "[General]\nZoom=0.25\n");
    std::filesystem::create_symlink(target, file);
    const auto store = open();
    store->setFloat(0.5F, "Speed");
    EXPECT_TRUE(store->synchronize());
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(fake::readFile(target), "[General]\nSpeed=0.5\nZoom=0.25\n");
}

TEST_F(FilePreferencesStore, TheFileKeepsItsPermissions) {
    write("[General]\nZoom=0.25\n");
    std::filesystem::permissions(file, std::filesystem::perms(0600));
    const auto store = open();
    store->setFloat(0.5F, "Speed");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
}

TEST_F(FilePreferencesStore, AnEmptyTextIsStoredAndIsNotNone) {
    EXPECT_EQ(readBack(file, ""), std::optional<std::string>(""));
    EXPECT_TRUE(open()->isStored("key"));
}

TEST_F(FilePreferencesStore, AJournalOfFullLengthRoundTrips) {
    std::string journal;
    for (int line = 0; journal.size() < 262144; ++line) {
        journal += "[Screen " + std::to_string(line) + "] \"Größe\", 640x480; 100 %\n";
    }
    EXPECT_EQ(readBack(file, journal), journal);
    const std::string unbroken(262144, 'x');
    EXPECT_EQ(readBack(file, unbroken), unbroken);
}

TEST_F(FilePreferencesStore, OddKeysDoNoHarm) {
    const auto store = open();
    store->setFloat(0.5F, "Zoom");
    for (const char* key : {"", "/", "//", "a/b", "/a", "a//b", "100%", "%41", "a=b", "[x]", ";", "two words", "ä",
                            "General/x", "a\nb"}) {
        store->setString("value", key);
        EXPECT_EQ(store->stringForKey(key), "value");
        EXPECT_TRUE(store->synchronize());
    }
    const auto next = open();
    EXPECT_EQ(next->floatForKey("Zoom"), 0.5F);
    EXPECT_EQ(next->stringForKey("two words"), "value");
    EXPECT_EQ(next->stringForKey("100%"), "value");
    EXPECT_EQ(next->stringForKey("a=b"), "value");
    EXPECT_FALSE(std::filesystem::exists(damaged()));
}

TEST_F(FilePreferencesStore, ValuesWrittenByHandAreReadByTheirText) {
    write(
        "[General]\nColors=0,5\nBrightness = 0.25\nSpeed=\"0.75\"\nMultiScreen=true\nDiagnostics=false\n"
        "ScreenshotInterval=2 ; days\nText=one, two\n");
    const auto store = open();
    EXPECT_EQ(store->floatForKey("Colors"), 0.0F);
    EXPECT_EQ(store->stringForKey("Colors"), "0,5");
    EXPECT_EQ(store->floatForKey("Brightness"), 0.25F);
    EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
    EXPECT_EQ(store->floatForKey("MultiScreen"), 1.0F);
    EXPECT_EQ(store->integerForKey("Diagnostics"), 0);
    EXPECT_EQ(store->integerForKey("ScreenshotInterval"), 2);
}

TEST_F(FilePreferencesStore, AModuleHasOneStoreForTheProcessInTheUsersSettings) {
    const fake::ScopedEnvironment settings("XDG_CONFIG_HOME", directory.path().string());
    const auto store = platform::preferencesForModule("org.example.test");
    EXPECT_EQ(platform::preferencesForModule("org.example.test"), store);
    EXPECT_NE(platform::preferencesForModule("org.example.other"), store);
    store->setFloat(0.5F, "Zoom");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(open()->floatForKey("Zoom"), 0.5F);
}

TEST_F(FilePreferencesStore, AStorePutInPlaceServesEveryModuleUntilItIsTakenBack) {
    const auto memory = platform::makeMemoryPreferencesStore();
    platform::setPreferencesStore(memory);
    EXPECT_EQ(platform::preferencesForModule("org.example.one"), memory);
    EXPECT_EQ(platform::preferencesForModule("org.example.two"), memory);
    platform::setPreferencesStore(nullptr);
    const fake::ScopedEnvironment settings("XDG_CONFIG_HOME", directory.path().string());
    EXPECT_NE(platform::preferencesForModule("org.example.one"), memory);
}

}  // namespace
