#include "benchmarks/frameloop/BareSky.hpp"

#include "benchmarks/frameloop/Loop.hpp"

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace bench {
namespace {

// The settings' defaults.
constexpr double colors = 0.4;
constexpr double brightness = 0.5;
constexpr double speed = 0.7;
constexpr double zoom = 0.38;

constexpr double turn = 2.0 * std::numbers::pi;
constexpr double step = 1.0 / nominalRate;  // seconds
constexpr double fadeFrames = nominalRate;  // a second

double randomUnit() {
    return static_cast<double>(::random()) / 2147483647.0;
}

/// A wave as the saver takes it, averaged over five points that are one step of its rate apart.
double smooth(double (*wave)(double), double angle, double rate) {
    return (wave(angle - 2.0 * rate) + wave(angle - rate) + wave(angle) + wave(angle + rate) +
            wave(angle + 2.0 * rate)) /
           5.0;
}

}  // namespace

BareSky::BareSky(double intermediateWidth, double intermediateHeight)
    : _width(intermediateWidth), _height(intermediateHeight) {
    ::srandom(static_cast<unsigned>(calendarSeconds));
    _motionAngle = randomUnit() * turn;
    _wobblePhase = randomUnit() * turn;
    _octaveAngle = (randomUnit() - 0.5) * turn / 10.0;
    _hue = randomUnit();
    _noise.resize(noiseSide * noiseSide);
    for (std::byte& texel : _noise) {
        texel = static_cast<std::byte>(::random() & 0xFF);
    }
}

SkyFrame BareSky::next() {
    static const double multiplier = std::exp2(2.0 * speed - 1.0);
    static const double motionRate = turn * multiplier / 1875.0;  // radians per second, as the others
    static const double wobbleRate = turn * multiplier / 190.0;
    static const double octaveRate = turn * multiplier / 20000.0;
    static const double height = std::pow(zoom, 1.5) * 0.36 + 0.04;
    _motionAngle += motionRate * step;
    _wobblePhase += wobbleRate * step;
    _octaveAngle += octaveRate * step;
    _hue += 0.0105 * step;
    _hue -= std::floor(_hue);

    const double width = height * _width / _height;
    const double radius = (std::sin(_wobblePhase) * 0.05 + 1.0) * 1.5;
    const double x = smooth(std::cos, _motionAngle, motionRate) * radius;
    const double y = smooth(std::sin, _motionAngle, motionRate) * radius;
    const auto left = static_cast<float>(x - width * 0.5);
    const auto right = static_cast<float>(x + width * 0.5);
    const auto bottom = static_cast<float>(y - height * 0.5);
    const auto top = static_cast<float>(y + height * 0.5);
    const auto cosine = static_cast<float>(1.97 * smooth(std::cos, _octaveAngle, octaveRate));
    const auto sine = static_cast<float>(1.97 * smooth(std::sin, _octaveAngle, octaveRate));
    const auto darkening = static_cast<float>((1.0 - brightness) * 0.8);
    const double fade = std::pow(std::fmin(static_cast<double>(_frame++) / fadeFrames, 1.0), 0.8);
    return {.colorQuad = {-1, -1, left, bottom, 1, -1, right, bottom, -1, 1, left, top, 1, 1, right, top},
            .colorStyle = {cosine, -sine, sine, cosine, 4.0F, static_cast<float>(_hue),
                           static_cast<float>(colors * 2.5 + 0.5), 1.0F - darkening, darkening, 0.0F},
            .lightStyle = {static_cast<float>(1.0 / _width), static_cast<float>(1.0 / _height),
                           static_cast<float>(0.04 / _height), static_cast<float>(fade)}};
}

}  // namespace bench
