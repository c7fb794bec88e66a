#pragma once

#include "platform/gpu/Types.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gpu::vulkan {

/// A function of a SPIR-V module that a pipeline stage can start at.
struct SpirvEntryPoint {
    std::string name;
    FunctionType type = FunctionType::Vertex;
    bool operator==(const SpirvEntryPoint&) const = default;
};

/// A SPIR-V module that passed validation for Vulkan 1.3. A plain value. Drivers do not validate, and a damaged module
/// may crash them, so that shader code reaches a driver through this class only.
class SpirvModule {
public:
    static constexpr std::size_t maximumBytes = std::size_t{16} * 1024 * 1024;

    /// Null, with the reason, for anything but a whole and valid module in this machine's byte order. Never throws.
    static std::optional<SpirvModule> read(std::span<const std::byte> bytes, std::string& reason) noexcept;
    static std::optional<SpirvModule> readFile(const std::filesystem::path& file, std::string& reason) noexcept;

    const std::vector<std::uint32_t>& words() const { return _words; }
    /// Vertex, fragment and compute entry points in the module's order; those of other stages are left out.
    const std::vector<SpirvEntryPoint>& entryPoints() const { return _entryPoints; }
    bool hasEntryPoint(const std::string& name, FunctionType type) const;

private:
    SpirvModule() = default;

    std::vector<std::uint32_t> _words;
    std::vector<SpirvEntryPoint> _entryPoints;
};

}  // namespace gpu::vulkan
