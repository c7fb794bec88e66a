#include "platform/Workspace.hpp"

#include "platform/AddressHandler.hpp"
#include "tests/support/EventLoop.hpp"
#include "tests/support/FakeClock.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/ScopedEnvironment.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "tests/support/Waiting.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QtGui/QClipboard>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>
#include <cstring>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr const char* mail = "mailto:clouds@example.org?subject=Cirrane%20error%20report&body=One%0D%0ATwo.%2E";
constexpr const char* mailAsText = "To: clouds@example.org\nSubject: Cirrane error report\n\nOne\nTwo..\n";

std::string clipboard() {
    return QApplication::clipboard()->text().toStdString();
}

/// A home folder of its own, and no program that could open anything.
class Workspace : public testing::Test {
protected:
    Workspace() {
        fs::create_directories(_data);
        fs::create_directories(programs());
        QApplication::clipboard()->clear();
        platform::setWorkspaceMessageSink([this](const std::string& message) { messages.push_back(message); });
    }
    ~Workspace() override {
        platform::setWorkspaceMessageSink(nullptr);
        platform::setWorkspaceTexts(nullptr);
        close(_end);
    }

    fs::path programs() const { return directory.path() / "bin"; }
    fs::path received() const { return directory.path() / "received"; }
    fs::path stateFolder() const { return directory.path() / "state" / "cirrane"; }

    /// In place of the desktop's own: takes down its argument and ends with that status, once it may.
    void installOpener(int status, const std::string& before = "") const {
        writeProgram(programs() / "xdg-open", takeDown() + before + "\nexit " + std::to_string(status) + "\n");
    }
    /// One that does not end before `letOpenerEnd`.
    void installSlowOpener(int status) {
        const fs::path pipe = directory.path() / "end";
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        _end = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
        installOpener(status, "read line < " + pipe.string());
    }
    void letOpenerEnd() const { EXPECT_EQ(write(_end, "\n", 1), 1); }
    /// A mail program, for the desktop's own opener to find.
    void registerMailProgram(int status) {
        _path.set(_path.former());
        writeProgram(directory.path() / "mailer", takeDown() + "exit " + std::to_string(status) + "\n");
        fake::writeFile(_data / "applications" / "test-mailer.desktop",
                        "[Desktop Entry]\nType=Application\nName=Test\nExec=" + (directory.path() / "mailer").string() +
                            " %u\nMimeType=x-scheme-handler/mailto;\n");
        fake::writeFile(directory.path() / "config" / "mimeapps.list",
                        "[Default Applications]\nx-scheme-handler/mailto=test-mailer.desktop\n");
    }
    bool isReceived(const std::string& address) const {
        return fake::eventuallyInLoop([&] { return fake::readFile(received()) == address + "\n"; });
    }
    /// Neither running nor dead and not taken away.
    static bool hasNoChildren() {
        siginfo_t none;
        return fake::eventuallyInLoop([&none] { return waitid(P_ALL, 0, &none, WEXITED | WNOHANG | WNOWAIT) == -1; });
    }
    std::vector<fs::path> keptFiles() const {
        std::error_code none;
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(stateFolder(), none)) {
            files.push_back(entry.path());
        }
        return files;
    }

    fake::TemporaryDirectory directory;
    std::vector<std::string> messages;

private:
    std::string takeDown() const { return "#!/bin/bash\nprintf '%s\\n' \"$@\" > " + received().string() + "\n"; }
    static void writeProgram(const fs::path& file, const std::string& text) {
        fake::writeFile(file, text);
        fs::permissions(file, fs::perms::owner_all);
    }

    class Path {
    public:
        explicit Path(const fs::path& programs) : _former(getenv("PATH")), _variable("PATH", programs.string()) {}
        const std::string& former() const { return _former; }
        void set(const std::string& value) { _variable.set(value); }

    private:
        std::string _former;
        fake::ScopedEnvironment _variable;
    };

    int _end = -1;
    const fs::path _data = directory.path() / "data";
    Path _path{directory.path() / "bin"};
    fake::ScopedEnvironment _home{"HOME", directory.path().string()};
    fake::ScopedEnvironment _config{"XDG_CONFIG_HOME", (directory.path() / "config").string()};
    fake::ScopedEnvironment _dataHome{"XDG_DATA_HOME", _data.string()};
    fake::ScopedEnvironment _dataFolders{"XDG_DATA_DIRS", _data.string()};
    fake::ScopedEnvironment _configFolders{"XDG_CONFIG_DIRS", (directory.path() / "etc").string()};
    fake::ScopedEnvironment _state{"XDG_STATE_HOME", (directory.path() / "state").string()};
    fake::ScopedEnvironment _desktop{"XDG_CURRENT_DESKTOP", std::nullopt};
    fake::ScopedEnvironment _browser{"BROWSER", "no-such-browser"};
};

TEST_F(Workspace, TheProgramRegisteredForMailsGetsTheAddressAsItIs) {
    registerMailProgram(0);
    platform::openURL(mail);
    EXPECT_TRUE(isReceived(mail)) << fake::readFile(received());
    EXPECT_TRUE(hasNoChildren());
    EXPECT_TRUE(messages.empty());
    EXPECT_FALSE(fs::exists(stateFolder()));
}

TEST_F(Workspace, TheLongestAddressThatIsOpenedArrivesWhole) {
    registerMailProgram(0);
    const std::string address =
        std::string(mail) + std::string(platform::longestOpenedAddress - std::strlen(mail), 'x');
    platform::openURL(address);
    EXPECT_TRUE(isReceived(address));
    EXPECT_TRUE(hasNoChildren());
    EXPECT_TRUE(messages.empty());
}

TEST_F(Workspace, WithoutAMailProgramTheMailIsKept) {
    registerMailProgram(0);
    fs::remove_all(directory.path() / "data" / "applications");
    platform::openURL(mail);
    EXPECT_TRUE(fake::eventuallyInLoop([this] { return !messages.empty(); }));
    EXPECT_EQ(clipboard(), mailAsText);
    ASSERT_EQ(keptFiles().size(), 1U);
    EXPECT_EQ(fake::readFile(keptFiles().front()), mailAsText);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_NE(messages.front().find(keptFiles().front().string()), std::string::npos) << messages.front();
}

TEST_F(Workspace, AMailProgramThatFailsAtOnceIsNone) {
    registerMailProgram(1);
    platform::openURL(mail);
    EXPECT_TRUE(fake::eventuallyInLoop([this] { return !messages.empty(); }));
    EXPECT_EQ(keptFiles().size(), 1U);
}

TEST_F(Workspace, WithoutTheDesktopsOpenerTheMailIsKeptAtOnce) {
    platform::openURL(mail);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(clipboard(), mailAsText);
    EXPECT_EQ(keptFiles().size(), 1U);
}

TEST_F(Workspace, AnOpenerThatDiesOfASignalFails) {
    installOpener(0, "kill -9 $$");
    platform::openURL(mail);
    EXPECT_TRUE(fake::eventuallyInLoop([this] { return !messages.empty(); }));
}

TEST_F(Workspace, WhatAProgramEndsWithLaterMeansNothing) {
    fake::Clock clock;
    installSlowOpener(1);
    platform::openURL(mail);
    ASSERT_TRUE(isReceived(mail));
    clock.advance(platform::handlerPatienceSeconds + 1.0);
    letOpenerEnd();
    EXPECT_TRUE(hasNoChildren());
    QApplication::processEvents();
    EXPECT_TRUE(messages.empty());
}

TEST_F(Workspace, DoesNotWaitForTheProgram) {
    installSlowOpener(0);
    platform::openURL(mail);  // returns, although the program does not end
    EXPECT_TRUE(isReceived(mail));
    letOpenerEnd();
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(Workspace, AMailThatIsTooLongIsKeptWhole) {
    installOpener(0);
    const std::string body(platform::longestOpenedAddress, 'x');
    platform::openURL("mailto:a@example.org?body=" + body);
    ASSERT_EQ(messages.size(), 1U);
    ASSERT_EQ(keptFiles().size(), 1U);
    EXPECT_EQ(fake::readFile(keptFiles().front()), "To: a@example.org\n\n" + body + "\n");
    EXPECT_EQ(clipboard(), "To: a@example.org\n\n" + body + "\n");
    EXPECT_FALSE(fs::exists(received()));
}

TEST_F(Workspace, KeptMailsAreForTheirUserAlone) {
    platform::openURL(mail);
    ASSERT_EQ(keptFiles().size(), 1U);
    struct stat status {};
    stat(keptFiles().front().c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    stat(stateFolder().c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(Workspace, EveryKeptMailHasAFileOfItsOwnThatTellsTheDay) {
    const fake::ScopedEnvironment zone("TZ", "UTC");
    fake::Clock clock;
    clock.setCalendarSeconds(1700000000);
    for (int count = 0; count < 3; ++count) {
        platform::openURL(mail);
    }
    EXPECT_EQ(keptFiles().size(), 3U);
    for (const fs::path& file : keptFiles()) {
        EXPECT_TRUE(file.filename().string().starts_with("mail-2023-11-14-221320-")) << file;
        EXPECT_EQ(fake::readFile(file), mailAsText);
    }
}

TEST_F(Workspace, AMailThatCannotBeWrittenIsOnTheClipboardStill) {
    fake::writeFile(directory.path() / "state", "not a folder");
    platform::openURL(mail);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_NE(messages.front().find(stateFolder().string()), std::string::npos) << messages.front();
    EXPECT_NE(messages.front().find("Not a directory"), std::string::npos) << messages.front();
    EXPECT_EQ(clipboard(), mailAsText);
}

TEST_F(Workspace, AWebAddressThatCannotBeOpenedIsOnTheClipboard) {
    platform::openURL("https://cirrane.example.org");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_NE(messages.front().find("https://cirrane.example.org"), std::string::npos);
    EXPECT_EQ(clipboard(), "https://cirrane.example.org");
    EXPECT_TRUE(keptFiles().empty());
}

TEST_F(Workspace, NothingAndWhatIsNoAddressOpensNothing) {
    installOpener(0);
    platform::openURL(std::nullopt);
    platform::openURL("no address");
    platform::openURL("/etc/passwd");
    EXPECT_TRUE(hasNoChildren());
    EXPECT_FALSE(fs::exists(received()));
    EXPECT_TRUE(messages.empty());
}

TEST_F(Workspace, TheMessagesTextsAreLookedUp) {
    platform::setWorkspaceTexts([](const std::string& key, const std::string&) { return key + " %@"; });
    platform::openURL("https://cirrane.example.org");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages.front(),
              "WORKSPACE_PAGE_NOT_OPENED %@\n\nWORKSPACE_PAGE_ON_CLIPBOARD_FORMAT https://cirrane.example.org");
}

TEST_F(Workspace, TheTextsAreThoseThatAreTranslated) {
    std::map<std::string, std::string> said;
    platform::setWorkspaceTexts([&said](const std::string& key, const std::string& english) {
        said[key] = english;
        return english;
    });
    const std::string tail(platform::longestOpenedAddress, 'x');
    for (const std::string address : {"mailto:a@example.org", "https://example.org/"}) {
        platform::openURL(address);
        platform::openURL(address + tail);
    }
    fs::remove_all(directory.path() / "state");
    fake::writeFile(directory.path() / "state", "not a folder");
    platform::openURL(mail);

    const nlohmann::json table = nlohmann::json::parse(fake::readFile(HOST_TABLE));
    EXPECT_EQ(said.size(), 7U);
    for (const auto& [key, english] : said) {
        EXPECT_EQ(table.value(key, ""), english) << key;
    }
}

TEST_F(Workspace, AMessageIsABoxThatOneCanCopyFromAndThatWaitsForNobody) {
    platform::setWorkspaceMessageSink(nullptr);
    platform::openURL(mail);
    const auto windows = QApplication::topLevelWidgets();
    ASSERT_EQ(windows.size(), 1);
    auto* const box = qobject_cast<QMessageBox*>(windows.front());
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isVisible());
    EXPECT_FALSE(box->isModal());
    EXPECT_TRUE(box->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    box->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace
