#pragma once

#include "settings/QZLEasterEggAnimator.hpp"

#include <memory>

class QWidget;

// The sheet's hidden animations over a view, its window's content; each ready to start. Tags 300 to 304 are the sheet's
// ordinary content, 100 to 117 a group of it that 200 to 203 take the place of, 400 to 404 the dedication.

std::shared_ptr<QZLEasterEggAnimator> QZLCreateDedicationEasterEggAnimator(QWidget* view);
std::shared_ptr<QZLEasterEggAnimator> QZLCreateExtraShowEasterEggAnimator(QWidget* view);
std::shared_ptr<QZLEasterEggAnimator> QZLCreateExtraHideEasterEggAnimator(QWidget* view);
