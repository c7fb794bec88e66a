#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>

/// `value` truncated toward zero. What lies outside the integer's range becomes its nearest end; not-a-number becomes
/// 0.
template <std::integral Integer>
Integer QZLTruncated(double value) {
    constexpr auto lowest = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr auto highest = static_cast<double>(std::numeric_limits<Integer>::max());
    if (std::isnan(value)) {
        return 0;
    }
    if (value <= lowest) {
        return std::numeric_limits<Integer>::min();
    }
    return value >= highest ? std::numeric_limits<Integer>::max() : static_cast<Integer>(value);
}

/// A length in pixels, truncated. What is no size becomes 0, and what no texture could have is held within 31 bits.
inline std::size_t QZLWholePixels(double length) {
    return static_cast<std::size_t>(std::max(0, QZLTruncated<std::int32_t>(length)));
}
