#include "platform/gpu/vulkan/PipelineCacheFile.hpp"

#include "platform/FileContents.hpp"

#include <cstring>
#include <exception>
#include <string>
#include <system_error>
#include <vector>

namespace gpu::vulkan {
namespace {

/// At the start of the file, in this machine's byte order: a file of the other order has the wrong magic number.
struct FileHeader {
    std::uint64_t magic = 0x6361636865706970;
    std::uint64_t version = 1;
    std::uint64_t length = 0;
    std::uint64_t checksum = 0;
};

/// VkPipelineCacheHeaderVersionOne (Khronos, "Vulkan", chapter "Pipeline Cache Header"), which every driver's data
/// starts with.
struct DriverHeader {
    std::uint32_t headerSize = 0;
    std::uint32_t headerVersion = 0;
    std::uint32_t vendor = 0;
    std::uint32_t device = 0;
    std::array<std::uint8_t, 16> uuid{};
};
static_assert(sizeof(FileHeader) == 32 && sizeof(DriverHeader) == 32, "the layouts of the file have no padding");

template <typename Header>
Header readHeader(std::span<const std::byte> bytes) {
    Header header;
    std::memcpy(&header, bytes.data(), sizeof(Header));
    return header;
}

bool isMadeFor(std::span<const std::byte> data, const PipelineCacheIdentity& identity) {
    if (data.size() < sizeof(DriverHeader)) {
        return false;
    }
    const auto header = readHeader<DriverHeader>(data);
    return header.headerSize >= sizeof(DriverHeader) && header.headerSize <= data.size() && header.headerVersion == 1 &&
           header.vendor == identity.vendor && header.device == identity.device && header.uuid == identity.uuid;
}

}  // namespace

std::uint64_t pipelineCacheChecksum(std::span<const std::byte> data) noexcept {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const std::byte byte : data) {
        hash = (hash ^ std::to_integer<std::uint64_t>(byte)) * 0x100000001b3;
    }
    return hash;
}

std::span<const std::byte> parsePipelineCacheFile(std::span<const std::byte> file,
                                                  const PipelineCacheIdentity& identity) noexcept {
    if (file.size() < sizeof(FileHeader)) {
        return {};
    }
    const auto header = readHeader<FileHeader>(file);
    const std::span data = file.subspan(sizeof(FileHeader));
    const bool whole = header.magic == FileHeader{}.magic && header.version == FileHeader{}.version &&
                       header.length == data.size() && header.checksum == pipelineCacheChecksum(data);
    return whole && isMadeFor(data, identity) ? data : std::span<const std::byte>{};
}

std::vector<std::byte> readPipelineCacheFile(const std::filesystem::path& file,
                                             const PipelineCacheIdentity& identity) noexcept {
    try {
        std::string contents;
        if (platform::readFile(file, maximumPipelineCacheBytes, contents)) {
            return {};
        }
        const std::span data = parsePipelineCacheFile(std::as_bytes(std::span(contents)), identity);
        return {data.begin(), data.end()};
    } catch (const std::exception&) {
        return {};
    }
}

bool writePipelineCacheFile(const std::filesystem::path& file, std::span<const std::byte> data) noexcept {
    try {
        if (data.size() > maximumPipelineCacheBytes - sizeof(FileHeader)) {
            return false;
        }
        std::error_code error;
        std::filesystem::create_directories(file.parent_path(), error);
        FileHeader header;
        header.length = data.size();
        header.checksum = pipelineCacheChecksum(data);
        const auto headerBytes = std::as_bytes(std::span(&header, 1));
        std::vector<std::byte> bytes(headerBytes.begin(), headerBytes.end());
        bytes.insert(bytes.end(), data.begin(), data.end());
        return !platform::replaceFile(file, bytes);
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace gpu::vulkan
