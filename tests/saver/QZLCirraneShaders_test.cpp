#include "foundation/QZLBundle.hpp"
#include "saver/QZLCirraneRecords.hpp"
#include "tests/saver/VulkanTest.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numeric>
#include <span>

namespace {

constexpr std::size_t side = 64;
constexpr std::size_t noiseSide = 256;

/// The shader functions on their own, given hand-made images.
class QZLCirraneShaders : public VulkanTest {
protected:
    using Corners = std::array<QZLLightVertex, 4>;

    void SetUp() override {
        VulkanTest::SetUp();
        const auto path = QZLSaverBundle()->pathForResource("default", "metallib");
        ASSERT_TRUE(path);
        library = device->newLibrary(*path);
        ASSERT_NE(library, nullptr);
        queue = device->newCommandQueue();
    }

    std::shared_ptr<gpu::RenderPipelineState> pipeline(const std::string& name, std::vector<gpu::PixelFormat> formats) {
        return device->newRenderPipelineState(
            {library->newFunction("QZL" + name + "VertexShader", gpu::FunctionType::Vertex),
             library->newFunction("QZL" + name + "FragmentShader", gpu::FunctionType::Fragment), std::move(formats)});
    }

    std::shared_ptr<gpu::Texture> target(gpu::PixelFormat format, std::size_t width, std::size_t height) {
        return device->newTexture(
            {format, width, height, gpu::TextureUsage::ShaderReadRenderTarget, gpu::StorageMode::Private});
    }

    template <typename Texel>
    std::shared_ptr<gpu::Texture> image(gpu::PixelFormat format, std::size_t width, const std::vector<Texel>& texels) {
        const std::size_t height = texels.size() / width;
        auto texture =
            device->newTexture({format, width, height, gpu::TextureUsage::ShaderRead, gpu::StorageMode::Managed});
        EXPECT_TRUE(
            texture->replaceRegion({{0, 0}, {width, height}}, std::as_bytes(std::span(texels)), width * sizeof(Texel)));
        return texture;
    }

    template <typename Record>
    std::shared_ptr<gpu::Buffer> buffer(const Record& record) {
        return device->newBuffer(std::as_bytes(std::span(&record, 1)));
    }

    /// Draws the quad and returns the texels of the target of that number.
    template <typename Texel>
    std::vector<Texel> draw(const std::shared_ptr<gpu::RenderPipelineState>& state, const Corners& corners,
                            const std::shared_ptr<gpu::Buffer>& style,
                            const std::vector<std::shared_ptr<gpu::Texture>>& textures,
                            const std::vector<std::shared_ptr<gpu::Texture>>& targets, std::size_t wanted = 0) {
        const auto commands = queue->commandBuffer();
        gpu::RenderPassDescriptor pass;
        for (std::size_t index = 0; index < targets.size(); ++index) {
            pass.colorAttachments[index].texture = targets[index];
        }
        gpu::RenderCommandEncoder* encoder = commands->renderCommandEncoder(pass);
        encoder->setRenderPipelineState(state);
        encoder->setVertexBytes(std::as_bytes(std::span(corners)), 0);
        encoder->setFragmentBuffer(style, 0, 0);
        for (std::size_t index = 0; index < textures.size(); ++index) {
            encoder->setFragmentTexture(textures[index], index);
        }
        encoder->drawPrimitives(gpu::PrimitiveType::TriangleStrip, 0, 4);
        encoder->endEncoding();

        const auto& result = targets[wanted];
        const auto bytes = device->newBuffer(result->width() * result->height() * sizeof(Texel));
        gpu::BlitCommandEncoder* blit = commands->blitCommandEncoder();
        blit->copyTextureToBuffer(result, {{0, 0}, result->size()}, bytes, 0, result->width() * sizeof(Texel));
        blit->endEncoding();
        commands->commit();
        commands->waitUntilCompleted();
        std::vector<Texel> texels(bytes->length() / sizeof(Texel));
        std::memcpy(texels.data(), bytes->contents(), bytes->length());
        return texels;
    }

    static Corners quad(float left, float bottom, float right, float top) {
        return {
            {{{-1, -1}, {left, bottom}}, {{1, -1}, {right, bottom}}, {{-1, 1}, {left, top}}, {{1, 1}, {right, top}}}};
    }

    static std::vector<std::int8_t> randomNumbers() {
        std::vector<std::int8_t> numbers;
        std::uint32_t number = 1;
        for (std::size_t index = 0; index < noiseSide * noiseSide; ++index) {
            number = number * 1664525U + 1013904223U;
            numbers.push_back(static_cast<std::int8_t>(number >> 24));
        }
        return numbers;
    }

    /// What the colour pass makes of a region of the noise plane, in its target of that number.
    template <typename Texel>
    std::vector<Texel> clouds(const Corners& region, std::size_t height, std::size_t wanted,
                              const std::vector<std::int8_t>& noise = randomNumbers()) {
        QZLCirraneColorStyle style{{1.97F, 0.0F, 0.0F, 1.97F}, 4.0F, 0.3F, 1.5F, 0.6F, 0.4F, 0.0F};
        return draw<Texel>(
            pipeline("Color", {gpu::PixelFormat::RGB10A2Unorm, gpu::PixelFormat::R16Unorm}), region, buffer(style),
            {image(gpu::PixelFormat::R8Snorm, noiseSide, noise)},
            {target(gpu::PixelFormat::RGB10A2Unorm, side, height), target(gpu::PixelFormat::R16Unorm, side, height)},
            wanted);
    }
    std::vector<std::uint16_t> heights(const Corners& region, std::size_t height,
                                       const std::vector<std::int8_t>& noise = randomNumbers()) {
        return clouds<std::uint16_t>(region, height, 1, noise);
    }

    /// The green levels that the light pass makes of an evenly grey image with these heights.
    std::vector<int> lit(const std::vector<std::uint16_t>& heightTexels, float fade) {
        const std::vector<std::uint32_t> grey(side * side, 512U | 512U << 10 | 512U << 20 | 3U << 30);
        const QZLCirraneLightStyle style{1.0F / side, 1.0F / side, 0.04F / side, fade};
        const float last = (side - 1.0F) / side;
        const auto pixels = draw<std::array<std::uint8_t, 4>>(
            pipeline("Light", {gpu::PixelFormat::BGRA8Unorm}), quad(0.0F, last, last, 0.0F), buffer(style),
            {image(gpu::PixelFormat::RGB10A2Unorm, side, grey), image(gpu::PixelFormat::R16Unorm, side, heightTexels)},
            {target(gpu::PixelFormat::BGRA8Unorm, side, side)});
        std::vector<int> levels;
        for (const auto& pixel : pixels) {
            levels.push_back(pixel[1]);
        }
        return levels;
    }

    std::shared_ptr<gpu::Library> library;
    std::shared_ptr<gpu::CommandQueue> queue;
};

std::vector<std::uint16_t> hill() {
    std::vector<std::uint16_t> texels;
    for (std::size_t row = 0; row < side; ++row) {
        for (std::size_t column = 0; column < side; ++column) {
            const double x = (static_cast<double>(column) - 31.5) / 12.0;
            const double y = (static_cast<double>(row) - 31.5) / 12.0;
            texels.push_back(static_cast<std::uint16_t>(20000.0 + 40000.0 * std::exp(-x * x - y * y)));
        }
    }
    return texels;
}

TEST_F(QZLCirraneShaders, LightFallsFromTheUpperLeft) {
    const std::vector<int> levels = lit(hill(), 1.0F);
    const auto at = [&](std::size_t column, std::size_t row) { return levels[row * side + column]; };
    const int flat = at(2, 2);
    EXPECT_GT(at(24, 24), flat + 3) << "the slope that faces the light";
    EXPECT_LT(at(39, 39), flat - 3) << "the slope that looks away";
    EXPECT_GT(at(24, 32), at(39, 32)) << "left over right";
    EXPECT_GT(at(32, 24), at(32, 39)) << "top over bottom";
    EXPECT_NEAR(at(39, 24), flat, 3) << "across the light";
}

/// How alike two series are, from -1 to 1 (Pearson's correlation).
double likeness(const std::vector<double>& a, const std::vector<double>& b) {
    const auto mean = [](const auto& of) { return std::accumulate(of.begin(), of.end(), 0.0) / of.size(); };
    const double meanA = mean(a);
    const double meanB = mean(b);
    double both = 0.0;
    double squaresA = 0.0;
    double squaresB = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        both += (a[i] - meanA) * (b[i] - meanB);
        squaresA += (a[i] - meanA) * (a[i] - meanA);
        squaresB += (b[i] - meanB) * (b[i] - meanB);
    }
    return both / std::sqrt(squaresA * squaresB);
}

/// What is fine in an image: each texel against the mean of four around it. Without the rim, where some of those lack.
template <typename ValueAt>
std::vector<double> fineDetail(const ValueAt& valueAt) {
    constexpr std::size_t reach = 3;
    std::vector<double> detail;
    for (std::size_t row = reach + 1; row + reach + 1 < side; ++row) {
        for (std::size_t column = reach + 1; column + reach + 1 < side; ++column) {
            const std::size_t at = row * side + column;
            const double around =
                valueAt(at - reach) + valueAt(at + reach) + valueAt(at - reach * side) + valueAt(at + reach * side);
            detail.push_back(valueAt(at) - around / 4.0);
        }
    }
    return detail;
}

TEST_F(QZLCirraneShaders, TheColorPassLightsItsOwnSlopesFromThereToo) {
    const Corners region = quad(0.5F, 0.5F, 0.624F, 0.624F);
    const auto height = heights(region, side);
    const auto color = clouds<std::uint32_t>(region, side, 0);
    const auto slopeAlongTheLight = [&height](std::size_t at) {
        return 0.6 * (height[at + 1] - height[at - 1]) + 0.8 * (height[at + side] - height[at - side]);
    };
    const auto green = [&color](std::size_t at) { return static_cast<double>(color[at] >> 10 & 1023U); };
    EXPECT_GT(likeness(fineDetail(slopeAlongTheLight), fineDetail(green)), 0.62)
        << "0.49 without that light, by the glow";
}

TEST_F(QZLCirraneShaders, LevelGroundKeepsItsColor) {
    for (const int levelOfPixel : lit(std::vector<std::uint16_t>(side * side, 30000), 1.0F)) {
        ASSERT_NEAR(levelOfPixel, 512.0 / 1023.0 * 255.0, 1.0);
    }
}

TEST_F(QZLCirraneShaders, FadeMultipliesTheLight) {
    for (const int levelOfPixel : lit(hill(), 0.0F)) {
        ASSERT_EQ(levelOfPixel, 0);
    }
    const auto full = lit(hill(), 1.0F);
    const auto half = lit(hill(), 0.5F);
    for (std::size_t index = 0; index < full.size(); ++index) {
        ASSERT_NEAR(half[index], full[index] / 2.0, 1.5);
    }
}

TEST_F(QZLCirraneShaders, TopOfTheScreenIsTheTopOfTheRegion) {
    const float height = 0.124F;  // at which a region is seen as large as it is
    const auto here = heights(quad(0.5F, 0.5F, 0.6F, 0.5F + height), side);
    const auto halfAboveIt = heights(quad(0.5F, 0.5F + height / 2.0F, 0.6F, 0.5F + height * 1.5F), side);
    for (std::size_t index = 0; index < here.size() / 2; ++index) {
        ASSERT_NEAR(here[index], halfAboveIt[index + here.size() / 2], 200) << index;
    }
}

/// The largest step from one texel to the next of its row or column.
int largestStep(const std::vector<std::uint16_t>& texels) {
    int largest = 0;
    for (std::size_t index = side; index < texels.size(); ++index) {
        largest = std::max(largest, std::abs(texels[index] - texels[index - side]));
        if (index % side != 0) {
            largest = std::max(largest, std::abs(texels[index] - texels[index - 1]));
        }
    }
    return largest;
}

TEST_F(QZLCirraneShaders, NoisePlaneIsSeamlessWhereTheTextureRepeats) {
    const auto acrossTheOrigin = heights(quad(-0.01F, -0.01F, 0.01F, 0.01F), side);
    EXPECT_LT(largestStep(acrossTheOrigin), 4000);
}

TEST_F(QZLCirraneShaders, NoisePlaneGoesOnFromTheTexturesOtherEdge) {
    auto otherEdge = randomNumbers();
    for (std::size_t index = 0; index < noiseSide; ++index) {
        for (std::int8_t* number :
             {&otherEdge[(noiseSide - 1) * noiseSide + index], &otherEdge[index * noiseSide + noiseSide - 1]}) {
            *number = static_cast<std::int8_t>(~*number);  // the opposite direction
        }
    }
    const auto beforeTheOrigin = quad(-0.04F, -0.04F, -0.01F, -0.01F);
    const auto farFromTheEdge = quad(0.40F, 0.10F, 0.43F, 0.13F);
    EXPECT_NE(heights(beforeTheOrigin, side), heights(beforeTheOrigin, side, otherEdge));
    EXPECT_EQ(heights(farFromTheEdge, side), heights(farFromTheEdge, side, otherEdge));
}

}  // namespace
