// What becomes of a mail when the program ends before anybody knows whether it was taken.
#include "platform/Workspace.hpp"
#include "tests/support/PrivateDesktop.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <QtGui/QGuiApplication>
#include <memory>

namespace {

class WorkspaceAtTheEnd : public testing::Test {
protected:
    WorkspaceAtTheEnd() {
        static int argumentCount = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application = std::make_unique<QGuiApplication>(argumentCount, arguments);
        desktop = std::make_unique<fake::PrivateDesktop>();
    }

    std::unique_ptr<QGuiApplication> application;
    std::unique_ptr<fake::PrivateDesktop> desktop;
};

TEST_F(WorkspaceAtTheEnd, AMailThatMayStillFailIsKept) {
    const auto pipe = desktop->folder() / "end";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    desktop->installOpener(1, "read line < " + pipe.string());  // ends when its folder goes, at the latest
    platform::openURL("mailto:clouds@example.org?body=One");
    ASSERT_EQ(desktop->receivedAddress(), "mailto:clouds@example.org?body=One");
    EXPECT_TRUE(desktop->keptFiles().empty());
    application.reset();
    ASSERT_EQ(desktop->keptFiles().size(), 1U);
    EXPECT_EQ(fake::readFile(desktop->keptFiles().front()), "To: clouds@example.org\n\nOne\n");
    fake::writeFile(pipe, "\n");
}

TEST_F(WorkspaceAtTheEnd, AMailThatWasTakenIsNot) {
    desktop->installOpener(0);
    platform::openURL("mailto:clouds@example.org?body=One");
    ASSERT_EQ(desktop->receivedAddress(), "mailto:clouds@example.org?body=One");
    ASSERT_TRUE(fake::eventuallyInLoop([] {
        siginfo_t none;
        return waitid(P_ALL, 0, &none, WEXITED | WNOHANG | WNOWAIT) == -1;
    }));
    application.reset();
    EXPECT_TRUE(desktop->keptFiles().empty());
}

}  // namespace
