#include "platform/DisplayLink.hpp"

#include "platform/RefreshSchedule.hpp"
#include "platform/ThreadedDisplayLink.hpp"

#include <pthread.h>
#include <sched.h>

#include <utility>

namespace platform {
namespace {

class TimerTicks final : public TickSource {
public:
    explicit TimerTicks(RefreshPeriod period) : _schedule(period) {}

    void threadStarted() override {
        pthread_setname_np(pthread_self(), "display-link");
        // Even ticks on a busy machine, where that is permitted. Threads that the callback starts, such as a graphics
        // driver's workers, do not inherit it.
        sched_param parameters{};
        parameters.sched_priority = 1;
        static_cast<void>(sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters));
    }

    /// Asked when the call before has returned, so that refreshes which it missed are skipped.
    std::optional<std::chrono::nanoseconds> nextTick(std::chrono::nanoseconds now) const override {
        return _schedule.nextAfter(now);
    }
    std::chrono::nanoseconds outputTime(std::chrono::nanoseconds now) const override {
        return _schedule.nextAfter(now);
    }

private:
    const RefreshSchedule _schedule;
};

class CountedTicks final : public TickSource {
public:
    CountedTicks(RefreshPeriod nominalPeriod, std::uint64_t ticks, std::function<void()> finished)
        : _schedule(nominalPeriod), _ticksLeft(ticks), _finished(std::move(finished)) {}

    void threadStarted() override { pthread_setname_np(pthread_self(), "free-link"); }

    std::optional<std::chrono::nanoseconds> nextTick(std::chrono::nanoseconds now) const override {
        return _ticksLeft > 0 ? std::optional(now) : std::nullopt;
    }
    std::chrono::nanoseconds outputTime(std::chrono::nanoseconds now) const override {
        return _schedule.nextAfter(now);
    }
    void tick() override { --_ticksLeft; }

    void ended() override {
        if (const auto finished = std::exchange(_finished, nullptr)) {
            finished();
        }
    }

private:
    const RefreshSchedule _schedule;
    std::uint64_t _ticksLeft;
    std::function<void()> _finished;
};

}  // namespace

int displayLinkStart(DisplayLink* link) {
    return link != nullptr ? link->start() : displayLinkInvalidArgument;
}

std::unique_ptr<DisplayLink> makeTimerDisplayLink(RefreshPeriod period, std::chrono::milliseconds stopTimeout) {
    return std::make_unique<ThreadedDisplayLink>(period, std::make_shared<TimerTicks>(period), stopTimeout);
}

std::unique_ptr<DisplayLink> makeFreeRunningDisplayLink(RefreshPeriod nominalPeriod, std::uint64_t ticks,
                                                        std::function<void()> finished) {
    return std::make_unique<ThreadedDisplayLink>(
        nominalPeriod, std::make_shared<CountedTicks>(nominalPeriod, ticks, std::move(finished)),
        std::chrono::seconds(2));
}

}  // namespace platform
