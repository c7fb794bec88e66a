#pragma once

#include "platform/DisplayLink.hpp"
#include "tests/support/Waiting.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

using fake::deadline;
using fake::eventually;
using fake::Gate;

/// What a link's callback does, and what became of it. The callback's last touch is its count of completed calls, so
/// that a test may go once it has seen that.
class Ticks {
public:
    std::function<void(platform::DisplayLink*)> action;

    static int callback(platform::DisplayLink* link, const platform::DisplayTime* now,
                        const platform::DisplayTime* outputTime, std::uint64_t, std::uint64_t*, void* context) {
        auto* ticks = static_cast<Ticks*>(context);
        if (ticks->_running.exchange(true)) {
            ticks->_overlapped = true;
        }
        ticks->note(*now, *outputTime);
        if (ticks->action) {
            ticks->action(link);
        }
        ticks->_running = false;
        ++ticks->_completed;
        return platform::displayLinkSuccess;
    }

    bool waitForCompleted(std::size_t count) const {
        return eventually([&] { return _completed >= count; });
    }
    std::size_t begun() const { return times().size(); }
    std::vector<platform::DisplayTime> times() const {
        const std::lock_guard lock(_mutex);
        return _times;
    }
    std::vector<platform::DisplayTime> outputTimes() const {
        const std::lock_guard lock(_mutex);
        return _outputTimes;
    }
    std::thread::id thread() const {
        const std::lock_guard lock(_mutex);
        return _thread;
    }
    bool overlapped() const { return _overlapped; }

private:
    void note(const platform::DisplayTime& now, const platform::DisplayTime& outputTime) {
        const std::lock_guard lock(_mutex);
        _times.push_back(now);
        _outputTimes.push_back(outputTime);
        _thread = std::this_thread::get_id();
    }

    mutable std::mutex _mutex;
    std::vector<platform::DisplayTime> _times;
    std::vector<platform::DisplayTime> _outputTimes;
    std::thread::id _thread;
    std::atomic<bool> _running = false;
    std::atomic<bool> _overlapped = false;
    std::atomic<std::size_t> _completed = 0;
};

inline constexpr platform::RefreshPeriod fast{1, 1000};
inline constexpr platform::RefreshPeriod anHour{3600, 1};

inline std::unique_ptr<platform::DisplayLink> makeLink(Ticks& ticks, platform::RefreshPeriod period = fast,
                                                       std::chrono::milliseconds stopTimeout = deadline) {
    auto link = platform::makeTimerDisplayLink(period, stopTimeout);
    EXPECT_EQ(link->setOutputCallback(&Ticks::callback, &ticks), platform::displayLinkSuccess);
    return link;
}
