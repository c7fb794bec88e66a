#include "renderhost/QZLFader.hpp"

#include <cmath>

namespace {

/// Below 1, so that the picture comes quickly out of the black.
constexpr float fadeExponent = 0.8F;

}  // namespace

QZLFader::QZLFader(std::int32_t frames) : _fading(frames > 0), _fadeFrames(frames) {}

float QZLFader::level() {
    if (!_fading.load(std::memory_order_relaxed)) {
        return 1.0F;
    }
    const std::int32_t frame = _currentFrame.load(std::memory_order_relaxed);
    const float base = static_cast<float>(frame) / static_cast<float>(_fadeFrames);
    _currentFrame.store(frame + 1, std::memory_order_relaxed);
    _fading.store(frame + 1 < _fadeFrames, std::memory_order_relaxed);
    return std::pow(base, fadeExponent);
}

void QZLFader::reset() {
    _currentFrame.store(0, std::memory_order_relaxed);
    _fading.store(_fadeFrames > 0, std::memory_order_relaxed);
}
