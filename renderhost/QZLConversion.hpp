#pragma once

#include <cmath>
#include <concepts>
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
