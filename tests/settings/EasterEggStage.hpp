#pragma once

#include "platform/ui/TaggedViews.hpp"
#include "settings/QZLEasterEggAnimator.hpp"
#include "tests/support/FakeTimers.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <optional>
#include <vector>

/// A view with tagged views in it, choreographies over them, and a timer that ticks when the test says so.
class EasterEggStage : public testing::Test {
protected:
    using Step = QZLEasterEggSequence;
    static constexpr std::int64_t out = Step::fadeOut;
    static constexpr std::int64_t in = Step::fadeIn;

    /// Views of these tags. They are visible, and opaque.
    void makeViews(std::initializer_list<std::int32_t> tags) {
        for (const std::int32_t tag : tags) {
            (new QWidget(stage.get()))->setProperty("tag", tag);
        }
    }

    /// The choreography stays where it is until the next is made.
    std::shared_ptr<QZLEasterEggAnimator> makeAnimator(std::vector<Step> steps) {
        _steps = std::move(steps);
        return QZLEasterEggAnimator::create(stage.get(), _steps.data(), _steps.size());
    }

    /// The groups 1 and 2 change places, as in the sheet.
    std::shared_ptr<QZLEasterEggAnimator> makeSwap() {
        makeViews({1, 2, 3, 4, 5});
        for (const std::int32_t tag : {3, 4, 5}) {
            hide(tag);
        }
        return makeAnimator({{0.0, 0.3, out, 1, 2}, {0.6, 0.3, in, 3, 3}});
    }

    QWidget& view(std::int32_t tag) const { return *platform::viewWithTag(stage.get(), tag); }
    void hide(std::int32_t tag) const { platform::setHidden(view(tag), true); }
    double alpha(std::int32_t tag) const { return platform::alphaValue(view(tag)); }
    bool isHidden(std::int32_t tag) const { return platform::isHidden(view(tag)); }

    fake::Timers timers;
    std::unique_ptr<QWidget> stage = std::make_unique<QWidget>();

private:
    std::vector<Step> _steps;
};
