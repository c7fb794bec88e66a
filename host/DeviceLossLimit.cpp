#include "host/DeviceLossLimit.hpp"

namespace host {

bool DeviceLossLimit::mayRecover(std::chrono::milliseconds now) {
    while (!_recovered.empty() && _recovered.front() <= now - window) {
        _recovered.pop_front();
    }
    _isExhausted = _isExhausted || _recovered.size() >= recoveries;
    if (!_isExhausted) {
        _recovered.push_back(now);
    }
    return !_isExhausted;
}

}  // namespace host
