#include "benchmarks/frameloop/Allocations.hpp"

#include <dlfcn.h>
#include <execinfo.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <map>
#include <string_view>
#include <utility>

// The C library's own names of what is replaced here.
extern "C" {
void* __libc_malloc(std::size_t size);                        // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size);     // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);         // NOLINT(bugprone-reserved-identifier)
void* __libc_memalign(std::size_t alignment, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
}

namespace bench {
namespace {

constexpr std::size_t maximumNotes = 1 << 16;
constexpr int maximumDepth = 12;

struct Note {
    std::array<void*, maximumDepth> callers;
    int depth;
};

std::array<Note, maximumNotes> notes;
std::size_t noteCount = 0;
thread_local bool isCounting = false;

/// Called in each of the replacements below; a frame of its own on the stack.
[[gnu::noinline]] void note() {
    if (!isCounting) {
        return;
    }
    isCounting = false;  // the way of asking who calls may allocate
    if (noteCount < maximumNotes) {
        Note& entry = notes[noteCount++];
        entry.depth = backtrace(entry.callers.data(), maximumDepth);
    }
    isCounting = true;
}

std::string_view fileName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool isPassedOver(std::string_view library) {
    return library.starts_with("libstdc++") || library.starts_with("libc.so") || library.starts_with("ld-linux");
}

/// The library and the function that a note blames: the nearest caller beyond this file and the language's libraries.
std::pair<std::string, std::string> blame(const Note& entry) {
    Dl_info own{};
    dladdr(reinterpret_cast<const void*>(&takeAllocationSites), &own);
    for (int i = 2; i < entry.depth; ++i) {  // after `note` and the replacement
        Dl_info info{};
        if (dladdr(entry.callers[static_cast<std::size_t>(i)], &info) == 0 || info.dli_fname == nullptr) {
            continue;
        }
        const std::string_view library = fileName(info.dli_fname);
        if (isPassedOver(library)) {
            continue;
        }
        char offset[32];
        std::snprintf(offset, sizeof offset, "+0x%tx",
                      static_cast<const char*>(entry.callers[static_cast<std::size_t>(i)]) -
                          static_cast<const char*>(info.dli_fbase));
        return {std::string(library), info.dli_sname != nullptr ? info.dli_sname : offset};
    }
    return {"unknown", "unknown"};
}

}  // namespace

void startCountingAllocations() {
    isCounting = true;
}

void stopCountingAllocations() {
    isCounting = false;
}

std::vector<AllocationSite> takeAllocationSites() {
    std::map<std::pair<std::string, std::string>, std::size_t> counts;
    for (std::size_t i = 0; i < noteCount; ++i) {
        ++counts[blame(notes[i])];
    }
    noteCount = 0;
    std::vector<AllocationSite> sites;
    for (const auto& [place, count] : counts) {
        sites.push_back({place.first, place.second, count});
    }
    std::sort(sites.begin(), sites.end(), [](const auto& a, const auto& b) { return a.count > b.count; });
    return sites;
}

}  // namespace bench

extern "C" {

void* malloc(std::size_t size) {
    bench::note();
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    bench::note();
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    bench::note();
    return __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    bench::note();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    bench::note();
    *memory = __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}

}  // extern "C"
