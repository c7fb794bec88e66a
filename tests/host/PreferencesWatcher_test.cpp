#include "host/PreferencesWatcher.hpp"

#include "platform/PreferencesStore.hpp"
#include "tests/support/EventLoop.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/ScopedEnvironment.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

extern char** environ;  // NOLINT

namespace {

namespace fs = std::filesystem;

int posts = 0;
constexpr platform::SaverModule module{platform::SaverModule::currentVersion, nullptr, []() noexcept { ++posts; }};

/// A settings folder that does not exist yet, and a name that no store of the process has been made for.
class PreferencesWatcher : public testing::Test {
protected:
    PreferencesWatcher() { posts = 0; }

    static std::string unusedName() {
        static int count = 0;
        return "org.example.watched" + std::to_string(++count);
    }

    void startWatching() {
        watcher = std::make_unique<host::PreferencesWatcher>(module, name);
        settle();
    }
    /// Another process writes the file as this line of a shell says; $1 is the file.
    void inAnotherProcess(std::string line) const {
        std::string shell = "/bin/sh";
        std::string option = "-c";
        std::string zeroth = "sh";
        std::string path = file.string();
        char* const arguments[] = {shell.data(), option.data(), line.data(), zeroth.data(), path.data(), nullptr};
        pid_t child = -1;
        ASSERT_EQ(posix_spawn(&child, shell.c_str(), nullptr, nullptr, arguments, environ), 0);
        int status = 1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << line;
    }
    static bool isTold(int times) {
        return fake::eventuallyInLoop([times] { return posts >= times; }) && posts == times;
    }
    /// Until whatever has happened so far has been looked at, and what came of that too.
    void settle() const {
        for (int round = 0; round < 3; ++round) {
            QApplication::processEvents();
            EXPECT_TRUE(fake::eventuallyInLoop([this] { return !watcher->isGathering(); }));
        }
    }
    float zoom() const { return platform::preferencesForModule(name)->floatForKey("Zoom"); }

    fake::TemporaryDirectory directory;
    fake::ScopedEnvironment config{"XDG_CONFIG_HOME", (directory.path() / "a" / "b").string()};
    const std::string name = unusedName();
    const fs::path file = platform::preferencesFileForModule(name);
    std::unique_ptr<host::PreferencesWatcher> watcher;
};

TEST_F(PreferencesWatcher, TellsOfAFileThatAnotherProcessWritesInPlace) {
    fake::writeFile(file, "[General]\nZoom=0.25\n");
    startWatching();
    EXPECT_EQ(posts, 0) << "nothing has changed yet";
    inAnotherProcess("printf '[General]\\nZoom=0.5\\n' > \"$1\"");
    EXPECT_TRUE(isTold(1));
    EXPECT_EQ(zoom(), 0.5F);
}

TEST_F(PreferencesWatcher, TellsOfAFileThatIsReplacedAgainAndAgain) {
    fake::writeFile(file, "[General]\nZoom=0.25\n");
    startWatching();
    for (const int step : {1, 2, 3}) {
        inAnotherProcess("printf '[General]\\nZoom=" + std::to_string(step) +
                         "\\n' > \"$1.new\"; mv \"$1.new\" \"$1\"");
        EXPECT_TRUE(isTold(step));
        EXPECT_EQ(zoom(), static_cast<float>(step));
    }
    inAnotherProcess("printf '[General]\\nZoom=44\\n' > \"$1\"");
    EXPECT_TRUE(isTold(4)) << "the file in the former one's place is watched";
}

TEST_F(PreferencesWatcher, TellsOfAFileThatIsDeleted) {
    fake::writeFile(file, "[General]\nZoom=0.25\n");
    startWatching();
    inAnotherProcess("rm \"$1\"");
    EXPECT_TRUE(isTold(1));
    EXPECT_EQ(zoom(), 0.0F);
}

TEST_F(PreferencesWatcher, TellsOfAFileThatIsMadeLaterWithItsFolders) {
    startWatching();
    inAnotherProcess("mkdir -p \"${1%/*}\"; printf '[General]\\nZoom=0.5\\n' > \"$1\"");
    EXPECT_TRUE(isTold(1));
    inAnotherProcess("rm -r \"${1%/*/*}\"");
    EXPECT_TRUE(isTold(2));
    inAnotherProcess("mkdir -p \"${1%/*}\"; printf '[General]\\nZoom=0.75\\n' > \"$1\"");
    EXPECT_TRUE(isTold(3));
    EXPECT_EQ(zoom(), 0.75F);
}

TEST_F(PreferencesWatcher, TellsOfAFileBehindALink) {
    const fs::path target = directory.path() / "elsewhere" / "settings";
    fake::writeFile(target, "[General]\nZoom=0.25\n");
    fs::create_directories(file.parent_path());
    fs::create_symlink(target, file);
    startWatching();
    inAnotherProcess(
        "target=$(readlink \"$1\"); printf '[General]\\nZoom=0.5\\n' > \"$target.new\"; "
        "mv \"$target.new\" \"$target\"");
    EXPECT_TRUE(isTold(1));
    inAnotherProcess(
        "target=$(readlink \"$1\"); printf '[General]\\nZoom=0.75\\n' > \"$target.new\"; "
        "mv \"$target.new\" \"$target\"");
    EXPECT_TRUE(isTold(2));
}

TEST_F(PreferencesWatcher, SaysNothingOfWhatThisProcessWrites) {
    startWatching();
    const auto store = platform::preferencesForModule(name);
    for (const float zoom : {0.1F, 0.2F, 0.3F}) {
        store->setFloat(zoom, "Zoom");
        ASSERT_TRUE(store->synchronize());
        settle();
    }
    store->removeObjectForKey("Zoom");
    ASSERT_TRUE(store->synchronize());
    settle();
    EXPECT_EQ(posts, 0);
}

TEST_F(PreferencesWatcher, TellsOfForeignChangesThatAnOwnWriteTookIn) {
    startWatching();
    const auto store = platform::preferencesForModule(name);
    inAnotherProcess("mkdir -p \"${1%/*}\"; printf '[General]\\nZoom=0.5\\n' > \"$1\"");
    store->setFloat(0.1F, "Speed");
    ASSERT_TRUE(store->synchronize());
    EXPECT_TRUE(isTold(1));
    settle();
    EXPECT_EQ(posts, 1);
}

TEST_F(PreferencesWatcher, TellsOnceOfChangesOfOneMomentAndOfTheLastOne) {
    startWatching();
    QElapsedTimer timer;
    timer.start();
    inAnotherProcess(
        "mkdir -p \"${1%/*}\"; for i in 1 2 3 4 5 6 7 8 9; do printf \"[General]\\nZoom=$i\\n\" > \"$1.new\"; "
        "mv \"$1.new\" \"$1\"; done");
    ASSERT_TRUE(fake::eventuallyInLoop([this] { return zoom() == 9.0F; }));
    settle();
    EXPECT_GE(posts, 1);
    EXPECT_LE(posts, 1 + timer.elapsed() / host::PreferencesWatcher::gathering.count());
}

TEST_F(PreferencesWatcher, SaysNothingOfOtherFilesAndOfTouchingThisOne) {
    fake::writeFile(file, "[General]\nZoom=0.25\n");
    startWatching();
    inAnotherProcess(
        "touch \"$1\"; echo text > \"$1.other\"; chmod 600 \"$1\"; cp \"$1\" \"$1.new\"; mv \"$1.new\" \"$1\"");
    settle();
    EXPECT_EQ(posts, 0);
}

TEST_F(PreferencesWatcher, AFileThatCannotBeReadIsNoChange) {
    fake::writeFile(file, "[General]\nZoom=0.25\n");
    startWatching();
    inAnotherProcess("rm \"$1\"; mkdir \"$1\"");
    settle();
    EXPECT_EQ(posts, 0);
    EXPECT_EQ(zoom(), 0.25F);
}

TEST_F(PreferencesWatcher, WithAStoreInMemoryThereIsNothingToTell) {
    platform::setPreferencesStore(platform::makeMemoryPreferencesStore());
    startWatching();
    inAnotherProcess("mkdir -p \"${1%/*}\"; printf '[General]\\nZoom=0.5\\n' > \"$1\"");
    settle();
    EXPECT_EQ(posts, 0);
    platform::setPreferencesStore(nullptr);
}

}  // namespace
