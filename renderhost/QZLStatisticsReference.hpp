#pragma once

#include "foundation/QZLStatistics.hpp"

#include <memory>
#include <mutex>

/// The statistics that a renderer reports to at the moment, or null. Shared by the renderer and the callbacks of its
/// frames, which may come after the renderer has gone. Any thread; locked for the copy of a pointer only.
class QZLStatisticsReference {
public:
    std::shared_ptr<QZLStatistics> get() const;
    void set(std::shared_ptr<QZLStatistics> statistics);

private:
    mutable std::mutex _mutex;
    std::shared_ptr<QZLStatistics> _statistics;
};
