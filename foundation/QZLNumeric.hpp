#pragma once

#include <cstdint>

/// A two-dimensional range between two corners.
struct QZLRange {
    double firstX = 0.0;
    double firstY = 0.0;
    double secondX = 0.0;
    double secondY = 0.0;
    bool operator==(const QZLRange&) const = default;
};

/// Clamps; not-a-number becomes `defaultValue`. The lower bound wins when the bounds are crossed.
float QZLClampWithDefault(float value, float minimum, float maximum, float defaultValue);

/// Wraps a phase into [0, m) for x >= 0 and into (0, m] for x < 0.
double QZLWrap(double x, double m);

double QZLInterpolateLinear(double t, double a, double b);

/// The Catmull-Rom spline from p1 (t = 0) to p2 (t = 1).
double QZLInterpolateCubic(double t, double p0, double p1, double p2, double p3);

/// The same for ranges, by centre and extent; the extent stays at least 1e-9.
QZLRange QZLInterpolateRangeCubic(double t, const QZLRange& r0, const QZLRange& r1, const QZLRange& r2,
                                  const QZLRange& r3);

/// The mean of the sine at x and at one and two steps of d to either side.
double QZLSmoothSin(double x, double d);
double QZLSmoothCos(double x, double d);

/// Fills the array with 0 to n - 1 in random order, by n - 1 draws from the process's generator.
void QZLCreateRandomizedSequence(std::uint32_t* array, std::int32_t n);
