// The file of compiled pipelines: as it comes, and again as the data of a file that was written whole, so that what
// lies behind the checksum is reached too.
#include "fuzz/Fuzz.hpp"
#include "platform/gpu/vulkan/PipelineCacheFile.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <vector>

using gpu::vulkan::parsePipelineCacheFile;
using gpu::vulkan::PipelineCacheIdentity;
using Bytes = std::span<const std::byte>;

namespace {

constexpr std::size_t headerSize = 32;  // of a file, and of a driver's data

template <typename Value>
Value valueAt(Bytes bytes, std::size_t offset) {
    Value value{};
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

/// Of the driver that the data says it is from.
PipelineCacheIdentity identityIn(Bytes data) {
    if (data.size() < headerSize) {
        return {};
    }
    return {valueAt<std::uint32_t>(data, 8), valueAt<std::uint32_t>(data, 12),
            valueAt<std::array<std::uint8_t, 16>>(data, 16)};
}

bool isDriversData(Bytes data) {
    return data.size() >= headerSize && valueAt<std::uint32_t>(data, 0) >= headerSize &&
           valueAt<std::uint32_t>(data, 0) <= data.size() && valueAt<std::uint32_t>(data, 4) == 1;
}

std::vector<std::byte> fileOf(Bytes data) {
    const std::array<std::uint64_t, 4> header{0x6361636865706970, 1, data.size(),
                                              gpu::vulkan::pipelineCacheChecksum(data)};
    const Bytes front = std::as_bytes(std::span(header));
    std::vector<std::byte> file(front.begin(), front.end());
    file.insert(file.end(), data.begin(), data.end());
    return file;
}

void checkAsFile(Bytes file) {
    const Bytes data = file.subspan(std::min(headerSize, file.size()));
    const Bytes parsed = parsePipelineCacheFile(file, identityIn(data));
    fuzz::require(parsed.empty() || std::ranges::equal(file, fileOf(parsed)), "a file is taken whole or not at all");
}

void checkAsData(Bytes data) {
    std::vector<std::byte> file = fileOf(data);
    PipelineCacheIdentity identity = identityIn(data);
    const Bytes parsed = parsePipelineCacheFile(file, identity);
    fuzz::require(isDriversData(data) ? std::ranges::equal(parsed, data) : parsed.empty(),
                  "a driver's data comes back, and nothing else does");
    identity.uuid[data.size() % identity.uuid.size()] ^= 1U;
    fuzz::require(parsePipelineCacheFile(file, identity).empty(), "no driver is given another's data");

    identity = identityIn(data);
    const std::uint64_t place = gpu::vulkan::pipelineCacheChecksum(data);
    file[place % file.size()] ^= static_cast<std::byte>(1U << (place >> 61U));
    fuzz::require(parsePipelineCacheFile(file, identity).empty(), "a changed byte is seen");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes = std::as_bytes(std::span(data, size));
    checkAsFile(bytes);
    checkAsData(bytes);
    return 0;
}
