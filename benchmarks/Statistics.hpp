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

/// The rounds' ratios. Both hold a value for each round.
inline std::vector<double> ratios(const std::vector<double>& values, const std::vector<double>& yardsticks) {
    std::vector<double> all;
    for (std::size_t round = 0; round < values.size(); ++round) {
        all.push_back(values[round] / yardsticks[round]);
    }
    return all;
}

inline double medianRatio(const std::vector<double>& values, const std::vector<double>& yardsticks) {
    return median(ratios(values, yardsticks));
}

/// The lowest and the highest one.
inline std::pair<double, double> rangeOfRatios(const std::vector<double>& values,
                                               const std::vector<double>& yardsticks) {
    const std::vector<double> all = ratios(values, yardsticks);
    const auto [lowest, highest] = std::minmax_element(all.begin(), all.end());
    return {*lowest, *highest};
}

}  // namespace bench
