#include "host/FrameRecorder.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace host {
namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;
using Seconds = std::chrono::duration<double>;

}  // namespace

Summary summarize(std::vector<double> values) {
    if (values.empty()) {
        return {};
    }
    std::sort(values.begin(), values.end());
    const auto count = static_cast<double>(values.size());
    const auto atRank = [&](double fraction) {
        const auto rank = static_cast<std::size_t>(std::ceil(fraction * count));
        return values[std::max<std::size_t>(rank, 1) - 1];
    };
    return {std::accumulate(values.begin(), values.end(), 0.0) / count, atRank(0.50), atRank(0.99), values.back()};
}

FrameRecorder::FrameRecorder(std::uint64_t frames, Now now) : _limit(frames), _now(now) {
    constexpr std::uint64_t reservedAtMost = 100000;
    _frames.reserve(std::min(frames, reservedAtMost));
}

void FrameRecorder::stamp(const gpu::Drawable& drawable, TimePoint Frame::*point) {
    const TimePoint now = _now();
    const std::lock_guard lock(_mutex);
    if (drawable.identifier() < _frames.size()) {
        _frames[drawable.identifier()].*point = now;
    }
}

void FrameRecorder::drawableTaken(const gpu::Drawable& drawable) {
    const TimePoint now = _now();
    const std::lock_guard lock(_mutex);
    if (drawable.identifier() < _limit) {
        _frames.resize(std::max<std::size_t>(_frames.size(), drawable.identifier() + 1));
        _frames[drawable.identifier()].taken = now;
    }
}

void FrameRecorder::frameCommitted(const gpu::Drawable& drawable) {
    stamp(drawable, &Frame::committed);
}

void FrameRecorder::frameScheduled(const gpu::Drawable& drawable) {
    stamp(drawable, &Frame::scheduled);
}

void FrameRecorder::frameCompleted(const gpu::Drawable& drawable, bool succeeded) {
    if (drawable.identifier() >= _limit) {
        return;
    }
    stamp(drawable, &Frame::completed);
    if (succeeded && _frameHandler) {
        _frameHandler(drawable);
    }
    std::uint64_t completed = 0;
    {
        const std::lock_guard lock(_mutex);
        if (succeeded) {
            _frames[drawable.identifier()].isComplete = true;
            ++_completed;
        } else {
            ++_failed;
        }
        completed = _completed;
    }
    if (_progressHandler) {
        _progressHandler(completed);
    }
}

std::uint64_t FrameRecorder::completedFrames() const {
    const std::lock_guard lock(_mutex);
    return _completed;
}

std::uint64_t FrameRecorder::failedFrames() const {
    const std::lock_guard lock(_mutex);
    return _failed;
}

FrameRecorder::Measurements FrameRecorder::measurements() const {
    const std::lock_guard lock(_mutex);
    std::vector<double> preparation;
    std::vector<double> rendering;
    std::vector<double> elapsed;
    const Frame* first = nullptr;
    const Frame* last = nullptr;
    for (const Frame& frame : _frames) {
        if (frame.isComplete) {
            preparation.push_back(Milliseconds(frame.committed - frame.taken).count());
            rendering.push_back(Milliseconds(frame.completed - frame.scheduled).count());
            elapsed.push_back(Milliseconds(frame.completed - frame.taken).count());
            first = first != nullptr ? first : &frame;
            last = &frame;
        }
    }
    Measurements result;
    if (first == nullptr) {
        return result;
    }
    result.frames = _completed;
    result.wallSeconds = Seconds(last->completed - first->taken).count();
    const double afterFirst = Seconds(last->completed - first->completed).count();
    result.frameRate = afterFirst > 0.0 ? static_cast<double>(_completed - 1) / afterFirst : 0.0;
    result.preparationMs = summarize(std::move(preparation));
    result.renderingMs = summarize(std::move(rendering));
    result.elapsedMs = summarize(std::move(elapsed));
    return result;
}

}  // namespace host
