#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// The calendar time that both loops grow their clouds from, so that they draw the same picture.
inline constexpr std::int64_t calendarSeconds = 1700000000;
/// The display rate that both loops animate for; how fast they really run has no influence on the pictures.
inline constexpr std::int32_t nominalRate = 60;
/// Frames that may be under way at once.
inline constexpr std::size_t slots = 3;

enum class Pace {
    /// A frame begins as soon as it gets a slot.
    AsFastAsPossible,
    /// A frame begins a little after its slot has been given back, with another frame still under way: what the drawing
    /// thread then does is preparing and committing the frame, and no waiting for others.
    SlotIsFree,
};
/// That little, in which who gave the slot back comes to rest.
inline constexpr std::chrono::microseconds settling{500};

enum class LastPicture { Read, Ignored };

/// What came of drawing some frames.
struct Run {
    /// Frames after the first over the seconds from the first one's completion to the last one's.
    double framesPerSecond = 0.0;
    /// CPU time of the drawing thread for each frame: at `SlotIsFree` from having its slot to after its commit,
    /// otherwise with the wait for the slot (which takes no CPU time but the system call's).
    std::vector<double> cpuMicroseconds;
    /// The last frame, where it was to be read: 4 bytes a pixel, top row first.
    std::vector<std::byte> lastPicture;
};

/// Draws the default cloudscape off the screen, always from the same start. Throws std::exception when it cannot.
class Loop {
public:
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;
    virtual ~Loop() = default;
    virtual Run run(std::size_t frames, Pace pace, LastPicture lastPicture) = 0;

protected:
    Loop() = default;
};

/// CPU time that the calling thread has used, in microseconds.
double threadCpuMicroseconds();

/// Called by the loops on their drawing thread around all that they do for a frame; settable by who counts something.
struct FrameHooks {
    void (*begin)(std::size_t frame) = nullptr;
    void (*end)() = nullptr;
    /// On any thread, once per run, when the first frame has completed.
    void (*firstCompleted)() = nullptr;
};
FrameHooks& frameHooks();

}  // namespace bench
