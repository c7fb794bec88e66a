// The main function of tests that put the program under real screen saver hosts and compositors. These do not run as
// root, nor does XScreenSaver start savers then: started as root, the tests go on as "nobody", with a copy of the
// program that nobody may run.
#include "tests/hosts/Home.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>

namespace {

std::filesystem::path programToRun = CIRRANE_PROGRAM;
std::filesystem::path libraryToPreload = NO_SCREENS;

/// The program, its library and its bundle, and what is preloaded into it, for that user.
std::filesystem::path copyProgram(const std::filesystem::path& into, const passwd& user) {
    const auto built = programToRun.parent_path();
    for (const char* part : {"cirrane", "libcirrane-platform.so", "Cirrane.saver"}) {
        std::filesystem::copy(built / part, into / part, std::filesystem::copy_options::recursive);
    }
    std::filesystem::copy(libraryToPreload, into);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(into)) {
        if (lchown(entry.path().c_str(), user.pw_uid, user.pw_gid) != 0) {
            std::cerr << entry.path() << " cannot be given away\n";
        }
    }
    if (chown(into.c_str(), user.pw_uid, user.pw_gid) != 0) {
        std::cerr << into << " cannot be given away\n";
    }
    libraryToPreload = into / libraryToPreload.filename();
    return into / programToRun.filename();
}

bool goOnAs(const passwd& user) {
    return setgroups(0, nullptr) == 0 && setgid(user.pw_gid) == 0 && setuid(user.pw_uid) == 0 && geteuid() != 0;
}

/// What the session that the tests are run in must not lend to the hosts.
void leaveSession() {
    for (const char* name :
         {"DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "SWAYSOCK", "XAUTHORITY", "XSCREENSAVER_WINDOW",
          "DBUS_SESSION_BUS_ADDRESS", "XDG_SESSION_TYPE", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME",
          "XDG_STATE_HOME", "XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORM", "QT_SCALE_FACTOR"}) {
        unsetenv(name);
    }
}

}  // namespace

std::filesystem::path hosts::program() {
    return programToRun;
}

std::filesystem::path hosts::noScreensLibrary() {
    return libraryToPreload;
}

int main(int argumentCount, char** arguments) {
    testing::InitGoogleTest(&argumentCount, arguments);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    leaveSession();
    std::optional<fake::TemporaryDirectory> copy;
    if (geteuid() == 0) {
        copy.emplace();
        const passwd* nobody = getpwnam("nobody");
        if (nobody == nullptr) {
            std::cerr << "there is no user \"nobody\" to run as\n";
            return 1;
        }
        programToRun = copyProgram(copy->path(), *nobody);
        if (!goOnAs(*nobody)) {
            std::cerr << "cannot go on as \"nobody\"\n";
            return 1;
        }
    }
    std::filesystem::current_path("/");
    return RUN_ALL_TESTS();
}
