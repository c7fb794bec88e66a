#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

// How tests wait for threads: by looking again and again, never by sleeping a while and hoping.
namespace fake {

/// Only a test that would fail anyway waits this long.
inline constexpr std::chrono::seconds deadline{30};

/// True as soon as the condition is; false when it is not within the deadline.
bool eventually(const std::function<bool()>& condition);

/// A gate that threads wait at.
class Gate {
public:
    void open() { _open = true; }
    bool isOpen() const { return _open; }
    bool wait() const {
        return eventually([this] { return isOpen(); });
    }

private:
    std::atomic<bool> _open = false;
};

pid_t thisThread();
/// True while that thread of this process waits for something: a lock, a semaphore, a time.
bool isAsleep(pid_t thread);

/// A call that runs on a thread of its own from here on, and that may have to wait for something.
class StartedCall {
public:
    explicit StartedCall(std::function<void()> call);
    ~StartedCall() { finish(); }
    StartedCall(const StartedCall&) = delete;
    StartedCall& operator=(const StartedCall&) = delete;

    /// True once it waits; false when it has returned without, or still runs at the deadline.
    bool waits() const;
    bool hasReturned() const { return _returned.isOpen(); }
    /// Returns when the call has.
    void finish();

private:
    std::atomic<pid_t> _id = 0;
    Gate _returned;
    std::thread _thread;
};

/// Ends the process when the scope that it guards has not been left by the deadline: for calls that might never return.
class Watchdog {
public:
    Watchdog();
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void watch();

    std::mutex _mutex;
    std::condition_variable _changed;
    bool _left = false;
    std::thread _thread;
};

}  // namespace fake
