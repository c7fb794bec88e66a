#include "benchmarks/frameloop/Allocations.hpp"

#include <dlfcn.h>
#include <execinfo.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string_view>

// The C library's own names of what is replaced here.
extern "C" {
void* __libc_malloc(std::size_t size);                           // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size);        // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);            // NOLINT(bugprone-reserved-identifier)
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

std::string_view folder(std::string_view path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::string_view fileName(std::string_view path) {
    return path.substr(folder(path).size());
}

bool isPassedOver(std::string_view library) {
    return library.starts_with("libstdc++") || library.starts_with("libc.so") || library.starts_with("ld-linux");
}

/// The symbol around an address, or the offset in its library.
std::string functionName(const Dl_info& info, const void* address) {
    if (info.dli_sname != nullptr) {
        return info.dli_sname;
    }
    char offset[32];
    std::snprintf(offset, sizeof offset, "+0x%tx",
                  static_cast<const char*>(address) - static_cast<const char*>(info.dli_fbase));
    return offset;
}

/// Whom a note blames: the nearest caller beyond this file and the language's libraries.
std::string blame(const Note& entry) {
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    for (int i = 2; i < entry.depth; ++i) {  // after `note` and the replacement
        const void* const caller = entry.callers[static_cast<std::size_t>(i)];
        Dl_info info{};
        if (dladdr(caller, &info) == 0 || info.dli_fname == nullptr || isPassedOver(fileName(info.dli_fname))) {
            continue;
        }
        const std::string library(fileName(info.dli_fname));
        const bool isOurs = info.dli_fname[0] != '/' || std::string_view(info.dli_fname).starts_with(folder(program));
        return isOurs ? library + ", " + functionName(info, caller) : library;
    }
    return "unknown";
}

}  // namespace

void startCountingAllocations() {
    isCounting = true;
}

void stopCountingAllocations() {
    isCounting = false;
}

std::vector<AllocationSite> takeAllocationSites() {
    std::map<std::string, std::size_t> counts;
    for (std::size_t i = 0; i < noteCount; ++i) {
        ++counts[blame(notes[i])];
    }
    noteCount = 0;
    std::vector<AllocationSite> sites;
    for (const auto& [place, count] : counts) {
        sites.push_back({place, count});
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
