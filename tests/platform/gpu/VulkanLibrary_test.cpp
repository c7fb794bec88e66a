#include "tests/platform/gpu/VulkanDrawing.hpp"

#include "platform/SystemLog.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <fstream>

using gpu::FunctionType;
using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::PrimitiveType;

TEST_P(VulkanDrawing, FunctionsAreFoundByNameAndStage) {
    const auto vertex = library->newFunction("QuadVertex", FunctionType::Vertex);
    ASSERT_NE(vertex, nullptr);
    EXPECT_EQ(vertex->name(), "QuadVertex");
    EXPECT_EQ(vertex->functionType(), FunctionType::Vertex);
    EXPECT_NE(library->newFunction("FillKernel", FunctionType::Kernel), nullptr);
    EXPECT_EQ(library->newFunction("QuadVertex", FunctionType::Fragment), nullptr);
    EXPECT_EQ(library->newFunction("FillKernel", FunctionType::Vertex), nullptr);
    EXPECT_EQ(library->newFunction("QuadVerte", FunctionType::Vertex), nullptr);
    EXPECT_EQ(library->newFunction("main", FunctionType::Vertex), nullptr);
    EXPECT_EQ(library->newFunction("", FunctionType::Vertex), nullptr);
}

TEST_P(VulkanDrawing, PipelinesNeedFunctionsOfTheRightStages) {
    const auto vertex = library->newFunction("QuadVertex", FunctionType::Vertex);
    const auto fragment = library->newFunction("GradientFragment", FunctionType::Fragment);
    const std::vector formats{PixelFormat::RGBA8Unorm};
    EXPECT_EQ(device->newRenderPipelineState({fragment, vertex, formats}), nullptr);
    EXPECT_EQ(device->newRenderPipelineState({vertex, vertex, formats}), nullptr);
    EXPECT_EQ(device->newRenderPipelineState({vertex, nullptr, formats}), nullptr);
    EXPECT_EQ(device->newRenderPipelineState({vertex, fragment, std::vector(5, PixelFormat::RGBA8Unorm)}), nullptr);
    EXPECT_EQ(device->newComputePipelineState(vertex), nullptr);
    EXPECT_NE(device->newRenderPipelineState({vertex, fragment, formats}), nullptr);
}

TEST_P(VulkanDrawing, AFunctionKeepsItsLibraryAndAPipelineItsFunctions) {
    auto pipeline = makePipeline("GradientFragment");
    const std::weak_ptr<gpu::Library> opened = library;
    auto function = library->newFunction("QuadVertex", FunctionType::Vertex);
    library.reset();
    EXPECT_FALSE(opened.expired());
    function.reset();
    EXPECT_TRUE(opened.expired());

    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::Clear));
    encoder->setRenderPipelineState(pipeline);
    pipeline.reset();
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);
    EXPECT_EQ(readBack(target), bytesOf({128, 128, 0, 255}));
}

TEST_P(VulkanDrawing, WhyALibraryCannotBeOpenedIsToldOnce) {
    std::vector<std::string> log;
    platform::setSystemLogSink([&log](std::string_view line) { log.emplace_back(line); });
    const fake::TemporaryDirectory directory;
    const auto missing = directory.path() / "missing.metallib";
    EXPECT_EQ(device->newLibrary(missing), nullptr);
    EXPECT_EQ(device->newLibrary(missing), nullptr);
    platform::setSystemLogSink([](std::string_view) {});
    ASSERT_EQ(log.size(), 1u);
    EXPECT_NE(log[0].find(missing.string()), std::string::npos) << log[0];
}

TEST_P(VulkanDrawing, DamagedLibrariesAreNotOpened) {
    std::ifstream file(TEST_SHADER_LIBRARY, std::ios::binary);
    const std::string sound{std::istreambuf_iterator<char>(file), {}};
    ASSERT_GT(sound.size(), 100u);
    const fake::TemporaryDirectory directory;
    const auto path = directory.path() / "damaged.metallib";
    const auto open = [&](const std::string& contents) {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << contents;
        return device->newLibrary(path);
    };
    EXPECT_NE(open(sound), nullptr);
    EXPECT_EQ(open(""), nullptr);
    EXPECT_EQ(open("no shader library"), nullptr);
    EXPECT_EQ(open(std::string(4096, '\xA5')), nullptr);
    EXPECT_EQ(open(sound.substr(0, 20) + std::string(sound.size() - 20, '\0')), nullptr);
    for (const std::size_t length :
         {std::size_t{3}, std::size_t{19}, std::size_t{20}, sound.size() / 2, sound.size() - 4, sound.size() - 1}) {
        EXPECT_EQ(open(sound.substr(0, length)), nullptr) << "cut to " << length;
    }
}
