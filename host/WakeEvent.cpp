#include "host/WakeEvent.hpp"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cstdint>

namespace host {

WakeEvent::WakeEvent() : _fileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

WakeEvent::~WakeEvent() {
    if (_fileDescriptor >= 0) {
        close(_fileDescriptor);
    }
}

void WakeEvent::notify() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(_fileDescriptor, &one, sizeof one);
}

void WakeEvent::wait(int otherFileDescriptor, std::chrono::milliseconds timeout) {
    std::array<pollfd, 2> waited{{{_fileDescriptor, POLLIN, 0}, {otherFileDescriptor, POLLIN, 0}}};
    poll(waited.data(), waited.size(), static_cast<int>(timeout.count()));
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = read(_fileDescriptor, &count, sizeof count);
}

}  // namespace host
