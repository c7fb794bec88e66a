#pragma once

#include "platform/ui/PopUpButton.hpp"
#include "platform/ui/Slider.hpp"
#include "settings/QZLConfigureController.hpp"
#include "settings/QZLEasterEggAnimator.hpp"

#include <QtWidgets/QCheckBox>
#include <memory>

/// The clouds' settings sheet: edits the seven settings and holds three small hidden animations, which modifier keys
/// start. It reads the store when its window is loaded and after a reset, and writes it when it is closed. Main thread.
class QZLCirraneController final : public QZLConfigureController {
public:
    QZLCirraneController();

    void closeSheet() override;
    /// With exactly Option held.
    void startDedicationEasterEgg();
    /// With exactly Command held.
    void startShowExtraEasterEgg();
    void startHideExtraEasterEgg();

protected:
    void windowDidLoad() override;
    void loadValues() override;
    void storeValues() override;

private:
    bool canStartExtra() const;

    QPointer<platform::Slider> _colors;
    QPointer<platform::Slider> _brightness;
    QPointer<platform::Slider> _speed;
    QPointer<platform::Slider> _zoom;
    QPointer<platform::PopUpButton> _multiScreen;
    QPointer<platform::PopUpButton> _screenshotInterval;
    QPointer<QCheckBox> _diagnostics;
    std::shared_ptr<QZLEasterEggAnimator> _dedicationEasterEgg;
    std::shared_ptr<QZLEasterEggAnimator> _extraShowEasterEgg;
    std::shared_ptr<QZLEasterEggAnimator> _extraHideEasterEgg;
};
