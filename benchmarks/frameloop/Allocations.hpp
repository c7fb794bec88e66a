#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// Code that allocates, and how often it did: one function of the project, or all of another library.
struct AllocationSite {
    std::string place;
    std::size_t count = 0;
};

/// From now on until `stopCountingAllocations` each malloc, calloc, realloc and aligned allocation of the calling
/// thread is noted with its caller. Only one thread at a time.
void startCountingAllocations();
void stopCountingAllocations();

/// All that was noted since the last call, most frequent first. What the C and C++ libraries allocate counts for who
/// called them.
std::vector<AllocationSite> takeAllocationSites();

}  // namespace bench
