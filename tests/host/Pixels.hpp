#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

// What can be said of pictures of four bytes a pixel: blue, green, red, unused.
namespace fake {

/// The mean brightness of a picture's colour bytes.
inline double brightness(const std::vector<std::uint8_t>& pixels) {
    double sum = 0.0;
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        sum += pixels[i] + pixels[i + 1] + pixels[i + 2];
    }
    return pixels.empty() ? 0.0 : sum / (static_cast<double>(pixels.size()) * 0.75);
}

/// The mean difference between a pixel's largest and smallest colour byte: 0 when all is grey.
inline double colourfulness(const std::vector<std::uint8_t>& pixels) {
    double sum = 0.0;
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        const auto [least, most] = std::minmax({pixels[i], pixels[i + 1], pixels[i + 2]});
        sum += most - least;
    }
    return pixels.empty() ? 0.0 : sum * 4.0 / static_cast<double>(pixels.size());
}

/// The share of pixels that are of that colour, 0xRRGGBB.
inline double shareOf(std::uint32_t color, const std::vector<std::uint8_t>& pixels) {
    std::size_t count = 0;
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        count += (pixels[i] | pixels[i + 1] << 8 | pixels[i + 2] << 16) == static_cast<int>(color) ? 1 : 0;
    }
    return pixels.empty() ? 0.0 : static_cast<double>(count) * 4.0 / static_cast<double>(pixels.size());
}

/// The mean difference of two pictures' colour bytes.
inline double difference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += i % 4 == 3 ? 0.0 : std::abs(a[i] - b[i]);
    }
    return a.empty() ? 0.0 : sum / (static_cast<double>(a.size()) * 0.75);
}

}  // namespace fake
