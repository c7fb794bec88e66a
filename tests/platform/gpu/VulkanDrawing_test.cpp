#include "tests/platform/gpu/VulkanBackendUnderTest.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>

using gpu::FunctionType;
using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::PrimitiveType;
using gpu::TextureUsage;

namespace {

/// Position in clip space, y up; position in the texture.
using Corner = std::array<float, 4>;
using Quad = std::array<Corner, 4>;

/// Over the whole target, with these texture positions at its edges.
Quad wholeTarget(float left, float top, float right, float bottom) {
    return {{{-1, -1, left, bottom}, {1, -1, right, bottom}, {-1, 1, left, top}, {1, 1, right, top}}};
}

Quad partOfTarget(float left, float bottom, float right, float top) {
    return {{{left, bottom, 0, 1}, {right, bottom, 1, 1}, {left, top, 0, 0}, {right, top, 1, 0}}};
}

std::vector<std::byte> bytesOf(std::initializer_list<unsigned> values) {
    std::vector<std::byte> bytes;
    std::transform(values.begin(), values.end(), std::back_inserter(bytes),
                   [](unsigned value) { return static_cast<std::byte>(value); });
    return bytes;
}

int distance(std::byte left, std::byte right) {
    return std::abs(std::to_integer<int>(left) - std::to_integer<int>(right));
}

}  // namespace

/// Draws with the small library of shaders that is built beside these tests.
class VulkanDrawing : public Conformance {
protected:
    void SetUp() override {
        Conformance::SetUp();
        library = device->newLibrary(TEST_SHADER_LIBRARY);
        ASSERT_NE(library, nullptr);
    }

    void TearDown() override {
        library.reset();
        Conformance::TearDown();
    }

    std::shared_ptr<gpu::RenderPipelineState> makePipeline(const std::string& fragment,
                                                           const std::vector<PixelFormat>& formats = {
                                                               PixelFormat::RGBA8Unorm}) {
        return device->newRenderPipelineState({library->newFunction("QuadVertex", FunctionType::Vertex),
                                               library->newFunction(fragment, FunctionType::Fragment), formats});
    }

    std::shared_ptr<gpu::Texture> makeTarget(gpu::Extent size, PixelFormat format = PixelFormat::RGBA8Unorm) {
        return makeTexture(format, size, TextureUsage::ShaderReadRenderTarget);
    }

    static void setQuad(gpu::RenderCommandEncoder& encoder, const Quad& quad) {
        encoder.setVertexBytes(std::as_bytes(std::span(quad)), 0);
    }

    /// One quad with one texture into a fresh target, read back.
    Bytes drawTexture(const std::string& fragment, const std::shared_ptr<gpu::Texture>& texture, gpu::Extent size,
                      const Quad& quad) {
        const auto target = makeTarget(size);
        const auto buffer = queue->commandBuffer();
        auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
        encoder->setRenderPipelineState(makePipeline(fragment));
        setQuad(*encoder, quad);
        if (texture != nullptr) {
            encoder->setFragmentTexture(texture, 0);
        }
        encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
        encoder->endEncoding();
        commit(buffer);
        return readBack(target);
    }

    static Bytes redsOf(const Bytes& pixels) {
        Bytes reds;
        for (std::size_t index = 0; index < pixels.size(); index += 4) {
            reds.push_back(pixels[index]);
        }
        return reds;
    }

    std::shared_ptr<gpu::Library> library;
};

INSTANTIATE_TEST_SUITE_P(Vulkan, VulkanDrawing, testing::Values(vulkanBackend()));

TEST_P(VulkanDrawing, AGradientIsDrawnToItsFormula) {
    const Bytes pixels = drawTexture("GradientFragment", nullptr, {16, 8}, wholeTarget(0, 0, 1, 1));
    for (std::size_t y = 0; y < 8; ++y) {
        for (std::size_t x = 0; x < 16; ++x) {
            const auto red = static_cast<std::byte>(std::lround((x + 0.5) / 16 * 255));
            const auto green = static_cast<std::byte>(std::lround((y + 0.5) / 8 * 255));
            const std::byte* const pixel = &pixels[(y * 16 + x) * 4];
            EXPECT_LE(distance(pixel[0], red), 1) << x << ' ' << y;
            EXPECT_LE(distance(pixel[1], green), 1) << x << ' ' << y;
            EXPECT_EQ(pixel[2], std::byte{0});
            EXPECT_EQ(pixel[3], std::byte{255});
        }
    }
}

TEST_P(VulkanDrawing, ClipSpaceGrowsUpward) {
    const auto target = makeTarget({4, 4});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::Clear, {0, 0, 0, 0}));
    encoder->setRenderPipelineState(makePipeline("GradientFragment"));
    setQuad(*encoder, partOfTarget(-1, 0, 0, 1));  // the upper left quarter
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);

    const Bytes pixels = readBack(target);
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = 0; x < 4; ++x) {
            EXPECT_EQ(pixels[(y * 4 + x) * 4 + 3], std::byte(x < 2 && y < 2 ? 255 : 0)) << x << ' ' << y;
        }
    }
}

TEST_P(VulkanDrawing, ATriangleListTakesThreeVerticesFromItsStart) {
    const auto target = makeTarget({8, 8});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::Clear, {0, 0, 0, 0}));
    encoder->setRenderPipelineState(makePipeline("GradientFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->drawPrimitives(PrimitiveType::Triangle, 1, 3);  // bottom right, top left, top right
    commit(buffer);

    const Bytes pixels = readBack(target);
    EXPECT_EQ(pixels[(1 * 8 + 6) * 4 + 3], std::byte{255}) << "the upper right is inside";
    EXPECT_EQ(pixels[(6 * 8 + 1) * 4 + 3], std::byte{0}) << "the lower left is not";
}

TEST_P(VulkanDrawing, EachBufferIsAtItsOwnBindingAndOffset) {
    const std::array<float, 4> even{0.2F, 0.4F, 0.6F, 0.8F};
    const auto plain = device->newBuffer(std::as_bytes(std::span(even)));
    std::array<float, 68> shifted{};
    std::copy(even.rbegin(), even.rend(), shifted.begin() + 64);
    const auto offset = device->newBuffer(std::as_bytes(std::span(shifted)));

    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("BuffersFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->setFragmentBuffer(plain, 0, 0);
    encoder->setFragmentBuffer(offset, 256, 1);
    encoder->setFragmentBuffer(plain, 0, 2);
    encoder->setFragmentBuffer(offset, 256, 3);
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);

    EXPECT_EQ(readBack(target), bytesOf({51, 153, 153, 51}));
}

TEST_P(VulkanDrawing, ABufferMayBeWrittenUntilTheCommit) {
    const auto style = device->newBuffer(16);
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("BuffersFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    for (std::size_t index = 0; index < 4; ++index) {
        encoder->setFragmentBuffer(style, 0, index);
    }
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->endEncoding();
    const std::array<float, 4> late{1.0F, 0.2F, 0.4F, 0.6F};
    std::copy_n(std::as_bytes(std::span(late)).begin(), 16, style->contents());
    commit(buffer);
    EXPECT_EQ(readBack(target), bytesOf({255, 51, 102, 153}));
}

TEST_P(VulkanDrawing, EachTextureIsAtItsOwnBinding) {
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("TexturesFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    for (unsigned index = 0; index < 4; ++index) {
        encoder->setFragmentTexture(makeFilledTexture(PixelFormat::R8Unorm, {1, 1}, bytesOf({10 + index})), index);
    }
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);
    EXPECT_EQ(readBack(target), bytesOf({10, 11, 12, 13}));
}

TEST_P(VulkanDrawing, OneSamplerRepeatsAndTheOtherClamps) {
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {4, 1}, bytesOf({0, 80, 160, 240}));
    const Quad twice = wholeTarget(0, 0, 2, 1);
    EXPECT_EQ(redsOf(drawTexture("RepeatingFragment", texture, {8, 1}, twice)),
              bytesOf({0, 80, 160, 240, 0, 80, 160, 240}));
    EXPECT_EQ(redsOf(drawTexture("ClampingFragment", texture, {8, 1}, twice)),
              bytesOf({0, 80, 160, 240, 240, 240, 240, 240}));
}

TEST_P(VulkanDrawing, BothSamplersAreLinear) {
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {4, 1}, bytesOf({0, 80, 160, 240}));
    const Quad halfATexelOn = wholeTarget(0.125F, 0, 1.125F, 1);
    const auto expectNear = [](const Bytes& actual, const Bytes& expected) {
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t index = 0; index < actual.size(); ++index) {
            EXPECT_LE(distance(actual[index], expected[index]), 1) << index;
        }
    };
    expectNear(redsOf(drawTexture("RepeatingFragment", texture, {4, 1}, halfATexelOn)), bytesOf({40, 120, 200, 120}));
    expectNear(redsOf(drawTexture("ClampingFragment", texture, {4, 1}, halfATexelOn)), bytesOf({40, 120, 200, 240}));
}

TEST_P(VulkanDrawing, AGatherYieldsTheFourTexelsAroundAPointInTheirOrder) {
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {2, 2}, bytesOf({10, 20, 30, 40}));
    const Quad middle = wholeTarget(0.5F, 0.5F, 0.5F, 0.5F);
    const Quad corner = wholeTarget(0, 0, 0, 0);
    EXPECT_EQ(drawTexture("RepeatingGatherFragment", texture, {1, 1}, middle), bytesOf({30, 40, 20, 10}));
    EXPECT_EQ(drawTexture("RepeatingGatherFragment", texture, {1, 1}, corner), bytesOf({20, 10, 30, 40}));
    EXPECT_EQ(drawTexture("ClampingGatherFragment", texture, {1, 1}, corner), bytesOf({10, 10, 10, 10}));
}

TEST_P(VulkanDrawing, SignedTexturesAreReadWithTheirSign) {
    const auto texture = makeFilledTexture(PixelFormat::R8Snorm, {4, 1}, bytesOf({0x81, 0x80, 0x7F, 0x00}));
    EXPECT_EQ(redsOf(drawTexture("NegatedFragment", texture, {4, 1}, wholeTarget(0, 0, 1, 1))),
              bytesOf({255, 255, 0, 0}));
}

TEST_P(VulkanDrawing, APassDrawsIntoTwoTargetsAndTheNextOneReadsThem) {
    const auto color = makeTarget({4, 4}, PixelFormat::RGB10A2Unorm);
    const auto height = makeTarget({4, 4}, PixelFormat::R16Unorm);
    const auto result = makeTarget({4, 4});
    gpu::RenderPassDescriptor descriptor = passInto(color, LoadAction::DontCare);
    descriptor.colorAttachments[1].texture = height;

    const auto buffer = queue->commandBuffer();
    auto* encoder = buffer->renderCommandEncoder(descriptor);
    encoder->setLabel("First");
    encoder->setRenderPipelineState(
        makePipeline("TwoTargetsFragment", {PixelFormat::RGB10A2Unorm, PixelFormat::R16Unorm}));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->endEncoding();
    encoder = buffer->renderCommandEncoder(passInto(result, LoadAction::DontCare));
    encoder->setLabel("Second");
    encoder->setRenderPipelineState(makePipeline("TexturesFragment"));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    for (const std::size_t index : {0, 2}) {
        encoder->setFragmentTexture(color, index);
        encoder->setFragmentTexture(height, index + 1);
    }
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->endEncoding();
    commit(buffer);

    const Bytes pixels = readBack(result);
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = 0; x < 4; ++x) {
            const auto red = static_cast<std::byte>(std::lround((x + 0.5) / 4 * 255));
            const auto green = static_cast<std::byte>(std::lround((y + 0.5) / 4 * 255));
            EXPECT_LE(distance(pixels[(y * 4 + x) * 4], red), 1) << x << ' ' << y;
            EXPECT_LE(distance(pixels[(y * 4 + x) * 4 + 1], green), 1) << x << ' ' << y;
        }
    }
}

TEST_P(VulkanDrawing, ManyDrawsOfOnePassKeepTheirOwnBindings) {
    constexpr std::size_t count = 200;
    std::vector<float> values(count * 64);  // each 256 bytes after the one before it
    for (std::size_t index = 0; index < count; ++index) {
        std::fill_n(values.begin() + static_cast<std::ptrdiff_t>(index * 64), 4, static_cast<float>(index) / 255.0F);
    }
    const auto styles = device->newBuffer(std::as_bytes(std::span(values)));
    const auto target = makeTarget({count, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("BuffersFragment"));
    for (std::size_t index = 0; index < count; ++index) {
        const auto left = -1.0F + 2.0F * static_cast<float>(index) / static_cast<float>(count);
        setQuad(*encoder, partOfTarget(left, -1, left + 2.0F / static_cast<float>(count), 1));
        for (std::size_t binding = 0; binding < 4; ++binding) {
            encoder->setFragmentBuffer(styles, index * 256, binding);
        }
        encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    }
    commit(buffer);

    const Bytes reds = redsOf(readBack(target));
    for (std::size_t index = 0; index < count; ++index) {
        EXPECT_EQ(reds[index], static_cast<std::byte>(index));
    }
}

TEST_P(VulkanDrawing, ShadersAreToldTheKindOfDevice) {
    const auto target = makeTarget({1, 1}, PixelFormat::RGBA8Uint);
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline("DeviceKindFragment", {PixelFormat::RGBA8Uint}));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);

    const Bytes pixel = readBack(target);
    EXPECT_LE(std::to_integer<int>(pixel[0]), 4) << "other, integrated, discrete, virtual or CPU";
    EXPECT_EQ(pixel[3], std::byte{7});
    if (device->name().find("llvmpipe") != std::string::npos) {
        EXPECT_EQ(pixel[0], std::byte{4});
    }
}

TEST_P(VulkanDrawing, AKernelWritesATextureThatIsReadAfterwards) {
    const std::array<float, 4> color{0.2F, 0.0F, 0.6F, 1.0F};
    const auto style = device->newBuffer(std::as_bytes(std::span(color)));
    const Bytes greens = countingBytes(6 * 5);
    const auto greenTexture = makeFilledTexture(PixelFormat::R8Unorm, {6, 5}, greens);
    const auto image = makeTexture(PixelFormat::BGRA8Unorm, {6, 5}, TextureUsage::ShaderReadWrite);
    const auto pipeline = device->newComputePipelineState(library->newFunction("FillKernel", FunctionType::Kernel));
    ASSERT_NE(pipeline, nullptr);

    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->computeCommandEncoder();
    encoder->setLabel("Fill");
    encoder->setComputePipelineState(pipeline);
    encoder->setBuffer(style, 0, 1);
    encoder->setTexture(greenTexture, 2);
    encoder->setTexture(image, 0);
    encoder->dispatchThreadgroups(2, 2);
    encoder->endEncoding();
    commit(buffer);

    const Bytes pixels = readBack(image);
    for (std::size_t index = 0; index < greens.size(); ++index) {
        EXPECT_EQ(Bytes(&pixels[index * 4], &pixels[index * 4] + 4),
                  (Bytes{std::byte{153}, greens[index], std::byte{51}, std::byte{255}}));
    }
    EXPECT_EQ(drawTexture("ClampingFragment", image, {6, 5}, wholeTarget(0, 0, 1, 1))[1], greens[0])
        << "and a later pass samples it";
}

TEST_P(VulkanDrawing, ADrawThatDoesNotFitItsPassIsLeftOut) {
    const auto target = makeTarget({1, 1});
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, LoadAction::Clear, {1, 1, 1, 1}));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->setRenderPipelineState(makePipeline("GradientFragment", {PixelFormat::R16Unorm}));
    setQuad(*encoder, wholeTarget(0, 0, 1, 1));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    encoder->setRenderPipelineState(
        makePipeline("TwoTargetsFragment", {PixelFormat::RGBA8Unorm, PixelFormat::R16Unorm}));
    encoder->drawPrimitives(PrimitiveType::TriangleStrip, 0, 4);
    commit(buffer);
    EXPECT_EQ(readBack(target), bytesOf({255, 255, 255, 255}));
}

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
