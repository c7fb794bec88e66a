#include "renderhost/QZLStatisticsReference.hpp"

std::shared_ptr<QZLStatistics> QZLStatisticsReference::get() const {
    const std::lock_guard lock(_mutex);
    return _statistics;
}

void QZLStatisticsReference::set(std::shared_ptr<QZLStatistics> statistics) {
    const std::lock_guard lock(_mutex);
    _statistics.swap(statistics);
}
