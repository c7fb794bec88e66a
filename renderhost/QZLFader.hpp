#pragma once

#include <cstdint>

/// Gives the brightness of each frame of a fade-in, then 1. Not thread-safe: it belongs to the drawing thread.
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
    std::int32_t _fadeFrames;
    std::int32_t _currentFrame;
};
