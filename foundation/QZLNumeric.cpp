#include "foundation/QZLNumeric.hpp"

#include "platform/Random.hpp"

#include <cmath>
#include <utility>

namespace {

constexpr double minimumExtent = 1e-9;

/// One axis of a range.
struct Span {
    double first;
    double second;

    double centre() const { return (first + second) * 0.5; }
    double extent() const { return second - first; }
};

Span interpolateSpan(double t, Span s0, Span s1, Span s2, Span s3) {
    const double centre = QZLInterpolateCubic(t, s0.centre(), s1.centre(), s2.centre(), s3.centre());
    const double interpolated = QZLInterpolateCubic(t, s0.extent(), s1.extent(), s2.extent(), s3.extent());
    const double extent = interpolated >= minimumExtent ? interpolated : minimumExtent;  // also for not-a-number
    return {centre - extent * 0.5, centre + extent * 0.5};
}

Span spanX(const QZLRange& range) {
    return {range.firstX, range.secondX};
}

Span spanY(const QZLRange& range) {
    return {range.firstY, range.secondY};
}

double smoothed(double (*wave)(double), double x, double d) {
    return (wave(x - (d + d)) + wave(x - d) + wave(x) + wave(x + d) + wave((d + d) + x)) / 5.0;
}

}  // namespace

float QZLClampWithDefault(float value, float minimum, float maximum, float defaultValue) {
    if (std::isnan(value)) {
        return defaultValue;
    }
    if (value < minimum) {
        return minimum;
    }
    return maximum < value ? maximum : value;
}

double QZLWrap(double x, double m) {
    return x >= 0.0 ? std::fmod(x, m) : m - std::fmod(-x, m);
}

double QZLInterpolateLinear(double t, double a, double b) {
    return t * (b - a) + a;
}

double QZLInterpolateCubic(double t, double p0, double p1, double p2, double p3) {
    const double t2 = t * t;
    const double t3 = t2 * t;
    // Summed from the inner points outwards.
    double sum = (2.0 - 5.0 * t2 + 3.0 * t3) * p1 + (t + 4.0 * t2 - 3.0 * t3) * p2;
    sum += (2.0 * t2 - t3 - t) * p0;
    sum += (t3 - t2) * p3;
    return 0.5 * sum;
}

QZLRange QZLInterpolateRangeCubic(double t, const QZLRange& r0, const QZLRange& r1, const QZLRange& r2,
                                  const QZLRange& r3) {
    const Span x = interpolateSpan(t, spanX(r0), spanX(r1), spanX(r2), spanX(r3));
    const Span y = interpolateSpan(t, spanY(r0), spanY(r1), spanY(r2), spanY(r3));
    return {x.first, y.first, x.second, y.second};
}

double QZLSmoothSin(double x, double d) {
    return smoothed(std::sin, x, d);
}

double QZLSmoothCos(double x, double d) {
    return smoothed(std::cos, x, d);
}

void QZLCreateRandomizedSequence(std::uint32_t* array, std::int32_t n) {
    for (std::int32_t i = 0; i < n; ++i) {
        array[i] = static_cast<std::uint32_t>(i);
    }
    // Forward Fisher-Yates: every element changes places with itself or a later one.
    for (std::int32_t i = 0; i + 1 < n; ++i) {
        const std::int64_t j = i + platform::random() % (n - i);
        std::swap(array[i], array[j]);
    }
}
