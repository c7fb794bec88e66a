#pragma once

#include "platform/Error.hpp"
#include "platform/Geometry.hpp"
#include "platform/ui/LayerWidget.hpp"

#include <QtCore/QBasicTimer>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace platform {

/// What a screen saver host meets: a view of one screen, or the small one of a preview. A saver derives from it; the
/// host shows it in a window of its own, starts and stops it, and asks it for its settings. Main thread only; owned by
/// the host. Black until something is drawn. What goes wrong is shown in the view and told by `shownError`.
class ScreenSaverView : public LayerWidget {
public:
    /// `frame` is its place in the window that it will be put in, in points from the top left.
    ScreenSaverView(const Rect& frame, bool isPreview);
    ~ScreenSaverView() override;

    bool isPreview() const { return _isPreview; }
    bool isAnimating() const { return _isAnimating; }
    virtual void startAnimation();
    /// Returns when nothing is drawn or shown any more. May be called at any time.
    virtual void stopAnimation();

    /// Called from the event loop, never inside a paint event, after that part of the view has been painted black.
    virtual void drawRect(const Rect& dirtyRect);

    /// Seconds between two calls of a per-frame operation; below 0 for views, such as all of ours, that have none.
    double animationTimeInterval() const { return _animationTimeInterval; }
    void setAnimationTimeInterval(double seconds) { _animationTimeInterval = seconds; }

    virtual bool hasConfigureSheet() { return false; }
    /// The window of the settings sheet, or null. The view keeps it.
    virtual QWidget* configureSheet() { return nullptr; }

    /// Gives up drawing for good and shows the error screen of that code.
    virtual void showErrorCode(std::int64_t code, std::int64_t subCode) = 0;
    /// The error that the view shows instead of drawing, if it does.
    virtual std::optional<Error> shownError() const = 0;
    /// What a report of a run should say of this saver, by name.
    virtual std::map<std::string, std::uint64_t> facts() const { return {}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    const bool _isPreview;
    bool _isAnimating = false;
    double _animationTimeInterval = 1.0 / 30.0;
    QRect _dirty;  // since the last draw
    QBasicTimer _drawTimer;
};

}  // namespace platform
