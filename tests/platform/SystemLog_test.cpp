#include "platform/SystemLog.hpp"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

/// Sends standard error to another descriptor for the life of this object.
class StandardErrorTo {
public:
    explicit StandardErrorTo(int descriptor) : _former(dup(STDERR_FILENO)) { dup2(descriptor, STDERR_FILENO); }
    ~StandardErrorTo() {
        dup2(_former, STDERR_FILENO);
        close(_former);
    }

private:
    int _former;
};

std::string readSome(int descriptor) {
    std::array<char, 4096> bytes;
    const ssize_t count = read(descriptor, bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

TEST(SystemLog, ASinkTakesTheLinesAsTheyAre) {
    std::vector<std::string> lines;
    platform::setSystemLogSink([&lines](std::string_view line) { lines.emplace_back(line); });
    platform::systemLog("Cirrane: 100 %s %n");
    platform::systemLog("");
    platform::setSystemLogSink({});
    platform::systemLog("not for the sink");

    EXPECT_EQ(lines, (std::vector<std::string>{"Cirrane: 100 %s %n", ""}));
}

TEST(SystemLog, ASinkMayLogItself) {
    int calls = 0;
    platform::setSystemLogSink([&calls](std::string_view) {
        if (++calls < 3) {
            platform::systemLog("again");
        }
    });
    platform::systemLog("once");
    platform::setSystemLogSink({});

    EXPECT_EQ(calls, 3);
}

TEST(SystemLog, AReplacedSinkMayLogAsItGoes) {
    struct Farewell {
        ~Farewell() { platform::systemLog("gone"); }
    };
    std::vector<std::string> lines;
    platform::setSystemLogSink([farewell = std::make_shared<Farewell>()](std::string_view) {});
    platform::setSystemLogSink([&lines](std::string_view line) { lines.emplace_back(line); });
    platform::setSystemLogSink({});

    EXPECT_EQ(lines, std::vector<std::string>{"gone"});
}

TEST(SystemLog, LinesOfManyThreadsAllArrive) {
    std::mutex mutex;
    int lines = 0;
    platform::setSystemLogSink([&](std::string_view) {
        const std::lock_guard lock(mutex);
        ++lines;
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int line = 0; line < 250; ++line) {
                platform::systemLog("line");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    platform::setSystemLogSink({});

    EXPECT_EQ(lines, 1000);
}

TEST(SystemLog, LinesGoToStandardErrorWhenThatIsATerminal) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
        GTEST_SKIP() << "no terminals here";
    }
    const int screen = open(ptsname(terminal), O_RDWR | O_NOCTTY);
    ASSERT_GE(screen, 0);
    {
        const StandardErrorTo redirected(screen);
        platform::systemLog("50 %d done");
    }
    EXPECT_EQ(readSome(terminal), "50 %d done\r\n");
    close(screen);
    close(terminal);
}

TEST(SystemLog, NothingGoesToStandardErrorWhenThatIsNoTerminal) {
    std::array<int, 2> ends;
    ASSERT_EQ(pipe(ends.data()), 0);
    {
        const StandardErrorTo redirected(ends[1]);
        platform::systemLog("quiet");
    }
    close(ends[1]);
    EXPECT_EQ(readSome(ends[0]), "");
    close(ends[0]);
}

}  // namespace
