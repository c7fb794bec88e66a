#include "settings/QZLEasterEggAnimator.hpp"

#include "platform/ui/TaggedViews.hpp"

#include <algorithm>
#include <utility>

namespace {

constexpr double tickInterval = 1.0 / 30.0;  // seconds

/// Calls `change` with every view of the step's group that there is. Any call may destroy views.
template <typename Change>
void forEachView(const QPointer<QWidget>& root, const QZLEasterEggSequence& step, const Change& change) {
    for (std::int32_t k = 0; k < step.tagCount; ++k) {
        const auto tag =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(step.firstTag) + static_cast<std::uint32_t>(k));
        if (QWidget* view = platform::viewWithTag(root, tag)) {
            change(*view);
        }
    }
}

}  // namespace

std::shared_ptr<QZLEasterEggAnimator> QZLEasterEggAnimator::create(QWidget* view, const QZLEasterEggSequence* sequence,
                                                                   std::uint64_t length) {
    return std::shared_ptr<QZLEasterEggAnimator>(new QZLEasterEggAnimator(view, sequence, length));
}

QZLEasterEggAnimator::QZLEasterEggAnimator(QWidget* view, const QZLEasterEggSequence* sequence, std::uint64_t length)
    : _view(view), _sequence(sequence), _length(length) {}

void QZLEasterEggAnimator::startAnimation() {
    if (isAnimating()) {
        return;
    }
    _animationTimer = platform::scheduleTimer(
        tickInterval, [self = shared_from_this()](platform::RepeatingTimer& timer) { self->animate(timer); });
    _time = 0.0;
    _step = 0;
}

void QZLEasterEggAnimator::stopTimer() {
    // It may hold the last reference to this object, so nothing may follow it.
    if (const auto timer = std::exchange(_animationTimer, nullptr)) {
        timer->invalidate();
    }
}

void QZLEasterEggAnimator::cancelAnimation() {
    if (!isAnimating()) {
        return;
    }
    const auto self = shared_from_this();
    stopTimer();
    while (_step < _length) {
        const QZLEasterEggSequence& step = _sequence[_step++];
        forEachView(_view, step, [&step](QWidget& view) {
            if (step.action == QZLEasterEggSequence::fadeIn) {
                platform::setAlphaValue(view, 1.0);
                platform::setHidden(view, false);
            } else if (step.action == QZLEasterEggSequence::fadeOut) {
                platform::setHidden(view, true);
            }
        });
    }
}

void QZLEasterEggAnimator::applyStep(const QZLEasterEggSequence& step, double progress) {
    if (step.action == QZLEasterEggSequence::fadeOut) {
        const double out = std::clamp(1.0 - progress, 0.0, 1.0);
        forEachView(_view, step, [out](QWidget& view) {
            platform::setAlphaValue(view, out);
            platform::setHidden(view, out == 0.0);
        });
    } else if (_step < _length && _sequence[_step].action == QZLEasterEggSequence::fadeIn) {
        // That the current step's action counts, not this one's, is meant: it shows only while steps overlap.
        const double in = std::clamp(progress, 0.0, 1.0);
        forEachView(_view, step, [in](QWidget& view) {
            platform::setAlphaValue(view, in);
            platform::setHidden(view, false);
        });
    }
}

void QZLEasterEggAnimator::animate(const platform::RepeatingTimer& timer) {
    _time += timer.timeInterval();
    for (std::uint64_t i = _step; i < _length && _time >= _sequence[i].startTime; ++i) {
        const QZLEasterEggSequence& step = _sequence[i];
        const double progress = (_time - step.startTime) / step.duration;
        applyStep(step, progress);
        if (i == _step && progress >= 1.0) {
            _step = i + 1;
        }
    }
    if (_step >= _length) {
        stopTimer();
    }
}
