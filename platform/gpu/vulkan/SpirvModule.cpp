#include "platform/gpu/vulkan/SpirvModule.hpp"

#include "platform/FileContents.hpp"

#include <algorithm>
#include <cstring>
#include <exception>
#include <spirv-tools/libspirv.hpp>
#include <system_error>

namespace gpu::vulkan {
namespace {

// Khronos, "SPIR-V", chapters "Physical Layout of a SPIR-V Module and Instruction", "Execution Model", "OpEntryPoint".
constexpr std::uint32_t magicNumber = 0x07230203;
constexpr std::size_t headerWords = 5;
constexpr std::uint32_t opEntryPoint = 15;
constexpr std::size_t entryPointNameWord = 3;

std::optional<FunctionType> stageOf(std::uint32_t executionModel) {
    switch (executionModel) {
        case 0: return FunctionType::Vertex;
        case 4: return FunctionType::Fragment;
        case 5: return FunctionType::Kernel;
        default: return std::nullopt;
    }
}

/// A literal string: UTF-8 up to a zero byte, four bytes to a word, the first in the lowest bits.
std::string literalText(std::span<const std::uint32_t> words) {
    std::string text;
    for (const std::uint32_t word : words) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            const auto character = static_cast<char>((word >> shift) & 0xFF);
            if (character == '\0') {
                return text;
            }
            text.push_back(character);
        }
    }
    return text;
}

std::vector<SpirvEntryPoint> listEntryPoints(std::span<const std::uint32_t> words) {
    std::vector<SpirvEntryPoint> entryPoints;
    for (std::span rest = words.subspan(headerWords); !rest.empty();) {
        const std::size_t length = rest.front() >> 16;
        if (length == 0 || length > rest.size()) {
            break;
        }
        const std::span instruction = rest.first(length);
        rest = rest.subspan(length);
        if ((instruction.front() & 0xFFFF) != opEntryPoint || length <= entryPointNameWord) {
            continue;
        }
        if (const auto type = stageOf(instruction[1])) {
            entryPoints.push_back({literalText(instruction.subspan(entryPointNameWord)), *type});
        }
    }
    return entryPoints;
}

bool isValid(const std::vector<std::uint32_t>& words, std::string& reason) {
    spvtools::SpirvTools tools(SPV_ENV_VULKAN_1_3);
    tools.SetMessageConsumer([&reason](spv_message_level_t, const char*, const spv_position_t&, const char* message) {
        if (reason.empty()) {
            reason = message;
        }
    });
    const bool valid = tools.Validate(words);
    if (!valid && reason.empty()) {
        reason = "not valid";
    }
    return valid;
}

}  // namespace

std::optional<SpirvModule> SpirvModule::read(std::span<const std::byte> bytes, std::string& reason) noexcept {
    try {
        reason.clear();
        if (bytes.size() > maximumBytes) {
            reason = "too large";
            return std::nullopt;
        }
        if (bytes.size() % sizeof(std::uint32_t) != 0 || bytes.size() < headerWords * sizeof(std::uint32_t)) {
            reason = "not a whole number of words, or too short";
            return std::nullopt;
        }
        SpirvModule module;
        module._words.resize(bytes.size() / sizeof(std::uint32_t));
        std::memcpy(module._words.data(), bytes.data(), bytes.size());
        if (module._words.front() != magicNumber) {
            reason = "not SPIR-V in this machine's byte order";
            return std::nullopt;
        }
        if (!isValid(module._words, reason)) {
            return std::nullopt;
        }
        module._entryPoints = listEntryPoints(module._words);
        return module;
    } catch (const std::exception&) {
        reason.assign("out of memory");  // fits into the text itself and so cannot throw again
        return std::nullopt;
    }
}

std::optional<SpirvModule> SpirvModule::readFile(const std::filesystem::path& file, std::string& reason) noexcept {
    try {
        std::string contents;
        if (const std::error_code error = platform::readFile(file, maximumBytes, contents)) {
            reason = error.message();
            return std::nullopt;
        }
        return read(std::as_bytes(std::span(contents)), reason);
    } catch (const std::exception&) {
        reason.assign("out of memory");
        return std::nullopt;
    }
}

bool SpirvModule::hasEntryPoint(const std::string& name, FunctionType type) const {
    return std::ranges::find(_entryPoints, SpirvEntryPoint{name, type}) != _entryPoints.end();
}

}  // namespace gpu::vulkan
