#include "platform/gpu/vulkan/SpirvModule.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <spirv-tools/libspirv.hpp>

namespace gpu::vulkan {
namespace {

/// Three entry points of three stages, "Shared" being the name of two of them.
std::string assembly() {
    return R"(
               OpCapability Shader
               OpMemoryModel Logical GLSL450
               OpEntryPoint Vertex %1 "Shared"
               OpEntryPoint Fragment %2 "Shared"
               OpEntryPoint GLCompute %3 "ComputeEntry"
               OpExecutionMode %2 OriginUpperLeft
               OpExecutionMode %3 LocalSize 8 8 1
          %void = OpTypeVoid
      %function = OpTypeFunction %void
             %1 = OpFunction %void None %function
            %11 = OpLabel
                  OpReturn
                  OpFunctionEnd
             %2 = OpFunction %void None %function
            %12 = OpLabel
                  OpReturn
                  OpFunctionEnd
             %3 = OpFunction %void None %function
            %13 = OpLabel
                  OpReturn
                  OpFunctionEnd
)";
}

std::vector<std::uint32_t> assembledWords(const std::string& text = assembly()) {
    std::vector<std::uint32_t> words;
    const spvtools::SpirvTools tools(SPV_ENV_VULKAN_1_3);
    EXPECT_TRUE(tools.Assemble(text, &words));
    return words;
}

std::span<const std::byte> bytesOf(const std::vector<std::uint32_t>& words) {
    return std::as_bytes(std::span(words));
}

std::optional<SpirvModule> readWords(const std::vector<std::uint32_t>& words) {
    std::string reason;
    return SpirvModule::read(bytesOf(words), reason);
}

/// A file with these bytes that goes away with the object.
class TemporaryFile {
public:
    explicit TemporaryFile(std::span<const std::byte> bytes)
        : _path(std::filesystem::temp_directory_path() / ("spirv-test-" + std::to_string(::getpid()))) {
        std::ofstream(_path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { std::filesystem::remove(_path); }

    const std::filesystem::path& path() const { return _path; }

private:
    std::filesystem::path _path;
};

TEST(SpirvModule, ListsEntryPointsByNameAndStage) {
    const std::optional<SpirvModule> module = readWords(assembledWords());
    ASSERT_TRUE(module.has_value());
    const std::vector<SpirvEntryPoint> expected{
        {"Shared", FunctionType::Vertex}, {"Shared", FunctionType::Fragment}, {"ComputeEntry", FunctionType::Kernel}};
    EXPECT_EQ(module->entryPoints(), expected);
    EXPECT_EQ(module->words(), assembledWords());
}

TEST(SpirvModule, FindsAnEntryPointOnlyInItsOwnStage) {
    const std::optional<SpirvModule> module = readWords(assembledWords());
    ASSERT_TRUE(module.has_value());
    EXPECT_TRUE(module->hasEntryPoint("Shared", FunctionType::Vertex));
    EXPECT_TRUE(module->hasEntryPoint("Shared", FunctionType::Fragment));
    EXPECT_FALSE(module->hasEntryPoint("Shared", FunctionType::Kernel));
    EXPECT_TRUE(module->hasEntryPoint("ComputeEntry", FunctionType::Kernel));
    EXPECT_FALSE(module->hasEntryPoint("ComputeEntry", FunctionType::Vertex));
    EXPECT_FALSE(module->hasEntryPoint("Compute", FunctionType::Kernel));
    EXPECT_FALSE(module->hasEntryPoint("", FunctionType::Vertex));
}

TEST(SpirvModule, RefusesAModuleTruncatedAtAnyByte) {
    const std::vector<std::uint32_t> words = assembledWords();
    const std::span<const std::byte> whole = bytesOf(words);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        std::string reason;
        // On the heap and exactly as long, so that a sanitizer sees a read beyond the end.
        const std::vector<std::byte> bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const auto module = SpirvModule::read(bytes, reason);
        EXPECT_FALSE(module.has_value()) << "of " << whole.size() << " bytes only " << length;
        EXPECT_FALSE(reason.empty());
    }
}

TEST(SpirvModule, RefusesGarbage) {
    std::uint32_t state = 12345;
    for (std::size_t length = 0; length < 64; ++length) {
        std::vector<std::uint32_t> words(length);
        for (std::uint32_t& word : words) {
            state = state * 1664525 + 1013904223;
            word = state;
        }
        EXPECT_FALSE(readWords(words).has_value());
        if (length > 0) {
            words[0] = 0x07230203;
            EXPECT_FALSE(readWords(words).has_value());
        }
    }
}

TEST(SpirvModule, SurvivesEveryWordReplacedByExtremes) {
    const std::vector<std::uint32_t> words = assembledWords();
    for (std::size_t place = 0; place < words.size(); ++place) {
        for (const std::uint32_t value :
             {0U, 1U, 0xFFFFU, 0xFFFF0000U, 0x7FFFFFFFU, 0xFFFFFFFFU, words[place] ^ 0x10000U}) {
            std::vector<std::uint32_t> damaged = words;
            damaged[place] = value;
            const std::optional<SpirvModule> module = readWords(damaged);
            EXPECT_TRUE(!module.has_value() || module->entryPoints().size() <= 3);
        }
    }
}

TEST(SpirvModule, RefusesAnIdentifierBoundBeyondReason) {
    std::vector<std::uint32_t> words = assembledWords();
    words[3] = 0xFFFFFFFF;
    EXPECT_FALSE(readWords(words).has_value());
}

TEST(SpirvModule, RefusesTheOtherByteOrder) {
    std::vector<std::uint32_t> words = assembledWords();
    for (std::uint32_t& word : words) {
        word = __builtin_bswap32(word);
    }
    EXPECT_FALSE(readWords(words).has_value());
}

TEST(SpirvModule, RefusesAModuleThatOnlyLooksWhole) {
    // Well-formed, but a fragment shader must say where its origin is.
    std::string text = assembly();
    const std::string mode = "OpExecutionMode %2 OriginUpperLeft";
    text.erase(text.find(mode), mode.size());
    std::string reason;
    EXPECT_FALSE(SpirvModule::read(bytesOf(assembledWords(text)), reason).has_value());
    EXPECT_FALSE(reason.empty());
}

TEST(SpirvModule, RefusesMoreThanTheLargestSize) {
    std::string reason;
    const std::vector<std::uint32_t> words(SpirvModule::maximumBytes / 4 + 1, 0x07230203);
    EXPECT_FALSE(SpirvModule::read(bytesOf(words), reason).has_value());
    EXPECT_EQ(reason, "too large");
}

TEST(SpirvModule, ReadsAFile) {
    const std::vector<std::uint32_t> words = assembledWords();
    const TemporaryFile file(bytesOf(words));
    std::string reason;
    const auto module = SpirvModule::readFile(file.path(), reason);
    ASSERT_TRUE(module.has_value()) << reason;
    EXPECT_EQ(module->words(), words);
}

TEST(SpirvModule, SaysWhyAFileCannotBeRead) {
    const std::string noFile = std::make_error_code(std::errc::no_such_file_or_directory).message();
    std::string reason;
    EXPECT_FALSE(SpirvModule::readFile("/nonexistent/library", reason).has_value());
    EXPECT_EQ(reason, noFile);
    EXPECT_FALSE(SpirvModule::readFile(std::filesystem::temp_directory_path(), reason).has_value());
    EXPECT_EQ(reason, noFile);
    const TemporaryFile empty{std::span<const std::byte>()};
    EXPECT_FALSE(SpirvModule::readFile(empty.path(), reason).has_value());
    EXPECT_FALSE(reason.empty());
}

}  // namespace
}  // namespace gpu::vulkan
