#include "platform/Paths.hpp"

#include <gtest/gtest.h>

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <map>
#include <optional>
#include <string>

namespace {

/// The environment is as it was again after each test.
class Paths : public testing::Test {
protected:
    Paths() {
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
            const char* value = getenv(name);
            _former[name] = value != nullptr ? std::optional<std::string>(value) : std::nullopt;
            unsetenv(name);
        }
    }
    ~Paths() override {
        for (const auto& [name, value] : _former) {
            if (value) {
                setenv(name.c_str(), value->c_str(), 1);
            } else {
                unsetenv(name.c_str());
            }
        }
    }

    static void set(const char* name, const char* value) { setenv(name, value, 1); }

private:
    std::map<std::string, std::optional<std::string>> _former;
};

TEST_F(Paths, TheHomeFolderIsTheEnvironments) {
    set("HOME", "/home/somebody");
    EXPECT_EQ(platform::homeDirectory(), "/home/somebody");
}

TEST_F(Paths, TheHomeFolderIsThePasswordDatabasesWhenTheEnvironmentNamesNone) {
    const passwd* entry = getpwuid(getuid());
    if (entry == nullptr) {
        GTEST_SKIP() << "this user has no entry";
    }
    EXPECT_EQ(platform::homeDirectory(), entry->pw_dir);
    set("HOME", "");
    EXPECT_EQ(platform::homeDirectory(), entry->pw_dir);
}

TEST_F(Paths, SettingsAndCachesLieInTheirOwnDirectories) {
    set("HOME", "/home/somebody");
    set("XDG_CONFIG_HOME", "/settings");
    set("XDG_CACHE_HOME", "/caches");
    EXPECT_EQ(platform::configDirectory(), "/settings");
    EXPECT_EQ(platform::cacheDirectory(), "/caches");
}

TEST_F(Paths, SettingsAndCachesLieInTheHomeFolderWhenNothingElseIsSaid) {
    set("HOME", "/home/somebody");
    EXPECT_EQ(platform::configDirectory(), "/home/somebody/.config");
    EXPECT_EQ(platform::cacheDirectory(), "/home/somebody/.cache");
}

TEST_F(Paths, ADirectoryThatIsEmptyOrNotAbsoluteCountsAsUnset) {
    set("HOME", "/home/somebody");
    set("XDG_CONFIG_HOME", "");
    set("XDG_CACHE_HOME", "caches");
    EXPECT_EQ(platform::configDirectory(), "/home/somebody/.config");
    EXPECT_EQ(platform::cacheDirectory(), "/home/somebody/.cache");
}

}  // namespace
