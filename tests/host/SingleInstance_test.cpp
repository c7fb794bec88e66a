#include "host/SingleInstance.hpp"

#include "tests/support/EventLoop.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/ScopedEnvironment.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <thread>

namespace {

using host::SingleInstance;

class SingleInstanceTest : public testing::Test {
protected:
    /// What another process that is started now would be; it does so on a thread of its own, as the first one answers.
    SingleInstance::Role roleOfAnother() const {
        std::atomic<bool> isDone = false;
        auto role = SingleInstance::Role::First;
        std::thread other([&] {
            role = SingleInstance(address).begin();
            isDone = true;
        });
        EXPECT_TRUE(fake::eventuallyInLoop([&] { return isDone.load(); }));
        other.join();
        return role;
    }

    fake::TemporaryDirectory directory;
    const std::string address = (directory.path() / "socket").string();
};

TEST_F(SingleInstanceTest, TheFirstIsToldOfEachLaterOne) {
    int later = 0;
    SingleInstance first(address);
    first.setLaterHandler([&later] { ++later; });
    EXPECT_EQ(first.begin(), SingleInstance::Role::First);
    EXPECT_EQ(roleOfAnother(), SingleInstance::Role::Later);
    EXPECT_EQ(roleOfAnother(), SingleInstance::Role::Later);
    EXPECT_EQ(later, 2);
}

TEST_F(SingleInstanceTest, AnotherMayBeFirstWhenTheFirstHasGone) {
    {
        SingleInstance first(address);
        first.begin();
    }
    EXPECT_EQ(SingleInstance(address).begin(), SingleInstance::Role::First);
}

TEST_F(SingleInstanceTest, ASocketThatADeadOneLeftIsReplaced) {
    sockaddr_un dead{};
    dead.sun_family = AF_UNIX;
    std::strncpy(dead.sun_path, address.c_str(), sizeof dead.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&dead), sizeof dead), 0);
    close(descriptor);
    ASSERT_TRUE(std::filesystem::exists(address));

    SingleInstance first(address);
    EXPECT_EQ(first.begin(), SingleInstance::Role::First);
    EXPECT_EQ(roleOfAnother(), SingleInstance::Role::Later);
}

TEST_F(SingleInstanceTest, IsForItsUserAlone) {
    SingleInstance first(address);
    first.begin();
    struct stat status {};
    ASSERT_EQ(stat(address.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0077U, 0U);
}

TEST_F(SingleInstanceTest, WhereThereIsNoPlaceForItEachIsAlone) {
    SingleInstance one("");
    SingleInstance other("");
    EXPECT_EQ(one.begin(), SingleInstance::Role::First);
    EXPECT_EQ(other.begin(), SingleInstance::Role::First);
    EXPECT_EQ(SingleInstance("/nowhere/at/all").begin(), SingleInstance::Role::First);
}

TEST_F(SingleInstanceTest, TheAddressTellsTheDisplay) {
    const fake::ScopedEnvironment runtime("XDG_RUNTIME_DIR", directory.path().string());
    fake::ScopedEnvironment display("DISPLAY", ":7.1");
    EXPECT_EQ(SingleInstance::addressOnThisDisplay(), (directory.path() / "cirrane-configure-:7").string());
    display.set("/tmp/launch/org:0");
    EXPECT_EQ(SingleInstance::addressOnThisDisplay(),
              (directory.path() / "cirrane-configure-_tmp_launch_org:0").string());
}

TEST_F(SingleInstanceTest, WithoutARuntimeFolderTheAddressLiesAmongTheUsersCaches) {
    const fake::ScopedEnvironment runtime("XDG_RUNTIME_DIR", std::nullopt);
    const fake::ScopedEnvironment caches("XDG_CACHE_HOME", directory.path().string());
    const fake::ScopedEnvironment display("DISPLAY", ":7");
    EXPECT_EQ(SingleInstance::addressOnThisDisplay(), (directory.path() / "cirrane" / "cirrane-configure-:7").string());
}

}  // namespace
