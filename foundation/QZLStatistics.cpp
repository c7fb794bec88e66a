#include "foundation/QZLStatistics.hpp"

#include "foundation/QZLPrecisionTime.hpp"

namespace {

constexpr double averagingPeriod = 1.0;  // seconds
constexpr double secondsPerNanosecond = 1e-9;

using Stamp = std::atomic<std::uint64_t>;

std::uint64_t stampNow(Stamp& stamp) {
    const std::uint64_t now = QZLPrecisionTimeNanoseconds();
    stamp.store(now, std::memory_order_relaxed);
    return now;
}

std::uint64_t stamped(const Stamp& stamp) {
    return stamp.load(std::memory_order_relaxed);
}

}  // namespace

QZLStatistics::QZLStatistics()
    : _frameRateCounter(averagingPeriod),
      _framePreparationCounter(averagingPeriod),
      _frameRenderingCounter(averagingPeriod),
      _frameElapsedCounter(averagingPeriod) {}

void QZLStatistics::reset() {
    _frameRateCounter.reset();
    _framePreparationCounter.reset();
    _frameRenderingCounter.reset();
    _frameElapsedCounter.reset();
    // The stamps stay: frames in flight still complete after this.
}

void QZLStatistics::recordFramePresented() {
    _frameRateCounter.recordEvent(1);
}

void QZLStatistics::notifyFrameStarted(std::int32_t index) {
    stampNow(_frameStarted[static_cast<std::size_t>(index)]);
}

void QZLStatistics::notifyFrameQueued(std::int32_t index) {
    const auto slot = static_cast<std::size_t>(index);
    const std::uint64_t queued = stampNow(_frameQueued[slot]);
    _framePreparationCounter.recordEvent(queued - stamped(_frameStarted[slot]));
}

void QZLStatistics::notifyFrameScheduled(std::int32_t index) {
    stampNow(_frameScheduled[static_cast<std::size_t>(index)]);
}

void QZLStatistics::notifyFrameCompleted(std::int32_t index) {
    const auto slot = static_cast<std::size_t>(index);
    const std::uint64_t completed = stampNow(_frameCompleted[slot]);
    _frameRenderingCounter.recordEvent(completed - stamped(_frameScheduled[slot]));
    _frameElapsedCounter.recordEvent(completed - stamped(_frameStarted[slot]));
}

double QZLStatistics::frameRate() const {
    return _frameRateCounter.currentAverageRate();
}

double QZLStatistics::framePreparationTime() const {
    return _framePreparationCounter.currentAverageCount() * secondsPerNanosecond;
}

double QZLStatistics::frameRenderingTime() const {
    return _frameRenderingCounter.currentAverageCount() * secondsPerNanosecond;
}

double QZLStatistics::frameElapsedTime() const {
    return _frameElapsedCounter.currentAverageCount() * secondsPerNanosecond;
}
