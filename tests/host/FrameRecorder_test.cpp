#include "host/FrameRecorder.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using host::FrameRecorder;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// A drawable with nothing behind it.
class NumberedDrawable final : public gpu::Drawable {
public:
    explicit NumberedDrawable(std::uint64_t identifier) { assign({}, nullptr, identifier); }
};

steady_clock::time_point virtualNow;

class FrameRecorderTest : public testing::Test {
protected:
    FrameRecorderTest() { virtualNow = steady_clock::time_point(milliseconds(1000)); }

    static FrameRecorder makeRecorder(std::uint64_t frames) {
        return FrameRecorder(frames, [] { return virtualNow; });
    }

    static void wait(int time) { virtualNow += milliseconds(time); }

    /// One frame: 2 ms to prepare, 1 ms in the queue, `rendering` ms on the GPU.
    static void runFrame(FrameRecorder& recorder, std::uint64_t identifier, int rendering) {
        const NumberedDrawable drawable(identifier);
        recorder.drawableTaken(drawable);
        wait(2);
        recorder.frameCommitted(drawable);
        wait(1);
        recorder.frameScheduled(drawable);
        wait(rendering);
        recorder.frameCompleted(drawable, true);
    }
};

TEST_F(FrameRecorderTest, MeasuresTheStagesOfAFrame) {
    FrameRecorder recorder = makeRecorder(1);
    runFrame(recorder, 0, 7);
    const auto measured = recorder.measurements();
    EXPECT_EQ(measured.frames, 1U);
    EXPECT_DOUBLE_EQ(measured.preparationMs.mean, 2.0);
    EXPECT_DOUBLE_EQ(measured.renderingMs.mean, 7.0);
    EXPECT_DOUBLE_EQ(measured.elapsedMs.mean, 10.0);
    EXPECT_DOUBLE_EQ(measured.wallSeconds, 0.010);
    EXPECT_EQ(measured.frameRate, 0.0) << "one frame has no rate";
}

TEST_F(FrameRecorderTest, FrameRateCountsTheFramesAfterTheFirst) {
    FrameRecorder recorder = makeRecorder(5);
    runFrame(recorder, 0, 97);  // a slow start must not count
    for (std::uint64_t i = 1; i < 5; ++i) {
        runFrame(recorder, i, 7);  // 10 ms each
    }
    EXPECT_DOUBLE_EQ(recorder.measurements().frameRate, 100.0);
    EXPECT_DOUBLE_EQ(recorder.measurements().wallSeconds, 0.140);
}

TEST_F(FrameRecorderTest, IgnoresFramesBeyondItsLimit) {
    FrameRecorder recorder = makeRecorder(2);
    for (std::uint64_t i = 0; i < 4; ++i) {
        runFrame(recorder, i, 7);
    }
    EXPECT_EQ(recorder.completedFrames(), 2U);
    EXPECT_EQ(recorder.measurements().frames, 2U);
}

TEST_F(FrameRecorderTest, CountsFailedFramesApart) {
    FrameRecorder recorder = makeRecorder(2);
    const NumberedDrawable drawable(0);
    recorder.drawableTaken(drawable);
    recorder.frameCompleted(drawable, false);
    EXPECT_EQ(recorder.completedFrames(), 0U);
    EXPECT_EQ(recorder.failedFrames(), 1U);
    EXPECT_EQ(recorder.measurements().frames, 0U);
}

TEST_F(FrameRecorderTest, HandsOverEachFrameBeforeItCounts) {
    FrameRecorder recorder = makeRecorder(2);
    std::vector<std::uint64_t> countsSeen;
    recorder.setFrameHandler([&](const gpu::Drawable&) { countsSeen.push_back(recorder.completedFrames()); });
    runFrame(recorder, 0, 7);
    runFrame(recorder, 1, 7);
    EXPECT_EQ(countsSeen, (std::vector<std::uint64_t>{0, 1}));
}

TEST(Summary, OfNothingIsZero) {
    const host::Summary summary = host::summarize({});
    EXPECT_EQ(summary.mean, 0.0);
    EXPECT_EQ(summary.p99, 0.0);
}

TEST(Summary, TakesPercentilesByNearestRank) {
    std::vector<double> values;
    for (int i = 100; i >= 1; --i) {
        values.push_back(i);
    }
    const host::Summary summary = host::summarize(values);
    EXPECT_DOUBLE_EQ(summary.mean, 50.5);
    EXPECT_DOUBLE_EQ(summary.p50, 50.0);
    EXPECT_DOUBLE_EQ(summary.p99, 99.0);
    EXPECT_DOUBLE_EQ(summary.max, 100.0);
}

}  // namespace
