#pragma once

#include <chrono>

namespace host {

/// Lets other threads wake one that waits. `notify` may be called from any thread, any number of times.
class WakeEvent {
public:
    WakeEvent();
    ~WakeEvent();
    WakeEvent(const WakeEvent&) = delete;
    WakeEvent& operator=(const WakeEvent&) = delete;

    void notify();
    /// Returns after a notification (also one from before), when the other file descriptor (-1 for none) is readable,
    /// or when the time has passed.
    void wait(int otherFileDescriptor, std::chrono::milliseconds timeout);

private:
    int _fileDescriptor;
};

}  // namespace host
