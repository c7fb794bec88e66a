#pragma once

#include "foundation/QZLCounter.hpp"

#include <array>
#include <atomic>
#include <cstdint>

/// Turns time stamps at four points of every frame's life into frame rate and preparation, rendering and elapsed times,
/// averaged over one second. Owned by a view, shared with its renderer. Fed from the drawing and the completion thread,
/// read from any; never allocates. The index is the frame's in-flight slot, 0 to 2, and is not checked.
class QZLStatistics {
public:
    QZLStatistics();

    void reset();
    void recordFramePresented();
    void notifyFrameStarted(std::int32_t index);
    void notifyFrameQueued(std::int32_t index);
    void notifyFrameScheduled(std::int32_t index);
    void notifyFrameCompleted(std::int32_t index);

    /// Frames per second.
    double frameRate() const;
    /// Seconds from frame start to frame queued.
    double framePreparationTime() const;
    /// Seconds from scheduled to completed.
    double frameRenderingTime() const;
    /// Seconds from frame start to completed.
    double frameElapsedTime() const;

private:
    using Stamps = std::array<std::atomic<std::uint64_t>, 3>;  // nanoseconds, by in-flight slot

    QZLCounter _frameRateCounter;
    QZLCounter _framePreparationCounter;
    QZLCounter _frameRenderingCounter;
    QZLCounter _frameElapsedCounter;
    Stamps _frameStarted{};
    Stamps _frameQueued{};
    Stamps _frameScheduled{};
    Stamps _frameCompleted{};
};
