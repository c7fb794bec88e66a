#include "saver/QZLCirraneController.hpp"

#include "platform/ui/CurrentEvent.hpp"
#include "saver/QZLCirraneEasterEggs.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "settings/QZLEventModifiers.hpp"

namespace {

constexpr const char* formName = "Cirrane";

void show(platform::Slider* slider, float value) {
    if (slider != nullptr) {
        slider->setFloatValue(value);
    }
}

void show(platform::PopUpButton* popUp, std::int64_t index) {
    if (popUp != nullptr) {
        popUp->selectItemAtIndex(index);
    }
}

/// There is none before the form is loaded.
bool canStart(const std::shared_ptr<QZLEasterEggAnimator>& animator) {
    return animator != nullptr && !animator->isAnimating();
}

}  // namespace

QZLCirraneController::QZLCirraneController() : QZLConfigureController(formName) {
    addOutlet("_colors", _colors);
    addOutlet("_brightness", _brightness);
    addOutlet("_speed", _speed);
    addOutlet("_zoom", _zoom);
    addOutlet("_multiScreen", _multiScreen);
    addOutlet("_screenshotInterval", _screenshotInterval);
    addOutlet("_diagnostics", _diagnostics);
    addAction("startDedicationEasterEgg:", [this] { startDedicationEasterEgg(); });
    addAction("startShowExtraEasterEgg:", [this] { startShowExtraEasterEgg(); });
    addAction("startHideExtraEasterEgg:", [this] { startHideExtraEasterEgg(); });
}

void QZLCirraneController::windowDidLoad() {
    QZLConfigureController::windowDidLoad();
    if (_colors != nullptr) {
        _colors->setFocus();
    }
    QWidget* const content = window();
    _dedicationEasterEgg = QZLCreateDedicationEasterEggAnimator(content);
    _extraShowEasterEgg = QZLCreateExtraShowEasterEggAnimator(content);
    _extraHideEasterEgg = QZLCreateExtraHideEasterEggAnimator(content);
}

void QZLCirraneController::loadValues() {
    QZLConfigureController::loadValues();
    const auto& defaults = QZLDefaultsManager::sharedInstance();
    show(_colors, defaults.colors());
    show(_brightness, defaults.brightness());
    show(_speed, defaults.speed());
    show(_zoom, defaults.zoom());
    show(_multiScreen, defaults.multiScreen() ? 1 : 0);
    show(_screenshotInterval, defaults.screenshotInterval());
    if (_diagnostics != nullptr) {
        _diagnostics->setChecked(defaults.diagnostics());
    }
}

void QZLCirraneController::storeValues() {
    auto& defaults = QZLDefaultsManager::sharedInstance();
    if (_colors != nullptr) {
        defaults.setColors(_colors->floatValue());
    }
    if (_brightness != nullptr) {
        defaults.setBrightness(_brightness->floatValue());
    }
    if (_speed != nullptr) {
        defaults.setSpeed(_speed->floatValue());
    }
    if (_zoom != nullptr) {
        defaults.setZoom(_zoom->floatValue());
    }
    if (_multiScreen != nullptr) {
        defaults.setMultiScreen(_multiScreen->indexOfSelectedItem() != 0);
    }
    if (_screenshotInterval != nullptr) {
        defaults.setScreenshotInterval(_screenshotInterval->indexOfSelectedItem());
    }
    if (_diagnostics != nullptr) {
        defaults.setDiagnostics(_diagnostics->isChecked());
    }
    QZLConfigureController::storeValues();
}

/// Leaves the animations' views as they would be at the end.
void QZLCirraneController::closeSheet() {
    for (const auto& animator : {_dedicationEasterEgg, _extraShowEasterEgg, _extraHideEasterEgg}) {
        if (animator != nullptr) {
            animator->cancelAnimation();
        }
    }
    QZLConfigureController::closeSheet();
}

void QZLCirraneController::startDedicationEasterEgg() {
    if (canStart(_dedicationEasterEgg) && QZLEventModifierFlagsMatch(platform::eventModifierFlagOption)) {
        _dedicationEasterEgg->startAnimation();
    }
}

void QZLCirraneController::startShowExtraEasterEgg() {
    if (canStartExtra() && QZLEventModifierFlagsMatch(platform::eventModifierFlagCommand)) {
        _extraShowEasterEgg->startAnimation();
    }
}

/// Any click hides what only one with the right key shows.
void QZLCirraneController::startHideExtraEasterEgg() {
    if (canStartExtra()) {
        _extraHideEasterEgg->startAnimation();
    }
}

bool QZLCirraneController::canStartExtra() const {
    return canStart(_extraShowEasterEgg) && canStart(_extraHideEasterEgg);
}
