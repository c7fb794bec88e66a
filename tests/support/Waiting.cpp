#include "tests/support/Waiting.hpp"

#include "tests/support/Files.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace fake {

bool eventually(const std::function<bool()>& condition) {
    const auto giveUp = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > giveUp) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    return true;
}

pid_t thisThread() {
    return gettid();
}

bool isAsleep(pid_t thread) {
    // "1234 (name) S ...": the name may hold anything, the state is the word after its end.
    const std::string status = readFile("/proc/self/task/" + std::to_string(thread) + "/stat");
    const std::size_t end = status.rfind(") ");
    return end != std::string::npos && status[end + 2] == 'S';
}

StartedCall::StartedCall(std::function<void()> call)
    : _thread([this, call = std::move(call)] {
          _id = thisThread();
          call();
          _returned.open();
      }) {}

bool StartedCall::waits() const {
    return eventually([this] { return hasReturned() || (_id != 0 && isAsleep(_id)); }) && !hasReturned();
}

void StartedCall::finish() {
    if (_thread.joinable()) {
        _thread.join();
    }
}

Watchdog::Watchdog() : _thread([this] { watch(); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(_mutex);
        _left = true;
    }
    _changed.notify_one();
    _thread.join();
}

void Watchdog::watch() {
    std::unique_lock lock(_mutex);
    if (!_changed.wait_for(lock, deadline, [this] { return _left; })) {
        std::fputs("The watchdog bit: a call that must return did not.\n", stderr);
        std::abort();
    }
}

}  // namespace fake
