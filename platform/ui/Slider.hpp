#pragma once

#include <QtWidgets/QSlider>

namespace platform {

/// A horizontal slider over a range of numbers that gives back the number it was given, bit for bit, until somebody
/// moves it: also one outside its range, or no number at all, for which the knob stands at the nearest end. A click
/// beside the knob brings it there; the mouse wheel moves it only while it has the focus. Main thread.
class Slider : public QSlider {
    Q_OBJECT
    Q_PROPERTY(double minimumValue READ minimumValue WRITE setMinimumValue)
    Q_PROPERTY(double maximumValue READ maximumValue WRITE setMaximumValue)

public:
    explicit Slider(QWidget* parent = nullptr);

    /// What the ends of the slider stand for: 0 and 1 at first. Changing them moves the knob, not the number.
    double minimumValue() const { return _minimumValue; }
    void setMinimumValue(double value);
    double maximumValue() const { return _maximumValue; }
    void setMaximumValue(double value);

    float floatValue() const { return _floatValue; }
    void setFloatValue(float value);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void placeKnob();
    void takeKnob();
    /// Where the pointer would have to be on the knob's own line.
    QPointF bringKnobTo(const QPointF& place);

    double _minimumValue = 0.0;
    double _maximumValue = 1.0;
    float _floatValue = 0.0F;
    bool _isPlacingKnob = false;
};

}  // namespace platform
