#include "platform/ui/Slider.hpp"

#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOptionSlider>
#include <cmath>

namespace platform {
namespace {

constexpr int stepCount = 100;  // so that assistive technologies tell per cent
constexpr int stepsPerKey = 1;
constexpr int stepsPerPage = 10;

}  // namespace

Slider::Slider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    setRange(0, stepCount);
    setSingleStep(stepsPerKey);
    setPageStep(stepsPerPage);
    setFocusPolicy(Qt::StrongFocus);  // the wheel does not bring the focus
    connect(this, &QSlider::valueChanged, this, &Slider::takeKnob);
}

void Slider::setMinimumValue(double value) {
    _minimumValue = value;
    placeKnob();
}

void Slider::setMaximumValue(double value) {
    _maximumValue = value;
    placeKnob();
}

void Slider::setFloatValue(float value) {
    _floatValue = value;
    placeKnob();
}

void Slider::placeKnob() {
    const double part = (static_cast<double>(_floatValue) - _minimumValue) / (_maximumValue - _minimumValue);
    _isPlacingKnob = true;
    // Written so that what is no number goes to the low end.
    setValue(part >= 1.0 ? stepCount : (part > 0.0 ? static_cast<int>(std::lround(part * stepCount)) : 0));
    _isPlacingKnob = false;
}

void Slider::takeKnob() {
    if (!_isPlacingKnob) {
        const double part = static_cast<double>(value()) / stepCount;
        // Both ends come out exactly.
        _floatValue = static_cast<float>(_minimumValue * (1.0 - part) + _maximumValue * part);
    }
}

QPointF Slider::bringKnobTo(const QPointF& place) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect groove = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const QRect knob = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    if (knob.contains(place.toPoint())) {
        return place;
    }
    const int start = static_cast<int>(place.x()) - groove.left() - knob.width() / 2;
    setSliderPosition(
        QStyle::sliderValueFromPosition(minimum(), maximum(), start, groove.width() - knob.width(), option.upsideDown));
    initStyleOption(&option);
    return QRectF(style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this)).center();
}

void Slider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QSlider::mousePressEvent(event);
        return;
    }
    // From there on it is as if the knob itself had been pressed.
    const QPointF place = bringKnobTo(event->position());
    QMouseEvent onKnob(event->type(), place, event->scenePosition(), event->globalPosition(), event->button(),
                       event->buttons(), event->modifiers(), event->pointingDevice());
    QSlider::mousePressEvent(&onKnob);
    event->setAccepted(onKnob.isAccepted());
}

void Slider::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QSlider::wheelEvent(event);
    } else {
        event->ignore();
    }
}

}  // namespace platform
