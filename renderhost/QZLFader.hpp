#pragma once

#include <atomic>
#include <cstdint>

/// Gives the brightness of each frame of a fade-in, then 1. `level` belongs to the drawing thread; a `reset` from
/// another one takes effect with the next frame or the one after.
class QZLFader {
public:
    /// A count of 0 or less never fades.
    explicit QZLFader(std::int32_t frames);

    /// The level of this frame, 0 to 1; advances the fade by one frame.
    float level();
    /// Starts the fade again.
    void reset();

private:
    std::atomic<bool> _fading;
    const std::int32_t _fadeFrames;
    std::atomic<std::int32_t> _currentFrame{0};
};
