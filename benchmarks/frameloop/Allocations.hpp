#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// A place that allocates, and how often it did.
struct AllocationSite {
    std::string library;   ///< file name of the library whose code asked for the memory
    std::string function;  ///< its symbol, or the offset in the library where it has none
    std::size_t count = 0;
};

/// From now on until `stopCountingAllocations` each malloc, calloc, realloc and aligned allocation of the calling
/// thread is noted with its caller. Only one thread at a time.
void startCountingAllocations();
void stopCountingAllocations();

/// All that was noted since the last call, most frequent first. The C++ library's own frames are passed over.
std::vector<AllocationSite> takeAllocationSites();

}  // namespace bench
