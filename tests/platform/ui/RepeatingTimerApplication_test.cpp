// Timers and the application object whose loop they live in.
#include "platform/ui/RepeatingTimer.hpp"

#include "tests/support/EventLoop.hpp"

#include <gtest/gtest.h>

#include <QtWidgets/QApplication>
#include <memory>

namespace {

using platform::RepeatingTimer;
using platform::scheduleTimer;

class RepeatingTimerApplication : public testing::Test {
protected:
    RepeatingTimerApplication() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

    static std::unique_ptr<QApplication> start() {
        static int argumentCount = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        return std::make_unique<QApplication>(argumentCount, arguments);
    }
};

TEST_F(RepeatingTimerApplication, WithoutOneThereIsNoTimer) {
    EXPECT_EQ(scheduleTimer(0.001, [](RepeatingTimer&) {}), nullptr);
}

TEST_F(RepeatingTimerApplication, ItsEndLetsGoOfWhatRunningTimersHold) {
    auto application = start();
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> watched = held;
    static_cast<void>(scheduleTimer(1000.0, [held = std::move(held)](RepeatingTimer&) {}));
    EXPECT_FALSE(watched.expired());
    application.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(RepeatingTimerApplication, ATimerThatOutlivesItMayBeInvalidated) {
    auto application = start();
    const auto timer = scheduleTimer(0.001, [](RepeatingTimer&) {});
    application.reset();
    timer->invalidate();
    EXPECT_EQ(timer->timeInterval(), 0.001);
}

TEST_F(RepeatingTimerApplication, TimersRunInALoopThatWasLeftAndEnteredAgain) {
    const auto application = start();
    int calls = 0;
    const auto timer = scheduleTimer(0.001, [&](RepeatingTimer&) {
        ++calls;
        QApplication::quit();
    });
    QApplication::exec();
    const int before = calls;
    QApplication::exec();
    EXPECT_GT(calls, before);
    timer->invalidate();
}

}  // namespace
