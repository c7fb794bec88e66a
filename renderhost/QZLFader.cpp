#include "renderhost/QZLFader.hpp"

#include <cmath>

namespace {

/// Below 1, so that the picture comes quickly out of the black.
constexpr float fadeExponent = 0.8F;

}  // namespace

QZLFader::QZLFader(std::int32_t frames) : _fading(frames > 0), _fadeFrames(frames) {}

float QZLFader::level() {
    if (_resetRequested.exchange(false, std::memory_order_relaxed)) {
        _currentFrame = 0;
        _fading = _fadeFrames > 0;
    }
    if (!_fading) {
        return 1.0F;
    }
    const float base = static_cast<float>(_currentFrame) / static_cast<float>(_fadeFrames);
    ++_currentFrame;
    _fading = _currentFrame < _fadeFrames;
    return std::pow(base, fadeExponent);
}

void QZLFader::reset() {
    _resetRequested.store(true, std::memory_order_relaxed);
}
