#include "renderhost/QZLPipelineState.hpp"

#include "foundation/QZLError.hpp"
#include "platform/gpu/Backend.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/TestBundle.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

using testing::ElementsAre;

namespace {

/// A bundle with a shader library that offers Vertex, Fragment and Kernel.
class QZLPipelineState : public testing::Test {
protected:
    QZLPipelineState() {
        std::ofstream(library()) << "shaders";
        gpu->setFunctions({{"Vertex", gpu::FunctionType::Vertex},
                           {"Fragment", gpu::FunctionType::Fragment},
                           {"Kernel", gpu::FunctionType::Kernel}});
        layer->setDevice(gpu::createSystemDefaultDevice());
        gpu->clearCalls();
    }

    std::filesystem::path library() const { return bundle.directory() / "default.metallib"; }

    std::shared_ptr<gpu::RenderPipelineState> createRender(const std::string& vertex, const std::string& fragment,
                                                           std::uint64_t subCode = 1) {
        return QZLCreateRenderPipelineState(*layer, vertex, fragment, &error, subCode);
    }
    std::shared_ptr<gpu::ComputePipelineState> createCompute(const std::string& kernel, std::uint64_t subCode = 1) {
        return QZLCreateComputePipelineState(*layer, kernel, &error, subCode);
    }

    /// Checks and forgets the error.
    void expectError(std::int64_t code, std::int64_t subCode) {
        ASSERT_TRUE(error);
        EXPECT_EQ(error->code(), code);
        EXPECT_EQ(QZLGetErrorSubCode(*error), subCode);
        error.reset();
    }

    fake::Bundle bundle;
    fake::ScopedGpu gpu;
    std::shared_ptr<gpu::Layer> layer = gpu::createLayer();
    std::optional<platform::Error> error;
};

}  // namespace

TEST_F(QZLPipelineState, ARenderPipelineDrawsInTheLayersFormat) {
    layer->setPixelFormat(gpu::PixelFormat::BGRA8Unorm);
    EXPECT_NE(createRender("Vertex", "Fragment"), nullptr);
    EXPECT_THAT(gpu->calls(), ElementsAre("newLibrary default.metallib", "newFunction Vertex", "newFunction Fragment",
                                          "newRenderPipeline Vertex+Fragment [BGRA8Unorm]"));
    EXPECT_FALSE(error);
}

TEST_F(QZLPipelineState, ARenderToTexturePipelineDrawsInTheTexturesFormat) {
    const auto target =
        layer->device()->newTexture({gpu::PixelFormat::R16Unorm, 2, 2, gpu::TextureUsage::RenderTarget});
    EXPECT_NE(QZLCreateRenderToTexturePipelineState(*layer, *target, "Vertex", "Fragment", &error, 1), nullptr);
    EXPECT_EQ(gpu->calls().back(), "newRenderPipeline Vertex+Fragment [R16Unorm]");
}

TEST_F(QZLPipelineState, ACustomPipelineDrawsInTheFormatsGiven) {
    const std::array formats{gpu::PixelFormat::RGB10A2Unorm, gpu::PixelFormat::R16Unorm};
    EXPECT_NE(QZLCreateCustomRenderPipelineState(*layer, formats.data(), 2, "Vertex", "Fragment", &error, 1), nullptr);
    EXPECT_EQ(gpu->calls().back(), "newRenderPipeline Vertex+Fragment [RGB10A2Unorm, R16Unorm]");
}

TEST_F(QZLPipelineState, ACustomPipelineHandsItsConstantsOn) {
    const gpu::PixelFormat format = gpu::PixelFormat::R16Unorm;
    EXPECT_NE(QZLCreateCustomRenderPipelineState(*layer, &format, 1, "Vertex", "Fragment", &error, 1, {474, 7}),
              nullptr);
    EXPECT_EQ(gpu->calls().back(), "newRenderPipeline Vertex+Fragment [R16Unorm] 474 7");
}

TEST_F(QZLPipelineState, AComputePipelineIsMadeOfOneFunction) {
    EXPECT_NE(createCompute("Kernel"), nullptr);
    EXPECT_THAT(gpu->calls(),
                ElementsAre("newLibrary default.metallib", "newFunction Kernel", "newComputePipeline Kernel"));
    EXPECT_FALSE(error);
}

TEST_F(QZLPipelineState, TheLibraryIsLoadedAfreshEveryTime) {
    createRender("Vertex", "Fragment");
    createRender("Vertex", "Fragment");
    createCompute("Kernel");
    const auto calls = gpu->calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "newLibrary default.metallib"), 3);
}

TEST_F(QZLPipelineState, WithoutABundleTheErrorIs100) {
    platform::Bundle::setOverride(nullptr);
    EXPECT_EQ(createRender("Vertex", "Fragment", 1000), nullptr);
    expectError(100, 1000);
    EXPECT_EQ(createCompute("Kernel", 5), nullptr);
    expectError(100, 5);
}

TEST_F(QZLPipelineState, WithoutALibraryFileTheErrorIs101) {
    std::filesystem::remove(library());
    EXPECT_EQ(createRender("Vertex", "Fragment", 1000), nullptr);
    expectError(101, 1000);
    EXPECT_EQ(createCompute("Kernel", 5), nullptr);
    expectError(101, 5);
}

TEST_F(QZLPipelineState, ALibraryThatCannotBeLoadedIs101) {
    gpu->plan().noLibrary = true;
    EXPECT_EQ(createRender("Vertex", "Fragment"), nullptr);
    expectError(101, 1);
    EXPECT_EQ(createCompute("Kernel"), nullptr);
    expectError(101, 1);
}

TEST_F(QZLPipelineState, WithoutADeviceTheErrorIs101) {
    layer->setDevice(nullptr);
    EXPECT_EQ(createRender("Vertex", "Fragment"), nullptr);
    expectError(101, 1);
    EXPECT_EQ(createCompute("Kernel"), nullptr);
    expectError(101, 1);
}

TEST_F(QZLPipelineState, AMissingVertexFunctionIs102) {
    EXPECT_EQ(createRender("Nothing", "Fragment", 1001), nullptr);
    expectError(102, 1001);
}

TEST_F(QZLPipelineState, AMissingFragmentFunctionIs103) {
    EXPECT_EQ(createRender("Vertex", "Nothing", 1001), nullptr);
    expectError(103, 1001);
}

TEST_F(QZLPipelineState, BothFunctionsAreLookedUpAndTheMissingVertexFunctionWins) {
    gpu->plan().missingFunctions = {"Vertex", "Fragment"};
    EXPECT_EQ(createRender("Vertex", "Fragment"), nullptr);
    expectError(102, 1);
    EXPECT_THAT(gpu->calls(), ElementsAre(testing::_, testing::StartsWith("newFunction Vertex"),
                                          testing::StartsWith("newFunction Fragment")));
}

TEST_F(QZLPipelineState, AMissingComputeFunctionIs104) {
    EXPECT_EQ(createCompute("Nothing", 9), nullptr);
    expectError(104, 9);
}

TEST_F(QZLPipelineState, ARenderPipelineThatCannotBeMadeIs105) {
    gpu->plan().failingRenderPipelines = {0};
    EXPECT_EQ(createRender("Vertex", "Fragment", 1000), nullptr);
    expectError(105, 1000);
}

TEST_F(QZLPipelineState, AComputePipelineThatCannotBeMadeIs106) {
    gpu->plan().failingComputePipelines = {0};
    EXPECT_EQ(createCompute("Kernel", 8), nullptr);
    expectError(106, 8);
}

TEST_F(QZLPipelineState, SuccessLeavesAFormerErrorInItsPlace) {
    const std::array formats{gpu::PixelFormat::R16Unorm};
    const auto target = layer->device()->newTexture({formats[0], 2, 2, gpu::TextureUsage::RenderTarget});
    error = QZLCreateError("former", 42, 7);
    EXPECT_NE(createRender("Vertex", "Fragment"), nullptr);
    EXPECT_NE(QZLCreateRenderToTexturePipelineState(*layer, *target, "Vertex", "Fragment", &error, 1), nullptr);
    EXPECT_NE(QZLCreateCustomRenderPipelineState(*layer, formats.data(), 1, "Vertex", "Fragment", &error, 1), nullptr);
    EXPECT_NE(createCompute("Kernel"), nullptr);
    expectError(42, 7);
}

TEST_F(QZLPipelineState, AFailureNeedsNoPlaceForItsError) {
    gpu->plan().noLibrary = true;
    EXPECT_EQ(QZLCreateRenderPipelineState(*layer, "Vertex", "Fragment", nullptr, 1), nullptr);
    EXPECT_EQ(QZLCreateComputePipelineState(*layer, "Kernel", nullptr, 1), nullptr);
}
