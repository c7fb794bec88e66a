#include "PresentationTest.hpp"
#include "platform/gpu/Device.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <spirv-tools/libspirv.hpp>
#include <string>

namespace {

constexpr const char* shader = R"(
               OpCapability Shader
               OpMemoryModel Logical GLSL450
               OpEntryPoint Vertex %1 "Corner"
               OpEntryPoint GLCompute %2 "Count"
               OpExecutionMode %2 LocalSize 8 8 1
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
)";

/// The real backend with a folder of its own for files.
class VulkanFiles : public PresentationTest {
protected:
    VulkanFiles() {
        std::string pattern = (std::filesystem::temp_directory_path() / "vulkan-files-XXXXXX").string();
        _directory = ::mkdtemp(pattern.data());
        std::vector<std::uint32_t> words;
        EXPECT_TRUE(spvtools::SpirvTools(SPV_ENV_VULKAN_1_3).Assemble(shader, &words));
        write(library(), std::string(reinterpret_cast<const char*>(words.data()), words.size() * 4));
    }
    ~VulkanFiles() override { std::filesystem::remove_all(_directory); }

    std::filesystem::path library() const { return _directory / "default.metallib"; }
    std::filesystem::path cacheDirectory() const { return _directory / "cache"; }

    static void write(const std::filesystem::path& file, const std::string& bytes) {
        std::ofstream(file, std::ios::binary) << bytes;
    }
    static std::string read(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /// Builds a pipeline on a device that keeps its pipelines in the cache folder, and closes the device again.
    bool buildPipeline() const {
        gpu::vulkan::VulkanOptions options;
        options.pipelineCacheDirectory = cacheDirectory();
        const auto backend = gpu::vulkan::makeVulkanBackend(options);
        const auto device = backend->systemDefaultDevice();
        const auto functions = device->newLibrary(library());
        return functions != nullptr &&
               device->newComputePipelineState(functions->newFunction("Count", gpu::FunctionType::Kernel)) != nullptr;
    }
    std::vector<std::filesystem::path> cacheFiles() const {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(cacheDirectory())) {
            files.push_back(entry.path());
        }
        return files;
    }

    std::filesystem::path _directory;
};

TEST_F(VulkanFiles, PipelinesAreKeptInOneFileForTheDriver) {
    ASSERT_TRUE(buildPipeline());
    const std::vector<std::filesystem::path> files = cacheFiles();
    ASSERT_EQ(files.size(), 1U);
    const std::string bytes = read(files[0]);
    EXPECT_GE(bytes.size(), 64U);
    const auto written = std::filesystem::last_write_time(files[0]);
    ASSERT_TRUE(buildPipeline());
    EXPECT_EQ(cacheFiles(), files);
    EXPECT_EQ(read(files[0]), bytes);
    EXPECT_EQ(std::filesystem::last_write_time(files[0]), written);
}

TEST_F(VulkanFiles, ADamagedFileOfPipelinesIsReplaced) {
    ASSERT_TRUE(buildPipeline());
    const std::filesystem::path file = cacheFiles().at(0);
    const std::string bytes = read(file);
    for (const std::string& damaged : {std::string(), std::string("rubbish"), bytes.substr(0, bytes.size() - 1),
                                       bytes + "x", std::string(bytes.size(), '\xFF')}) {
        write(file, damaged);
        ASSERT_TRUE(buildPipeline());
        EXPECT_EQ(read(file), bytes);
    }
}

TEST_F(VulkanFiles, AFolderThatCannotBeMadeIsNoMatter) {
    write(cacheDirectory(), "a file in its place");
    EXPECT_TRUE(buildPipeline());
    EXPECT_EQ(read(cacheDirectory()), "a file in its place");
}

}  // namespace
