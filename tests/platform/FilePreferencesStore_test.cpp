#include "platform/PreferencesStore.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

namespace {

using platform::makeFilePreferencesStore;
using platform::PreferencesStore;

class FilePreferencesStore : public testing::Test {
protected:
    ~FilePreferencesStore() override { platform::setPreferencesStore(nullptr); }

    std::shared_ptr<PreferencesStore> open() const { return makeFilePreferencesStore(file); }

    void write(const std::string& bytes) const { std::ofstream(file, std::ios::binary) << bytes; }
    static std::string contents(const std::filesystem::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::filesystem::path damaged() const { return file.string() + ".damaged"; }

    /// What another run of the program reads of a text that this one stored.
    std::optional<std::string> readBack(const std::string& text) const {
        const auto store = open();
        store->setString(text, "key");
        EXPECT_TRUE(store->synchronize());
        EXPECT_EQ(store->stringForKey("key"), text);
        return open()->stringForKey("key");
    }

    fake::TemporaryDirectory directory;
    std::filesystem::path file = directory.path() / "org.example.test.conf";
};

/// Runs that in a process of its own; true when it returned true.
bool inAnotherProcess(const std::function<bool()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work() ? 0 : 1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
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
    EXPECT_EQ(contents(file), "[General]\nZoom=0.38\n");
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
        EXPECT_EQ(readBack(text), text);
    }
}

TEST_F(FilePreferencesStore, AnEmptyTextIsStoredAndIsNotNone) {
    EXPECT_EQ(readBack(""), std::optional<std::string>(""));
    EXPECT_TRUE(open()->isStored("key"));
}

TEST_F(FilePreferencesStore, AJournalOfFullLengthRoundTrips) {
    std::string journal;
    for (int line = 0; journal.size() < 262144; ++line) {
        journal += "[Screen " + std::to_string(line) + "] \"Größe\", 640x480; 100 %\n";
    }
    EXPECT_EQ(readBack(journal), journal);
    const std::string unbroken(262144, 'x');
    EXPECT_EQ(readBack(unbroken), unbroken);
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

TEST_F(FilePreferencesStore, SynchronizeTakesInWhatOthersWrote) {
    const auto store = open();
    ASSERT_TRUE(inAnotherProcess([this] {
        const auto other = open();
        other->setFloat(0.9F, "Zoom");
        return other->synchronize();
    }));
    EXPECT_FALSE(store->isStored("Zoom"));
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(store->floatForKey("Zoom"), 0.9F);
}

TEST_F(FilePreferencesStore, SynchronizeKeepsTheKeysThatOnlyOthersChanged) {
    const auto store = open();
    store->setFloat(0.1F, "Zoom");
    store->setFloat(0.1F, "Speed");
    ASSERT_TRUE(store->synchronize());
    ASSERT_TRUE(inAnotherProcess([this] {
        const auto other = open();
        other->setFloat(0.9F, "Zoom");
        other->removeObjectForKey("Speed");
        return other->synchronize();
    }));
    store->setFloat(0.2F, "Colors");
    ASSERT_TRUE(store->synchronize());
    const auto next = open();
    EXPECT_EQ(next->floatForKey("Zoom"), 0.9F);
    EXPECT_FALSE(next->isStored("Speed"));
    EXPECT_EQ(next->floatForKey("Colors"), 0.2F);
}

TEST_F(FilePreferencesStore, TwoStoresOfOneFileMerge) {
    const auto one = open();
    const auto other = open();
    one->setFloat(0.1F, "Zoom");
    other->setFloat(0.2F, "Speed");
    EXPECT_TRUE(one->synchronize());
    EXPECT_TRUE(other->synchronize());
    EXPECT_EQ(other->floatForKey("Zoom"), 0.1F);
    EXPECT_FALSE(one->isStored("Speed"));
    EXPECT_TRUE(one->synchronize());
    EXPECT_EQ(one->floatForKey("Speed"), 0.2F);
}

TEST_F(FilePreferencesStore, ProcessesThatWriteAtOnceLoseNoKeyAndLeaveNoTornFile) {
    constexpr int writers = 3;
    constexpr int keys = 8;
    const std::string journal(20000, 'j');
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        const pid_t child = fork();
        if (child == 0) {
            const auto store = open();
            bool succeeded = true;
            for (int key = 0; key < keys; ++key) {
                store->setString(journal, "key" + std::to_string(writer) + std::to_string(key));
                succeeded = store->synchronize() && succeeded;
            }
            _exit(succeeded ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    const auto store = open();
    EXPECT_EQ(store->allKeys().size(), static_cast<std::size_t>(writers * keys));
    for (const std::string& key : store->allKeys()) {
        EXPECT_EQ(store->stringForKey(key), journal);
    }
    EXPECT_FALSE(std::filesystem::exists(damaged()));
}

TEST_F(FilePreferencesStore, AReaderNeverSeesATornFile) {
    const std::string journal(100000, 'j');
    const auto writing = open();
    writing->setString(journal, "journal");
    ASSERT_TRUE(writing->synchronize());
    std::thread writer([&] {
        for (int i = 0; i < 20; ++i) {
            writing->setInteger(i, "number");
            EXPECT_TRUE(writing->synchronize());
        }
    });
    for (int i = 0; i < 100; ++i) {
        const std::string seen = contents(file);
        EXPECT_GE(seen.size(), journal.size());
        EXPECT_EQ(seen.back(), '\n');
    }
    writer.join();
}

TEST_F(FilePreferencesStore, ADamagedFileIsReadAsFarAsItMakesSense) {
    write("[General]\nColors 0.5\nZoom=0.25\n");
    EXPECT_EQ(open()->floatForKey("Zoom"), 0.25F);
    EXPECT_FALSE(std::filesystem::exists(damaged()));
}

TEST_F(FilePreferencesStore, ADamagedFileIsCopiedAsideBeforeTheFirstWrite) {
    const std::string torn = "[General]\nColors 0.5\nZoom=0.25\n";
    write(torn);
    const auto store = open();
    open();  // reading it again does not make it sound
    store->setFloat(0.75F, "Speed");
    EXPECT_TRUE(store->synchronize());

    EXPECT_EQ(contents(damaged()), torn);
    const auto next = open();
    EXPECT_EQ(next->floatForKey("Zoom"), 0.25F);
    EXPECT_EQ(next->floatForKey("Speed"), 0.75F);
    next->setFloat(1.0F, "Speed");
    EXPECT_TRUE(next->synchronize());
    EXPECT_EQ(contents(damaged()), torn);
}

TEST_F(FilePreferencesStore, AnyFormOfDamageIsSeen) {
    for (const std::string& bytes :
         {std::string("[General\nZoom=1\n"), std::string("[General]\nZoom=1\nSpe"), std::string("=1\n"),
          std::string("[General]\nZoom=\xFF\xFE\n"), std::string("Zoom=1\0\0\0", 9), std::string(4096, '\0')}) {
        std::filesystem::remove(damaged());
        write(bytes);
        const auto store = open();
        store->setFloat(0.75F, "Speed");
        EXPECT_TRUE(store->synchronize());
        EXPECT_EQ(contents(damaged()), bytes);
        EXPECT_EQ(open()->floatForKey("Speed"), 0.75F);
        EXPECT_FALSE(open()->isStored(""));
    }
}

TEST_F(FilePreferencesStore, OfBinaryRubbishNothingIsKept) {
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
    EXPECT_EQ(contents(file), "[General]\nSpeed=0.75\n");
    EXPECT_EQ(contents(damaged()), rubbish + "\nZoom=1\n");
}

TEST_F(FilePreferencesStore, SoundFilesAreNotCopiedAside) {
    for (const char* bytes : {"", "\n", "Zoom=1\n", "; a comment\n\n[General]\n Zoom = 1 \r\n[Other]\nx=\n"}) {
        write(bytes);
        const auto store = open();
        store->setFloat(0.75F, "Speed");
        EXPECT_TRUE(store->synchronize());
        EXPECT_FALSE(std::filesystem::exists(damaged())) << bytes;
    }
}

TEST_F(FilePreferencesStore, WhatCannotBeWrittenStaysInMemoryUntilItCan) {
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

TEST_F(FilePreferencesStore, ADirectoryInTheFilesPlaceIsNeitherReadNorWritten) {
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

TEST_F(FilePreferencesStore, AReadOnlyDirectoryIsReportedAndTheValuesStay) {
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
    EXPECT_EQ(contents(file), "[General]\nZoom=0.25\n");
}

TEST_F(FilePreferencesStore, AReadOnlyFileIsReportedAndTheValuesStay) {
    write("[General]\nZoom=0.25\n");
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(chmod(directory.path().c_str(), 0777), 0);
    const AsOrdinaryUser user;
    const auto store = open();
    store->setFloat(0.75F, "Speed");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->floatForKey("Speed"), 0.75F);
    EXPECT_EQ(open()->allKeys(), std::vector<std::string>{"Zoom"});
    EXPECT_EQ(contents(file), "[General]\nZoom=0.25\n");
}

TEST_F(FilePreferencesStore, AModuleHasOneStoreForTheProcessInTheUsersSettings) {
    setenv("XDG_CONFIG_HOME", directory.path().c_str(), 1);
    const auto store = platform::preferencesForModule("org.example.test");
    EXPECT_EQ(platform::preferencesForModule("org.example.test"), store);
    EXPECT_NE(platform::preferencesForModule("org.example.other"), store);
    store->setFloat(0.5F, "Zoom");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(open()->floatForKey("Zoom"), 0.5F);
    unsetenv("XDG_CONFIG_HOME");
}

TEST_F(FilePreferencesStore, AStorePutInPlaceServesEveryModuleUntilItIsTakenBack) {
    const auto memory = platform::makeMemoryPreferencesStore();
    platform::setPreferencesStore(memory);
    EXPECT_EQ(platform::preferencesForModule("org.example.one"), memory);
    EXPECT_EQ(platform::preferencesForModule("org.example.two"), memory);
    platform::setPreferencesStore(nullptr);
    setenv("XDG_CONFIG_HOME", directory.path().c_str(), 1);
    EXPECT_NE(platform::preferencesForModule("org.example.one"), memory);
    unsetenv("XDG_CONFIG_HOME");
}

}  // namespace
