#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace bench {

/// The numbers that the shaders read for one frame, laid out as they read them.
struct SkyFrame {
    std::array<float, 16> colorQuad;   ///< four corners: x, y in clip space, x, y on the noise plane
    std::array<float, 10> colorStyle;  ///< octave transform (4), octaves, hue, saturation, 1 - darkening, darkening, 0
    std::array<float, 4> lightStyle;   ///< texel width and height, relief, fade
};

/// The default cloudscape's animation, written down straight, from the seed `calendarSeconds`.
class BareSky {
public:
    static constexpr std::size_t noiseSide = 256;

    BareSky(double intermediateWidth, double intermediateHeight);

    const std::vector<std::byte>& noise() const { return _noise; }
    /// The next frame's numbers.
    SkyFrame next();

private:
    double _width;
    double _height;
    double _motionAngle;
    double _wobblePhase;
    double _octaveAngle;
    double _hue;
    std::size_t _frame = 0;
    std::vector<std::byte> _noise;
};

}  // namespace bench
