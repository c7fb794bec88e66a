#include "platform/Workspace.hpp"

#include "platform/AddressHandler.hpp"
#include "tests/support/EventLoop.hpp"
#include "tests/support/FakeClock.hpp"
#include "tests/support/PrivateDesktop.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

class Workspace : public testing::Test {
protected:
    Workspace() {
        platform::setWorkspaceMessageSink([this](const std::string& message) { messages.push_back(message); });
    }
    ~Workspace() override {
        platform::setWorkspaceMessageSink(nullptr);
        platform::setWorkspaceTexts(nullptr);
        close(_end);
    }

    /// One that does not end before `letOpenerEnd`.
    void installSlowOpener(int status) {
        const fs::path pipe = desktop.folder() / "end";
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        _end = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
        desktop.installOpener(status, "read line < " + pipe.string());
    }
    void letOpenerEnd() const { EXPECT_EQ(write(_end, "\n", 1), 1); }
    /// Neither running nor dead and not taken away.
    static bool hasNoChildren() {
        siginfo_t none;
        return fake::eventuallyInLoop([&none] { return waitid(P_ALL, 0, &none, WEXITED | WNOHANG | WNOWAIT) == -1; });
    }

    fake::PrivateDesktop desktop;
    std::vector<std::string> messages;

private:
    int _end = -1;
};

TEST_F(Workspace, TheProgramRegisteredForMailsGetsTheAddressAsItIs) {
    desktop.registerHandler(0);
    platform::openURL(mail);
    EXPECT_EQ(desktop.receivedAddress(), mail);
    EXPECT_TRUE(hasNoChildren());
    EXPECT_TRUE(messages.empty());
    EXPECT_FALSE(fs::exists(desktop.stateFolder()));
}

TEST_F(Workspace, TheLongestAddressThatIsOpenedArrivesWhole) {
    desktop.registerHandler(0);
    const std::string address =
        std::string(mail) + std::string(platform::longestOpenedAddress - std::strlen(mail), 'x');
    platform::openURL(address);
    EXPECT_EQ(desktop.receivedAddress(), address);
    EXPECT_TRUE(hasNoChildren());
    EXPECT_TRUE(messages.empty());
}

TEST_F(Workspace, WithoutAMailProgramTheMailIsKept) {
    desktop.registerHandler(0);
    fs::remove_all(desktop.folder() / "data" / "applications");
    platform::openURL(mail);
    EXPECT_TRUE(fake::eventuallyInLoop([this] { return !messages.empty(); }));
    EXPECT_EQ(fake::PrivateDesktop::clipboard(), mailAsText);
    ASSERT_EQ(desktop.keptFiles().size(), 1U);
    EXPECT_EQ(fake::readFile(desktop.keptFiles().front()), mailAsText);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_NE(messages.front().find(desktop.keptFiles().front().string()), std::string::npos) << messages.front();
}

TEST_F(Workspace, AMailProgramThatFailsAtOnceIsNone) {
    desktop.registerHandler(1);
    platform::openURL(mail);
    EXPECT_TRUE(fake::eventuallyInLoop([this] { return !messages.empty(); }));
    EXPECT_EQ(desktop.keptFiles().size(), 1U);
}

TEST_F(Workspace, WithoutTheDesktopsOpenerTheMailIsKeptAtOnce) {
    platform::openURL(mail);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(fake::PrivateDesktop::clipboard(), mailAsText);
    EXPECT_EQ(desktop.keptFiles().size(), 1U);
}

TEST_F(Workspace, AnOpenerThatDiesOfASignalFails) {
    desktop.installOpener(0, "kill -9 $$");
    platform::openURL(mail);
    EXPECT_TRUE(fake::eventuallyInLoop([this] { return !messages.empty(); }));
}

TEST_F(Workspace, WhatAProgramEndsWithLaterMeansNothing) {
    fake::Clock clock;
    installSlowOpener(1);
    platform::openURL(mail);
    ASSERT_EQ(desktop.receivedAddress(), mail);
    clock.advance(platform::handlerPatienceSeconds + 1.0);
    letOpenerEnd();
    EXPECT_TRUE(hasNoChildren());
    QApplication::processEvents();
    EXPECT_TRUE(messages.empty());
}

TEST_F(Workspace, DoesNotWaitForTheProgram) {
    installSlowOpener(0);
    platform::openURL(mail);  // returns, although the program does not end
    EXPECT_EQ(desktop.receivedAddress(), mail);
    letOpenerEnd();
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(Workspace, AMailThatIsTooLongIsKeptWhole) {
    desktop.installOpener(0);
    const std::string body(platform::longestOpenedAddress, 'x');
    platform::openURL("mailto:a@example.org?body=" + body);
    ASSERT_EQ(messages.size(), 1U);
    ASSERT_EQ(desktop.keptFiles().size(), 1U);
    EXPECT_EQ(fake::readFile(desktop.keptFiles().front()), "To: a@example.org\n\n" + body + "\n");
    EXPECT_EQ(fake::PrivateDesktop::clipboard(), "To: a@example.org\n\n" + body + "\n");
    EXPECT_FALSE(fs::exists(desktop.received()));
}

TEST_F(Workspace, KeptMailsAreForTheirUserAlone) {
    platform::openURL(mail);
    ASSERT_EQ(desktop.keptFiles().size(), 1U);
    struct stat status {};
    stat(desktop.keptFiles().front().c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    stat(desktop.stateFolder().c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(Workspace, EveryKeptMailHasAFileOfItsOwnThatTellsTheDay) {
    const fake::ScopedEnvironment zone("TZ", "UTC");
    fake::Clock clock;
    clock.setCalendarSeconds(1700000000);
    for (int count = 0; count < 3; ++count) {
        platform::openURL(mail);
    }
    EXPECT_EQ(desktop.keptFiles().size(), 3U);
    for (const fs::path& file : desktop.keptFiles()) {
        EXPECT_TRUE(file.filename().string().starts_with("mail-2023-11-14-221320-")) << file;
        EXPECT_EQ(fake::readFile(file), mailAsText);
    }
}

TEST_F(Workspace, AMailThatCannotBeWrittenIsOnTheClipboardStill) {
    fake::writeFile(desktop.folder() / "state", "not a folder");
    platform::openURL(mail);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_NE(messages.front().find(desktop.stateFolder().string()), std::string::npos) << messages.front();
    EXPECT_NE(messages.front().find("Not a directory"), std::string::npos) << messages.front();
    EXPECT_EQ(fake::PrivateDesktop::clipboard(), mailAsText);
}

TEST_F(Workspace, AWebAddressThatCannotBeOpenedIsOnTheClipboard) {
    platform::openURL("https://cirrane.example.org");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_NE(messages.front().find("https://cirrane.example.org"), std::string::npos);
    EXPECT_EQ(fake::PrivateDesktop::clipboard(), "https://cirrane.example.org");
    EXPECT_TRUE(desktop.keptFiles().empty());
}

TEST_F(Workspace, NothingAndWhatIsNoAddressOpensNothing) {
    desktop.installOpener(0);
    platform::openURL(std::nullopt);
    platform::openURL("no address");
    platform::openURL("/etc/passwd");
    EXPECT_TRUE(hasNoChildren());
    EXPECT_FALSE(fs::exists(desktop.received()));
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
    fs::remove_all(desktop.folder() / "state");
    fake::writeFile(desktop.folder() / "state", "not a folder");
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
