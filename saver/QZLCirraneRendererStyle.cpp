// How the stored settings become style, rates and screenshots.
#include "platform/Clock.hpp"
#include "saver/QZLCirraneRenderer.hpp"
#include "settings/QZLDefaultsManager.hpp"

#include <cmath>
#include <numbers>

namespace {

// Seconds for one turn at speed multiplier 1.
constexpr double motionPeriod = 1875.0;
constexpr double wobblePeriod = 190.0;
constexpr double fBmPeriod = 20000.0;

// Heights of the visible region at zoom 0 and from there to zoom 1, in noise-texture widths. The second is the double
// nearest to 0.4 - 0.04, one unit in the last place above 0.36.
constexpr double closestImageHeight = 0.04;
constexpr double imageHeightRange = 0.36000000000000004;

/// Seconds between screenshots for an entry of the pop-up; null for "off" and for what is no entry.
std::optional<double> screenshotSeconds(std::int64_t interval) {
    switch (interval) {
        case 1: return 2.0;
        case 2: return 5.0;
        case 3: return 10.0;
        default: return std::nullopt;
    }
}

}  // namespace

void QZLCirraneRenderer::updateStyle() {
    const QZLDefaultsManager& defaults = QZLDefaultsManager::sharedInstance();
    _styleColors.store(defaults.colors(), std::memory_order_relaxed);
    _styleBrightness.store(defaults.brightness(), std::memory_order_relaxed);

    const double speed = static_cast<double>(defaults.speed());
    const double zoom = static_cast<double>(defaults.zoom());
    const double multiplier = std::exp2(2.0 * speed - 1.0);
    _styleImageHeight.store(std::pow(zoom, 1.5) * imageHeightRange + closestImageHeight, std::memory_order_relaxed);
    _styleSpeedMultipler.store(multiplier, std::memory_order_relaxed);

    const double turn = 2.0 * multiplier * std::numbers::pi;
    _motionRadiansPerSecond.store(turn / motionPeriod, std::memory_order_relaxed);
    _wobbleRadiansPerSecond.store(turn / wobblePeriod, std::memory_order_relaxed);
    _fBmRadiansPerSecond.store(turn / fBmPeriod, std::memory_order_relaxed);
}

QZLCirraneStyle QZLCirraneRenderer::style() const {
    return {_styleColors.load(std::memory_order_relaxed), _styleBrightness.load(std::memory_order_relaxed),
            _styleImageHeight.load(std::memory_order_relaxed), _styleSpeedMultipler.load(std::memory_order_relaxed)};
}

void QZLCirraneRenderer::configurationChanged() {
    updateStyle();
    _screenshotInterval.store(QZLDefaultsManager::sharedInstance().screenshotInterval(), std::memory_order_relaxed);
}

bool QZLCirraneRenderer::shouldSaveScreenshot() {
    const double now = platform::clock().secondsSinceReferenceDate();
    const auto minimum = screenshotSeconds(_screenshotInterval.load(std::memory_order_relaxed));
    if (!minimum || !(now - _lastScreenshot >= *minimum)) {
        return false;
    }
    _lastScreenshot = now;
    return true;
}
