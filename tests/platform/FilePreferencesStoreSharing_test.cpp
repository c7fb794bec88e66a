#include "platform/PreferencesStore.hpp"

#include "tests/platform/FilePreferencesStoreTest.hpp"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

using FilePreferencesStoreSharing = FilePreferencesStoreTest;

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

TEST_F(FilePreferencesStoreSharing, ProcessesThatWriteAtOnceLoseNoKeyAndLeaveNoTornFile) {
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
