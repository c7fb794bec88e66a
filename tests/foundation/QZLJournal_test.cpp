#include "foundation/QZLJournal.hpp"

#include "platform/SystemLog.hpp"
#include "tests/support/TestBundle.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <thread>
#include <vector>

using testing::ElementsAre;

namespace {

/// Takes the system log's lines for the life of this object.
class LogCapture {
public:
    LogCapture() {
        platform::setSystemLogSink([this](std::string_view line) {
            const std::lock_guard lock(_mutex);
            _lines.emplace_back(line);
        });
    }
    ~LogCapture() { platform::setSystemLogSink({}); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> lines() const {
        const std::lock_guard lock(_mutex);
        return _lines;
    }

private:
    mutable std::mutex _mutex;
    std::vector<std::string> _lines;
};

fake::Bundle::Strings formats(const std::string& messageFormat) {
    return {{"QZL_JOURNAL_MESSAGE_FORMAT", messageFormat}, {"QZL_JOURNAL_LOG_FORMAT", "%@|%@|%@"}};
}

class QZLJournalTest : public testing::Test {
protected:
    fake::Bundle bundle{{{"Vistashade", formats("%@%@\n")}}};
    LogCapture log;
    QZLJournal journal;
};

/// With a message format that adds nothing of its own, so that lengths are those of the messages.
class QZLJournalCap : public testing::Test {
protected:
    /// Messages of those many letters, one after the other; the length that is kept of them.
    std::size_t keptAfter(std::initializer_list<std::size_t> lengths) {
        for (const std::size_t length : lengths) {
            journal.add(std::string(length, 'x'));
        }
        return journal.accumulatedMessages().size();
    }

    fake::Bundle bundle{{{"Vistashade", formats("%@%@")}}};
    LogCapture log;
    QZLJournal journal;
};

TEST_F(QZLJournalTest, IsEmptyAtFirstAndHasNoPrefixes) {
    EXPECT_EQ(journal.accumulatedMessages(), "");
    EXPECT_EQ(journal.prefix(), std::nullopt);
    EXPECT_EQ(journal.logPrefix(), std::nullopt);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(QZLJournalTest, KeepsMessagesWithThePrefixAndLogsThemWithBoth) {
    journal.setPrefix("[Screen] ");
    journal.setLogPrefix("Cirrane: ");
    journal.add("Started animation.");
    journal.add("Stopped animation.");
    EXPECT_EQ(journal.accumulatedMessages(), "[Screen] Started animation.\n[Screen] Stopped animation.\n");
    EXPECT_THAT(log.lines(),
                ElementsAre("Cirrane: |[Screen] |Started animation.", "Cirrane: |[Screen] |Stopped animation."));
}

TEST_F(QZLJournalTest, NullPrefixesPrintAsNothing) {
    journal.setPrefix("[Preview] ");
    journal.setPrefix(std::nullopt);
    journal.add("One");
    EXPECT_EQ(journal.accumulatedMessages(), "One\n");
    EXPECT_THAT(log.lines(), ElementsAre("||One"));
}

TEST_F(QZLJournalTest, ANullMessagePrintsAsNull) {
    journal.add(std::nullopt);
    EXPECT_EQ(journal.accumulatedMessages(), "(null)\n");
    EXPECT_THAT(log.lines(), ElementsAre("||(null)"));
}

TEST_F(QZLJournalTest, AChangedPrefixHoldsForLaterLinesOnly) {
    journal.setPrefix("[Screen] ");
    journal.add("one");
    journal.setPrefix("[Screen 2] ");
    journal.add("two");
    EXPECT_EQ(journal.accumulatedMessages(), "[Screen] one\n[Screen 2] two\n");
    EXPECT_EQ(journal.prefix(), "[Screen 2] ");
}

TEST_F(QZLJournalTest, FormatsMessages) {
    journal.addWithFormat("Aborting with error: (%ld:%ld) %@", std::int64_t{302}, std::int64_t{0}, "No such features.");
    EXPECT_EQ(journal.accumulatedMessages(), "Aborting with error: (302:0) No such features.\n");
    EXPECT_THAT(log.lines(), ElementsAre("||Aborting with error: (302:0) No such features."));
}

TEST_F(QZLJournalTest, APlainMessageIsNoFormat) {
    journal.add("100%d %@");
    EXPECT_EQ(journal.accumulatedMessages(), "100%d %@\n");
    EXPECT_THAT(log.lines(), ElementsAre("||100%d %@"));
}

TEST_F(QZLJournalTest, LooksItsFormatsUpForEveryMessage) {
    journal.add("one");
    const fake::Bundle other(
        {{"Vistashade", {{"QZL_JOURNAL_MESSAGE_FORMAT", "<%@%@>"}, {"QZL_JOURNAL_LOG_FORMAT", "%3$@"}}}});
    journal.add("two");
    EXPECT_EQ(journal.accumulatedMessages(), "one\n<two>");
    EXPECT_THAT(log.lines(), ElementsAre("||one", "two"));
}

TEST_F(QZLJournalTest, WithoutFormatsEveryLineIsTheBareKey) {
    const fake::Bundle other;
    journal.add("one");
    journal.add("two");
    EXPECT_EQ(journal.accumulatedMessages(), "QZL_JOURNAL_MESSAGE_FORMATQZL_JOURNAL_MESSAGE_FORMAT");
    EXPECT_THAT(log.lines(), ElementsAre("QZL_JOURNAL_LOG_FORMAT", "QZL_JOURNAL_LOG_FORMAT"));
}

TEST_F(QZLJournalTest, FormatsThatDoNotMatchTheirArgumentsStillPrint) {
    const fake::Bundle other({{"Vistashade",
                               {{"QZL_JOURNAL_MESSAGE_FORMAT", "%2$@ %9$@ %ld|%.2lf %n%*d\n"},
                                {"QZL_JOURNAL_LOG_FORMAT", "%d %s %x %c %@ %@ 100%"}}}});
    journal.setPrefix("[Screen] ");
    journal.setLogPrefix("Cirrane: ");
    journal.add("%s one");
    EXPECT_EQ(journal.accumulatedMessages(), "%s one (null) [Screen] |%s one %n%*d\n");
    EXPECT_THAT(log.lines(), ElementsAre("Cirrane:  [Screen]  %s one (null) (null) (null) 100%"));
    journal.addWithFormat("%ld:%ld %@ %@", "no number", 2.5, 7);
    EXPECT_EQ(log.lines().back(), "Cirrane:  [Screen]  no number:2.5 7 (null) (null) (null) (null) 100%");
}

TEST_F(QZLJournalTest, ASnapshotDoesNotGrow) {
    journal.add("one");
    const std::string snapshot = journal.accumulatedMessages();
    journal.add("two");
    EXPECT_EQ(snapshot, "one\n");
}

TEST_F(QZLJournalTest, MayBeReadByWhoeverHearsItsLogLine) {
    std::string heard;
    platform::setSystemLogSink([&](std::string_view) { heard = journal.accumulatedMessages(); });
    journal.add("one");
    EXPECT_EQ(heard, "one\n");
}

TEST_F(QZLJournalCap, OneUnitShortOfFullAdmitsOneMoreOfAnyLength) {
    EXPECT_EQ(keptAfter({262143}), 262143U);
    EXPECT_EQ(keptAfter({100000}), 362143U);
    EXPECT_EQ(keptAfter({1}), 362143U);
}

TEST_F(QZLJournalCap, FullAdmitsNoneButStillLogs) {
    EXPECT_EQ(keptAfter({262144, 1, 1}), 262144U);
    journal.add("the last");
    EXPECT_EQ(journal.accumulatedMessages().size(), 262144U);
    ASSERT_EQ(log.lines().size(), 4U);
    EXPECT_EQ(log.lines().back(), "||the last");
}

TEST_F(QZLJournalCap, CountsCharactersNotBytes) {
    std::string umlauts;
    for (int i = 0; i < 262143; ++i) {
        umlauts += "\u00e4";
    }
    journal.add(umlauts);
    journal.add("z");
    journal.add("beyond");
    EXPECT_EQ(journal.accumulatedMessages(), umlauts + "z");
}

TEST_F(QZLJournalCap, CountsCharactersBeyondTheFirstPlaneTwice) {
    std::string clouds;
    for (int i = 0; i < 131072; ++i) {
        clouds += "\U0001F324";
    }
    journal.add(clouds);
    journal.add("beyond");
    EXPECT_EQ(journal.accumulatedMessages(), clouds);
}

TEST_F(QZLJournalCap, CountsThePrefixToo) {
    journal.setPrefix("ab");
    EXPECT_EQ(keptAfter({262142, 1}), 262144U);
}

TEST_F(QZLJournalTest, ManyThreadsWriteWholeLines) {
    constexpr int writers = 4;
    constexpr int messages = 200;
    {
        std::vector<std::jthread> threads;
        for (int writer = 0; writer < writers; ++writer) {
            threads.emplace_back([this, writer] {
                for (int i = 0; i < messages; ++i) {
                    journal.setPrefix("[Screen] ");
                    journal.addWithFormat("%d:%d", writer, i);
                }
            });
        }
        threads.emplace_back([this] {
            std::size_t length = 0;
            while (length < 1000) {
                const std::size_t next = journal.accumulatedMessages().size();
                EXPECT_GE(next, length);
                length = next;
                std::this_thread::yield();
            }
        });
    }
    const std::string kept = journal.accumulatedMessages();
    EXPECT_EQ(std::count(kept.begin(), kept.end(), '\n'), writers * messages);
    for (int writer = 0; writer < writers; ++writer) {
        std::size_t position = 0;
        for (int i = 0; i < messages && position != std::string::npos; ++i) {
            position = kept.find(platform::formatted("[Screen] %d:%d\n", writer, i), position);
        }
        EXPECT_NE(position, std::string::npos) << "lines of writer " << writer << " are missing or out of order";
    }
    EXPECT_EQ(log.lines().size(), static_cast<std::size_t>(writers * messages));
}

}  // namespace
