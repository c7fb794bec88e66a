// The sheet over settings in a file, which others write too, or nobody can.
#include "platform/Workspace.hpp"
#include "tests/saver/SheetTest.hpp"
#include "tests/support/OrdinaryUser.hpp"

#include <sys/stat.h>
#include <sys/wait.h>

namespace {

class QZLCirraneSheetFile : public SheetTest {
protected:
    QZLCirraneSheetFile() {
        platform::setPreferencesFailureHandler([this](const auto& failed) { failures.push_back(failed); });
        platform::setWorkspaceMessageSink([this](const std::string& message) { messages.push_back(message); });
        fake::writeFile(file, "[General]\nColors=0.9\nForeign=kept\n");
        useFile();
    }
    ~QZLCirraneSheetFile() override {
        platform::setPreferencesFailureHandler(nullptr);
        platform::setWorkspaceMessageSink(nullptr);
    }

    /// As a process does that starts.
    void useFile() const {
        platform::setPreferencesStore(platform::makeFilePreferencesStore(file));
        defaults().registerDefaults();
    }
    /// In another process, which has no part in what is open here.
    void writeElsewhere(const std::map<std::string, std::string>& changes) const {
        const pid_t child = fork();
        if (child == 0) {
            const auto other = platform::makeFilePreferencesStore(file);
            for (const auto& [key, value] : changes) {
                other->setString(value, key);
            }
            _exit(other->synchronize() ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }
    std::optional<std::string> inFile(const std::string& key) const {
        return platform::makeFilePreferencesStore(file)->stringForKey(key);
    }

    const std::filesystem::path file = desktop.folder() / "settings.conf";
    std::vector<std::filesystem::path> failures;
    std::vector<std::string> messages;
};

TEST_F(QZLCirraneSheetFile, WhatAnotherProcessWritesMeanwhileStaysExceptForTheSevenSettings) {
    open();
    slider("_brightness").setFocus();
    QTest::keyClick(&slider("_brightness"), Qt::Key_End);
    writeElsewhere({{"Colors", "0.1"}, {"Speed", "0.2"}, {"Another", "too"}, {"SavedErrorCode", "200"}});
    click(button("close"));
    EXPECT_EQ(inFile("Foreign"), "kept");
    EXPECT_EQ(inFile("Another"), "too");
    EXPECT_EQ(inFile("SavedErrorCode"), "200");
    useFile();
    EXPECT_EQ(defaults().colors(), 0.9F) << "as the sheet showed it when it was closed";
    EXPECT_EQ(defaults().speed(), 0.7F);
    EXPECT_EQ(defaults().brightness(), 1.0F);
    EXPECT_TRUE(failures.empty());
}

TEST_F(QZLCirraneSheetFile, ThatCannotBeWrittenIsToldOnceAndEverySettingHolds) {
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(chmod(desktop.folder().c_str(), 0777), 0);
    {
        const fake::AsOrdinaryUser user;
        open();
        slider("_zoom").setFocus();
        QTest::keyClick(&slider("_zoom"), Qt::Key_End);
        click(button("close"));
        EXPECT_FALSE(window().isVisible());
        open();
        EXPECT_EQ(slider("_zoom").floatValue(), 1.0F);
        EXPECT_EQ(slider("_colors").floatValue(), 0.9F);
        click(button("close"));
    }
    EXPECT_EQ(defaults().zoom(), 1.0F);
    EXPECT_EQ(failures, std::vector{file});
    EXPECT_EQ(fake::readFile(file), "[General]\nColors=0.9\nForeign=kept\n");
    EXPECT_EQ(std::exchange(log, {}), std::vector{"settings: " + file.string() + " could not be written"});
}

TEST_F(QZLCirraneSheetFile, AReportWithAJournalOfFullLengthIsNotLost) {
    std::string journal;
    while (journal.size() < 262144) {
        journal += "line " + std::to_string(journal.size()) + "\n";
    }
    journal.resize(262144);
    defaults().saveError(200, -3, journal);
    open();
    click(button("_errorReport"));
    ASSERT_EQ(messages.size(), 1U);
    const auto kept = desktop.keptFiles();
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_NE(messages.front().find(kept.front().string()), std::string::npos) << messages.front();
    const std::string mail = fake::readFile(kept.front());
    EXPECT_NE(mail.find(journal), std::string::npos);
    EXPECT_EQ(desktop.clipboard(), mail);
    EXPECT_TRUE(button("_errorReport").isHidden());
    EXPECT_FALSE(std::filesystem::exists(desktop.received()));
}

TEST_F(QZLCirraneSheetFile, WithoutAMailProgramTheReportIsNotLost) {
    std::filesystem::remove_all(desktop.dataFolder() / "applications");
    defaults().saveError(101, 0, "first line\nsecond line\n");
    open();
    click(button("_errorReport"));
    EXPECT_TRUE(fake::eventuallyInLoop([this] { return !messages.empty(); }));
    ASSERT_EQ(desktop.keptFiles().size(), 1U);
    const std::string mail = fake::readFile(desktop.keptFiles().front());
    EXPECT_NE(mail.find("first line\nsecond line\n"), std::string::npos) << mail;
    EXPECT_EQ(desktop.clipboard(), mail);
}

}  // namespace
