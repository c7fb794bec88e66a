#include "platform/PreferencesStore.hpp"

#include "tests/platform/FilePreferencesStoreTest.hpp"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

using FilePreferencesStoreSharing = FilePreferencesStoreTest;

/// A process of its own that does this and nothing else, well when it returns true.
pid_t start(const std::function<bool()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work() ? 0 : 1);
    }
    return child;
}

bool endedWell(pid_t child) {
    int status = 1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool inAnotherProcess(const std::function<bool()>& work) {
    return endedWell(start(work));
}

/// Two processes take turns by it.
class Baton {
public:
    Baton() { EXPECT_EQ(pipe2(_ends.data(), O_CLOEXEC), 0); }
    ~Baton() {
        close(_ends[0]);
        close(_ends[1]);
    }
    Baton(const Baton&) = delete;
    Baton& operator=(const Baton&) = delete;

    bool pass() const { return ::write(_ends[1], "x", 1) == 1; }
    bool take() const {
        char byte = 0;
        return ::read(_ends[0], &byte, 1) == 1;
    }

private:
    std::array<int, 2> _ends{};
};

TEST_F(FilePreferencesStoreSharing, SynchronizeTakesInWhatOthersWrote) {
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

TEST_F(FilePreferencesStoreSharing, SynchronizeKeepsTheKeysThatOnlyOthersChanged) {
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

TEST_F(FilePreferencesStoreSharing, TwoStoresOfOneFileMerge) {
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

TEST_F(FilePreferencesStoreSharing, WhatOthersChangeIsToldUntilItIsTakenIn) {
    const auto store = open();
    EXPECT_FALSE(store->hasForeignChanges());
    ASSERT_TRUE(inAnotherProcess([this] {
        const auto other = open();
        other->setFloat(0.9F, "Zoom");
        return other->synchronize();
    }));
    EXPECT_TRUE(store->hasForeignChanges());
    EXPECT_EQ(store->foreignChangesTakenIn(), 0U);
    EXPECT_TRUE(store->synchronize());
    EXPECT_FALSE(store->hasForeignChanges());
    EXPECT_EQ(store->foreignChangesTakenIn(), 1U);
}

TEST_F(FilePreferencesStoreSharing, WhatWasChangedHereIsNoForeignChange) {
    const auto store = open();
    store->setFloat(0.1F, "Zoom");
    store->setString("a, \"b\"; c=\xff\n", "Journal");
    EXPECT_FALSE(store->hasForeignChanges());
    EXPECT_TRUE(store->synchronize());
    store->removeObjectForKey("Zoom");
    EXPECT_TRUE(store->synchronize());
    EXPECT_FALSE(store->hasForeignChanges());
    EXPECT_EQ(store->foreignChangesTakenIn(), 0U);
}

TEST_F(FilePreferencesStoreSharing, WhatOthersChangedIsTakenInAlsoByOneWhoWrites) {
    const auto store = open();
    const auto other = open();
    other->setFloat(0.9F, "Zoom");
    EXPECT_TRUE(other->synchronize());
    store->setFloat(0.2F, "Colors");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(store->foreignChangesTakenIn(), 1U);
    EXPECT_EQ(store->floatForKey("Zoom"), 0.9F);
}

constexpr int rounds = 12;

/// Whether every text of the store is a whole one: letters of one kind, as many as its key says.
bool holdsWholeTexts(const platform::PreferencesStore& store) {
    const std::vector<std::string> keys = store.allKeys();
    return std::all_of(keys.begin(), keys.end(), [&store](const std::string& key) {
        const std::string value = store.stringForKey(key).value_or("");
        return value == std::string(std::stoul(key.substr(1)), key[0]);
    });
}

TEST_F(FilePreferencesStoreSharing, ProcessesThatWriteAtOnceLoseNoKeyAndReadersSeeNoTornFile) {
    const auto lastKeyOf = [](char writer) { return writer + std::to_string(1000 * rounds); };
    std::vector<pid_t> processes;
    for (const char writer : {'a', 'b', 'c'}) {
        processes.push_back(start([this, writer] {
            const auto store = open();
            bool succeeded = true;
            for (int round = 1; round <= rounds; ++round) {
                store->setString(std::string(1000U * round, writer), writer + std::to_string(1000 * round));
                succeeded = store->synchronize() && holdsWholeTexts(*store) && succeeded;
            }
            return succeeded;
        }));
    }
    for (int reader = 0; reader < 2; ++reader) {
        processes.push_back(start([&] {
            const auto store = open();
            const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
            std::size_t seen = 0;
            bool sound = true;
            bool complete = false;
            while (sound && !complete && std::chrono::steady_clock::now() < giveUp) {
                const auto fresh = open();
                sound = store->synchronize() && holdsWholeTexts(*store) && holdsWholeTexts(*fresh) &&
                        store->allKeys().size() >= seen;
                seen = store->allKeys().size();
                complete = store->isStored(lastKeyOf('a')) && store->isStored(lastKeyOf('b')) &&
                           store->isStored(lastKeyOf('c'));
            }
            return sound && complete;
        }));
    }
    for (const pid_t process : processes) {
        EXPECT_TRUE(endedWell(process));
    }
    EXPECT_EQ(open()->allKeys().size(), 3U * rounds);
    EXPECT_TRUE(holdsWholeTexts(*open()));
    const std::filesystem::directory_iterator entries(directory.path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1) << "a lock, a draft or a damaged file was left";
}

TEST_F(FilePreferencesStoreSharing, QuickChangesOfTheSameLengthAreSeenAndKept) {
    // Within one step of the file system's clock, so that neither size nor time tells of them.
    constexpr int turns = 50;
    const Baton toOther;
    const Baton back;
    const pid_t other = start([&] {
        const auto store = open();
        bool succeeded = true;
        for (int turn = 0; turn < turns; ++turn) {
            succeeded = toOther.take() && succeeded;
            store->setInteger(1000 + turn, "Other");
            succeeded = store->synchronize() && back.pass() && succeeded;
        }
        return succeeded;
    });
    const auto store = open();
    int stale = 0;
    int lost = 0;
    for (int turn = 0; turn < turns; ++turn) {
        store->setInteger(1000 + turn, "First");
        ASSERT_TRUE(store->synchronize());
        ASSERT_TRUE(toOther.pass() && back.take());
        ASSERT_TRUE(store->synchronize());
        stale += store->integerForKey("Other") == 1000 + turn ? 0 : 1;
        store->setInteger(1000 + turn, "Second");
        ASSERT_TRUE(store->synchronize());
        const std::string line = "Other=" + std::to_string(1000 + turn) + "\n";
        lost += fake::readFile(file).find(line) != std::string::npos ? 0 : 1;
    }
    EXPECT_EQ(stale, 0);
    EXPECT_EQ(lost, 0);
    EXPECT_TRUE(endedWell(other));
}

TEST_F(FilePreferencesStoreSharing, AReaderNeverSeesATornFile) {
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
        const std::string seen = fake::readFile(file);
        EXPECT_GE(seen.size(), journal.size());
        EXPECT_EQ(seen.back(), '\n');
    }
    writer.join();
}

}  // namespace
