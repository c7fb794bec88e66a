#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace bench {

inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The median of the rounds' ratios. Both hold a value for each round.
inline double medianRatio(const std::vector<double>& values, const std::vector<double>& yardsticks) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < values.size(); ++round) {
        ratios.push_back(values[round] / yardsticks[round]);
    }
    return median(std::move(ratios));
}

}  // namespace bench
