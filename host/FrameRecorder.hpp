#pragma once

#include "platform/gpu/Layer.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace host {

/// How a set of measured values lies; all 0 for an empty one.
struct Summary {
    double mean = 0.0;
    double p50 = 0.0;
    double p99 = 0.0;
    double max = 0.0;
};

/// Percentiles are the nearest rank.
Summary summarize(std::vector<double> values);

/// Takes the time of each of a layer's first `frames` frames at the four points of its life; further ones are ignored.
/// An observer of the layer; its results may be read from any thread.
class FrameRecorder final : public gpu::FrameObserver {
public:
    using Now = std::chrono::steady_clock::time_point (*)();

    explicit FrameRecorder(std::uint64_t frames, Now now = std::chrono::steady_clock::now);

    /// Called for each recorded frame when it has completed, on the completion thread, before it counts as such.
    void setFrameHandler(std::function<void(const gpu::Drawable&)> handler) { _frameHandler = std::move(handler); }
    /// Called on the completion thread after each recorded frame, with the number completed so far.
    void setProgressHandler(std::function<void(std::uint64_t)> handler) { _progressHandler = std::move(handler); }

    std::uint64_t completedFrames() const;
    std::uint64_t failedFrames() const;

    struct Measurements {
        std::uint64_t frames = 0;
        /// From the first drawable taken to the last frame completed.
        double wallSeconds = 0.0;
        /// Frames after the first over the seconds from the first one's completion to the last one's; 0 for one frame.
        double frameRate = 0.0;
        Summary preparationMs;  ///< drawable taken to committed
        Summary renderingMs;    ///< scheduled to completed
        Summary elapsedMs;      ///< drawable taken to completed
    };
    Measurements measurements() const;

    void drawableTaken(const gpu::Drawable& drawable) override;
    void frameCommitted(const gpu::Drawable& drawable) override;
    void frameScheduled(const gpu::Drawable& drawable) override;
    void frameCompleted(const gpu::Drawable& drawable, bool succeeded) override;

private:
    using TimePoint = std::chrono::steady_clock::time_point;
    struct Frame {
        TimePoint taken;
        TimePoint committed;
        TimePoint scheduled;
        TimePoint completed;
        bool isComplete = false;
    };

    void stamp(const gpu::Drawable& drawable, TimePoint Frame::*point);

    const std::uint64_t _limit;
    const Now _now;
    std::function<void(const gpu::Drawable&)> _frameHandler;
    std::function<void(std::uint64_t)> _progressHandler;
    mutable std::mutex _mutex;
    std::vector<Frame> _frames;  // by the drawable's identifier
    std::uint64_t _completed = 0;
    std::uint64_t _failed = 0;
};

}  // namespace host
