#pragma once

#include <atomic>
#include <cstdint>

/// Gives the brightness of each frame of a fade-in, then 1. `level` belongs to the drawing thread; `reset` may
/// come from any and takes effect with the next `level` that begins, never lost.
class QZLFader {
public:
    /// A count of 0 or less never fades.
    explicit QZLFader(std::int32_t frames);

    /// The level of this frame, 0 to 1; advances the fade by one frame.
    float level();
    /// Starts the fade again.
    void reset();

private:
    bool _fading;
    const std::int32_t _fadeFrames;
    std::int32_t _currentFrame = 0;
    std::atomic<bool> _resetRequested{false};
};
