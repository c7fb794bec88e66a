#include "host/SaverHosts.hpp"

#include "host/HostTexts.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class SaverHosts : public testing::Test {
protected:
    void install(const std::string& program) const {
        fake::writeFile(folder / program, "#!/bin/sh\n");
        fs::permissions(folder / program, fs::perms::owner_all);
    }
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& host : host::findSaverHosts(searchPath(), "/opt/cirrane")) {
            result.push_back(host.name);
        }
        return result;
    }
    std::string lineOf(const std::string& program, const fs::path& saver) const {
        install(program);
        const auto found = host::findSaverHosts(searchPath(), saver);
        return found.empty() ? "not found" : found.front().line;
    }
    std::string searchPath() const { return "/nowhere::" + folder.string() + ":relative"; }

    fake::TemporaryDirectory directory;
    fs::path folder = directory.path() / "bin";
};

TEST_F(SaverHosts, AreFoundByTheirProgramsInTheSearchPath) {
    EXPECT_TRUE(names().empty());
    install("swayidle");
    install("xscreensaver");
    install("mate-screensaver");
    EXPECT_EQ(names(), (std::vector<std::string>{"XScreenSaver", "MATE Screensaver", "swayidle"}));
}

TEST_F(SaverHosts, WhatCannotBeRunIsNotInstalled) {
    fake::writeFile(folder / "swayidle", "text");
    fs::create_directory(folder / "hypridle");
    EXPECT_TRUE(names().empty());
    EXPECT_TRUE(host::findSaverHosts("", "/opt/cirrane").empty());
}

TEST_F(SaverHosts, AllAreExplained) {
    const host::HostTexts texts(nullptr);
    for (const char* program :
         {"xscreensaver", "mate-screensaver", "xfce4-screensaver", "swayidle", "hypridle", "xautolock"}) {
        install(program);
    }
    const auto found = host::findSaverHosts(searchPath(), "/opt/cirrane");
    EXPECT_EQ(found.size(), 6U);
    for (const auto& host : found) {
        EXPECT_NE(texts.text(host.explanationKey), host.explanationKey);
        const bool announcesALine = texts.text(host.explanationKey).ends_with(":");
        EXPECT_EQ(announcesALine, !host.line.empty()) << host.name;
    }
}

TEST_F(SaverHosts, XScreenSaversLineNamesTheProgram) {
    EXPECT_EQ(lineOf("xscreensaver", "/opt/cirrane"), "\"Cirrane\"  /opt/cirrane --root \\n\\");
}

TEST_F(SaverHosts, PathsWithUnusualCharactersAreOneWordForAShell) {
    EXPECT_EQ(lineOf("hypridle", "/my apps/cirrane"), "on-timeout = '/my apps/cirrane' --fullscreen");
    fs::remove(folder / "hypridle");
    EXPECT_EQ(lineOf("swayidle", "/it's/cirrane"),
              R"(swayidle timeout 300 ''\''/it'\''\'\'''\''s/cirrane'\'' --fullscreen')");
}

}  // namespace
