#pragma once

#include "foundation/QZLStatistics.hpp"
#include "saver/QZLCirraneRenderer.hpp"

#include <memory>
#include <optional>
#include <utility>

/// The clouds' renderer as a view of screen 0 treats it: attached at its first start, and after each time that it was
/// detached.
class StartedRenderer {
public:
    explicit StartedRenderer(std::shared_ptr<platform::HostView> view) : _view(std::move(view)) {}

    std::optional<platform::Error> start() {
        if (!_renderer->isAttached()) {
            if (auto error = _renderer->attachToView(_view, false, 0, _statistics)) {
                _renderer->detachFromView();
                return error;
            }
        }
        _renderer->startAnimation();
        return std::nullopt;
    }

    void stopAndDetach() {
        _renderer->stopAnimation();
        _renderer->detachFromView();
    }

private:
    std::shared_ptr<platform::HostView> _view;
    std::shared_ptr<QZLStatistics> _statistics = std::make_shared<QZLStatistics>();
    std::shared_ptr<QZLCirraneRenderer> _renderer = QZLMakeRenderer<QZLCirraneRenderer>();
};
