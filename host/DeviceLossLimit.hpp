#pragma once

#include <chrono>
#include <deque>

namespace host {

/// How often lost graphics devices are made up for: a reset or a suspend happens now and then, a driver that crashes
/// over and over must not be run into for ever. Main thread.
class DeviceLossLimit {
public:
    static constexpr std::size_t recoveries = 3;
    static constexpr std::chrono::seconds window{60};

    /// A device was lost at this moment. True when another one shall be tried; once false, always false.
    bool mayRecover(std::chrono::milliseconds now);

private:
    std::deque<std::chrono::milliseconds> _recovered;
    bool _isExhausted = false;
};

}  // namespace host
