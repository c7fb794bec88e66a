#include "platform/Paths.hpp"

#include "tests/support/ScopedEnvironment.hpp"

#include <gtest/gtest.h>

#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>

namespace {

/// None of the variables is set at first.
class Paths : public testing::Test {
protected:
    fake::ScopedEnvironment home{"HOME", std::nullopt};
    fake::ScopedEnvironment settings{"XDG_CONFIG_HOME", std::nullopt};
    fake::ScopedEnvironment caches{"XDG_CACHE_HOME", std::nullopt};
    fake::ScopedEnvironment state{"XDG_STATE_HOME", std::nullopt};
};

TEST_F(Paths, TheHomeFolderIsTheEnvironments) {
    home.set("/home/somebody");
    EXPECT_EQ(platform::homeDirectory(), "/home/somebody");
}

TEST_F(Paths, TheHomeFolderIsThePasswordDatabasesWhenTheEnvironmentNamesNone) {
    const passwd* entry = getpwuid(getuid());
    if (entry == nullptr) {
        GTEST_SKIP() << "this user has no entry";
    }
    EXPECT_EQ(platform::homeDirectory(), entry->pw_dir);
    home.set("");
    EXPECT_EQ(platform::homeDirectory(), entry->pw_dir);
}

TEST_F(Paths, TheHomeFolderOfAUserUnknownToThePasswordDatabaseIsTheRoot) {
    constexpr uid_t nobodyKnown = 54321;
    if (geteuid() != 0 || getpwuid(nobodyKnown) != nullptr) {
        GTEST_SKIP() << "takes another user's place, which only root may";
    }
    const pid_t child = fork();
    if (child == 0) {
        const bool changed = setresuid(nobodyKnown, nobodyKnown, nobodyKnown) == 0;
        _exit(changed && platform::homeDirectory() == "/" && platform::configDirectory() == "/.config" ? 0 : 1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(Paths, SettingsCachesAndStateLieInTheirOwnDirectories) {
    home.set("/home/somebody");
    settings.set("/settings");
    caches.set("/caches");
    state.set("/state");
    EXPECT_EQ(platform::configDirectory(), "/settings");
    EXPECT_EQ(platform::cacheDirectory(), "/caches");
    EXPECT_EQ(platform::stateDirectory(), "/state");
}

TEST_F(Paths, SettingsCachesAndStateLieInTheHomeFolderWhenNothingElseIsSaid) {
    home.set("/home/somebody");
    EXPECT_EQ(platform::configDirectory(), "/home/somebody/.config");
    EXPECT_EQ(platform::cacheDirectory(), "/home/somebody/.cache");
    EXPECT_EQ(platform::stateDirectory(), "/home/somebody/.local/state");
}

TEST_F(Paths, ADirectoryThatIsEmptyOrNotAbsoluteCountsAsUnset) {
    home.set("/home/somebody");
    settings.set("");
    caches.set("caches");
    EXPECT_EQ(platform::configDirectory(), "/home/somebody/.config");
    EXPECT_EQ(platform::cacheDirectory(), "/home/somebody/.cache");
}

}  // namespace
