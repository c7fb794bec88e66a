#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

/// The file that keeps a driver's compiled pipelines between runs: a header of our own with a checksum, then the
/// driver's data. Drivers trust that data, so only what is whole and made for the very same driver is given back to
/// one. Functions on values and files; any thread; they never throw.
namespace gpu::vulkan {

/// What a driver writes at the start of its data to recognise it.
struct PipelineCacheIdentity {
    std::uint32_t vendor = 0;
    std::uint32_t device = 0;
    std::array<std::uint8_t, 16> uuid{};
};

inline constexpr std::size_t maximumPipelineCacheBytes = std::size_t{256} * 1024 * 1024;

/// The driver's data inside a file's bytes; empty for a damaged, truncated, over-long or foreign file.
std::span<const std::byte> parsePipelineCacheFile(std::span<const std::byte> file,
                                                  const PipelineCacheIdentity& identity) noexcept;

/// FNV-1a with 64 bits (http://www.isthe.com/chongo/tech/comp/fnv/); tells damage, not tampering.
std::uint64_t pipelineCacheChecksum(std::span<const std::byte> data) noexcept;

/// The driver's data from that file; empty when there is none that fits.
std::vector<std::byte> readPipelineCacheFile(const std::filesystem::path& file,
                                             const PipelineCacheIdentity& identity) noexcept;

/// Makes the folder and puts the file there, whole or not at all. False when that cannot be done.
bool writePipelineCacheFile(const std::filesystem::path& file, std::span<const std::byte> data) noexcept;

}  // namespace gpu::vulkan
