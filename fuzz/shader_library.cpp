// The shader library: what passes must be whole, and its entry points must be found.
#include "fuzz/Fuzz.hpp"
#include "platform/gpu/vulkan/SpirvModule.hpp"

#include <cstring>
#include <span>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string reason;
    const auto module = gpu::vulkan::SpirvModule::read(std::as_bytes(std::span(data, size)), reason);
    if (!module) {
        fuzz::require(!reason.empty(), "a refused library has a reason");
        return 0;
    }
    fuzz::require(module->words().size() * 4 == size && std::memcmp(module->words().data(), data, size) == 0,
                  "a library is taken as it is");
    for (const auto& entryPoint : module->entryPoints()) {
        fuzz::require(module->hasEntryPoint(entryPoint.name, entryPoint.type), "entry points are found");
    }
    return 0;
}
