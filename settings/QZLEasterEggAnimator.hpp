#pragma once

#include "platform/ui/RepeatingTimer.hpp"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>
#include <cstdint>
#include <memory>

/// One step of a choreography: the views tagged `firstTag` and the `tagCount` - 1 numbers after it fade. A count of 0
/// or less only takes time.
struct QZLEasterEggSequence {
    double startTime = 0.0;  // seconds after the start
    double duration = 1.0;   // seconds, positive
    std::int64_t action = fadeOut;
    std::int32_t firstTag = 0;
    std::int32_t tagCount = 0;

    // Other actions change nothing.
    static constexpr std::int64_t fadeOut = 0;  // and then hide
    static constexpr std::int64_t fadeIn = 1;   // having unhidden first
};

/// Plays a choreography on the tagged views of a window, at 30 ticks for each of its seconds: late ticks slow it down
/// and never make it skip. Holds its view weakly; without it, or without some of its tags, it changes the less. While
/// it runs the timer keeps it alive, to the end or to the application's. Main thread.
class QZLEasterEggAnimator final : public std::enable_shared_from_this<QZLEasterEggAnimator> {
public:
    /// Idle at first. The steps lie in order of their start times and must outlive the animator.
    static std::shared_ptr<QZLEasterEggAnimator> create(QWidget* view, const QZLEasterEggSequence* sequence,
                                                        std::uint64_t length);

    bool isAnimating() const { return _animationTimer != nullptr; }
    /// From the beginning; nothing while animating.
    void startAnimation();
    /// Shows and hides at once what the steps that are left would; nothing unless animating.
    void cancelAnimation();

private:
    QZLEasterEggAnimator(QWidget* view, const QZLEasterEggSequence* sequence, std::uint64_t length);

    void animate(const platform::RepeatingTimer& timer);
    void applyStep(const QZLEasterEggSequence& step, double progress);
    void stopTimer();

    const QPointer<QWidget> _view;
    const QZLEasterEggSequence* const _sequence;
    const std::uint64_t _length;
    std::shared_ptr<platform::RepeatingTimer> _animationTimer;
    double _time = 0.0;
    std::uint64_t _step = 0;  // the first that has not yet completed
};
