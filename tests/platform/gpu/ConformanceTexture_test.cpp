#include "tests/platform/gpu/Conformance.hpp"

#include <algorithm>
#include <array>
#include <limits>

using gpu::LoadAction;
using gpu::PixelFormat;
using gpu::StorageMode;
using gpu::TextureUsage;

namespace {

constexpr std::array allFormats{PixelFormat::R8Unorm,    PixelFormat::R8Snorm,        PixelFormat::R16Unorm,
                                PixelFormat::RGBA8Unorm, PixelFormat::RGBA8UnormSrgb, PixelFormat::RGBA8Uint,
                                PixelFormat::BGRA8Unorm, PixelFormat::BGRA8UnormSrgb, PixelFormat::RGB10A2Unorm,
                                PixelFormat::RGBA16Float};

struct Cleared {
    PixelFormat format;
    gpu::ClearColor color;
    std::vector<unsigned> pixel;  // bytes as they lie in memory
};

/// Colours that every format can hold exactly, so that no rounding is in question. 31/255 and 203/255 are the sRGB
/// codes of the linear values nearest to them.
const std::vector<Cleared> clearedFormats{
    {PixelFormat::R8Unorm, {0.2, 0.9, 0.9, 0.9}, {51}},
    {PixelFormat::R16Unorm, {0.2, 0.9, 0.9, 0.9}, {0x33, 0x33}},
    {PixelFormat::RGBA8Unorm, {0.2, 0.4, 0.6, 1.0}, {51, 102, 153, 255}},
    {PixelFormat::RGBA8UnormSrgb, {0.0137020830, 0.5972017884, 1.0, 0.2}, {31, 203, 255, 51}},
    {PixelFormat::RGBA8Uint, {1.0, 20.0, 300.0, 7.0}, {1, 20, 255, 7}},
    {PixelFormat::BGRA8Unorm, {0.2, 0.4, 0.6, 1.0}, {153, 102, 51, 255}},
    {PixelFormat::BGRA8UnormSrgb, {0.0137020830, 0.5972017884, 1.0, 0.2}, {255, 203, 31, 51}},
    {PixelFormat::RGB10A2Unorm, {1.0, 0.0, 341.0 / 1023.0, 1.0 / 3.0}, {0xFF, 0x03, 0x50, 0x55}},
    {PixelFormat::RGBA16Float, {1.0, -2.0, 0.5, 0.0}, {0x00, 0x3C, 0x00, 0xC0, 0x00, 0x38, 0x00, 0x00}},
};

std::vector<std::byte> repeated(const std::vector<unsigned>& pixel, std::size_t count) {
    std::vector<std::byte> bytes;
    for (std::size_t index = 0; index < count; ++index) {
        std::transform(pixel.begin(), pixel.end(), std::back_inserter(bytes),
                       [](unsigned byte) { return static_cast<std::byte>(byte); });
    }
    return bytes;
}

}  // namespace

TEST_P(Conformance, UploadedBytesComeBackUnchangedInEveryFormat) {
    for (const PixelFormat format : allFormats) {
        SCOPED_TRACE(static_cast<std::uint32_t>(format));
        const Bytes bytes = countingBytes(7 * 5 * bytesPerPixel(format));
        const auto texture = makeFilledTexture(format, {7, 5}, bytes);
        ASSERT_NE(texture, nullptr);
        EXPECT_EQ(readBack(texture), bytes);
    }
}

TEST_P(Conformance, AnUploadIntoARegionLeavesTheRestAsItWas) {
    const Bytes before = countingBytes(8 * 6);
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {8, 6}, before);
    const Bytes patch = countingBytes(2 * 16 + 3, 100);  // three rows of 3 bytes, 16 apart, the last without padding

    ASSERT_TRUE(texture->replaceRegion({{4, 2}, {3, 3}}, patch, 16));

    Bytes expected = before;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            expected[(2 + row) * 8 + 4 + column] = patch[row * 16 + column];
        }
    }
    EXPECT_EQ(readBack(texture), expected);
}

TEST_P(Conformance, AnUploadThatDoesNotFitIsRefusedAndChangesNothing) {
    const Bytes before = countingBytes(8 * 8);
    const auto texture = makeFilledTexture(PixelFormat::R8Unorm, {8, 8}, before);
    const Bytes patch(64, std::byte{0xEE});
    constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();

    EXPECT_FALSE(texture->replaceRegion({{1, 0}, {8, 8}}, patch, 8)) << "beyond the right edge";
    EXPECT_FALSE(texture->replaceRegion({{0, 1}, {8, 8}}, patch, 8)) << "beyond the bottom";
    EXPECT_FALSE(texture->replaceRegion({{huge, 0}, {2, 1}}, patch, 8)) << "an origin that wraps around";
    EXPECT_FALSE(texture->replaceRegion({{0, 0}, {0, 8}}, patch, 8)) << "no columns";
    EXPECT_FALSE(texture->replaceRegion({{0, 0}, {8, 0}}, patch, 8)) << "no rows";
    EXPECT_FALSE(texture->replaceRegion({{0, 0}, {8, 8}}, {patch.data(), 63}, 8)) << "one byte too few";
    EXPECT_FALSE(texture->replaceRegion({{0, 0}, {8, 8}}, patch, 7)) << "rows too short";
    EXPECT_FALSE(texture->replaceRegion({{0, 0}, {8, 3}}, patch, huge / 2 + 1)) << "a sum of rows that wraps around";
    EXPECT_EQ(readBack(texture), before);
}

TEST_P(Conformance, AnUploadIntoAPrivateTextureIsRefused) {
    const auto texture = makeTexture(PixelFormat::R8Unorm, {4, 4}, TextureUsage::ShaderRead, StorageMode::Private);
    EXPECT_FALSE(texture->replaceRegion(wholeOf(*texture), countingBytes(16), 4));
    EXPECT_EQ(readBack(texture), Bytes(16)) << "a new texture is zero";
}

TEST_P(Conformance, AClearFillsATextureWithItsColourInEveryRenderableFormat) {
    for (const Cleared& cleared : clearedFormats) {
        SCOPED_TRACE(static_cast<std::uint32_t>(cleared.format));
        const auto texture = makeTexture(cleared.format, {5, 3}, TextureUsage::ShaderReadRenderTarget);
        ASSERT_NE(texture, nullptr);
        clear(texture, cleared.color);
        EXPECT_EQ(readBack(texture), repeated(cleared.pixel, 15));
    }
}

TEST_P(Conformance, AClearOfASignedTextureKeepsTheSignWhereDevicesCanDrawIntoSuch) {
    const auto texture = makeTexture(PixelFormat::R8Snorm, {4, 1}, TextureUsage::ShaderReadRenderTarget);
    if (texture == nullptr) {
        GTEST_SKIP() << "this device cannot draw into R8Snorm";
    }
    clear(texture, {-1.0, 0.0, 0.0, 1.0});
    EXPECT_EQ(readBack(texture), repeated({0x81}, 4));
}

TEST_P(Conformance, APassClearsAllItsTargetsEachWithItsOwnColour) {
    const auto first = makeTexture(PixelFormat::RGB10A2Unorm, {4, 4}, TextureUsage::ShaderReadRenderTarget);
    const auto second = makeTexture(PixelFormat::R16Unorm, {4, 4}, TextureUsage::ShaderReadRenderTarget);
    gpu::RenderPassDescriptor descriptor = passInto(first, LoadAction::Clear, {1.0, 1.0, 1.0, 1.0});
    descriptor.colorAttachments[1] = {second, LoadAction::Clear, gpu::StoreAction::Store, {0.2, 0.0, 0.0, 1.0}};

    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(descriptor)->endEncoding();
    commit(buffer);

    EXPECT_EQ(readBack(first), repeated({0xFF, 0xFF, 0xFF, 0xFF}, 16));
    EXPECT_EQ(readBack(second), repeated({0x33, 0x33}, 16));
}

TEST_P(Conformance, APassThatLoadsKeepsWhatItsTargetHeld) {
    const auto texture = makeTexture(PixelFormat::BGRA8Unorm, {4, 4}, TextureUsage::ShaderReadRenderTarget);
    clear(texture, {0.2, 0.4, 0.6, 1.0});
    const auto buffer = queue->commandBuffer();
    buffer->renderCommandEncoder(passInto(texture, LoadAction::Load, {1.0, 1.0, 1.0, 1.0}))->endEncoding();
    commit(buffer);
    EXPECT_EQ(readBack(texture), repeated({153, 102, 51, 255}, 16));
}

TEST_P(Conformance, ACopyOfARegionLandsWhereItShouldAndLeavesTheRest) {
    const Bytes from = countingBytes(6 * 6 * 4);
    const Bytes to = countingBytes(9 * 5 * 4, 90);
    const auto source = makeFilledTexture(PixelFormat::RGBA8Unorm, {6, 6}, from);
    const auto destination = makeFilledTexture(PixelFormat::BGRA8Unorm, {9, 5}, to);  // copied bit by bit

    const auto buffer = queue->commandBuffer();
    buffer->blitCommandEncoder()->copyTextureToTexture(source, {{1, 2}, {4, 3}}, destination, {5, 2});
    commit(buffer);

    Bytes expected = to;
    for (std::size_t row = 0; row < 3; ++row) {
        std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(((2 + row) * 6 + 1) * 4), 4 * 4,
                    expected.begin() + static_cast<std::ptrdiff_t>(((2 + row) * 9 + 5) * 4));
    }
    EXPECT_EQ(readBack(destination), expected);
    EXPECT_EQ(readBack(source), from);
}

TEST_P(Conformance, AWholeCopyIntoALargerTextureFillsItsCorner) {
    const Bytes from = countingBytes(3 * 2);
    const auto source = makeFilledTexture(PixelFormat::R8Unorm, {3, 2}, from);
    const auto destination = makeFilledTexture(PixelFormat::R8Unorm, {4, 4}, Bytes(16, std::byte{9}));

    const auto buffer = queue->commandBuffer();
    buffer->blitCommandEncoder()->copyTextureToTexture(source, wholeOf(*source), destination, {0, 0});
    commit(buffer);

    constexpr std::byte rest{9};
    EXPECT_EQ(readBack(destination), (Bytes{from[0], from[1], from[2], rest, from[3], from[4], from[5], rest, rest,
                                            rest, rest, rest, rest, rest, rest, rest}));
}

TEST_P(Conformance, CopiesThatDoNotFitAreRefusedAndChangeNothing) {
    const Bytes before = countingBytes(4 * 4);
    const auto source = makeFilledTexture(PixelFormat::R8Unorm, {8, 8}, countingBytes(64, 70));
    const auto destination = makeFilledTexture(PixelFormat::R8Unorm, {4, 4}, before);
    const auto wider = makeFilledTexture(PixelFormat::R16Unorm, {4, 4}, countingBytes(32));

    const auto buffer = queue->commandBuffer();
    gpu::BlitCommandEncoder* const encoder = buffer->blitCommandEncoder();
    encoder->copyTextureToTexture(source, wholeOf(*source), destination, {0, 0});
    encoder->copyTextureToTexture(source, {{0, 0}, {2, 2}}, destination, {3, 0});
    encoder->copyTextureToTexture(source, {{7, 0}, {2, 2}}, destination, {0, 0});
    encoder->copyTextureToTexture(source, {{0, 0}, {0, 0}}, destination, {0, 0});
    encoder->copyTextureToTexture(wider, wholeOf(*wider), destination, {0, 0});
    encoder->copyTextureToTexture(destination, {{0, 0}, {1, 1}}, destination, {2, 2});
    encoder->copyTextureToTexture(nullptr, {{0, 0}, {1, 1}}, destination, {0, 0});
    encoder->copyTextureToTexture(source, {{0, 0}, {1, 1}}, nullptr, {0, 0});
    commit(buffer);

    EXPECT_EQ(readBack(destination), before);
}

TEST_P(Conformance, ACopyToABufferTouchesOnlyTheRowsItWrites) {
    const Bytes from = countingBytes(4 * 4 * 2);
    const auto source = makeFilledTexture(PixelFormat::R16Unorm, {4, 4}, from);
    const auto destination = device->newBuffer(Bytes(40, std::byte{0xEE}));

    const auto buffer = queue->commandBuffer();
    buffer->blitCommandEncoder()->copyTextureToBuffer(source, {{1, 1}, {2, 3}}, destination, 6, 10);
    commit(buffer);
    buffer->waitUntilCompleted();

    Bytes expected(40, std::byte{0xEE});
    for (std::size_t row = 0; row < 3; ++row) {
        std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(((1 + row) * 4 + 1) * 2), 4,
                    expected.begin() + static_cast<std::ptrdiff_t>(6 + row * 10));
    }
    EXPECT_EQ(Bytes(destination->contents(), destination->contents() + 40), expected);
}

TEST_P(Conformance, CopiesToABufferThatDoNotFitAreRefused) {
    const auto source = makeFilledTexture(PixelFormat::R16Unorm, {4, 4}, countingBytes(32));
    const auto destination = device->newBuffer(Bytes(32, std::byte{0xEE}));
    constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();

    const auto buffer = queue->commandBuffer();
    gpu::BlitCommandEncoder* const encoder = buffer->blitCommandEncoder();
    encoder->copyTextureToBuffer(source, wholeOf(*source), destination, 2, 8);
    encoder->copyTextureToBuffer(source, wholeOf(*source), destination, 0, 10);
    encoder->copyTextureToBuffer(source, wholeOf(*source), destination, 0, 6);
    encoder->copyTextureToBuffer(source, wholeOf(*source), destination, huge - 1, 8);
    encoder->copyTextureToBuffer(source, {{0, 0}, {4, 3}}, destination, 0, huge / 2 + 1);
    encoder->copyTextureToBuffer(source, {{0, 0}, {4, 1}}, destination, 0, std::size_t{1} << 40);
    encoder->copyTextureToBuffer(source, {{0, 0}, {2, 2}}, destination, 1, 8);
    encoder->copyTextureToBuffer(source, {{0, 0}, {2, 2}}, destination, 0, 9);
    encoder->copyTextureToBuffer(source, {{4, 4}, {1, 1}}, destination, 0, 8);
    encoder->copyTextureToBuffer(nullptr, {{0, 0}, {1, 1}}, destination, 0, 8);
    encoder->copyTextureToBuffer(source, {{0, 0}, {1, 1}}, nullptr, 0, 8);
    commit(buffer);
    buffer->waitUntilCompleted();

    EXPECT_EQ(Bytes(destination->contents(), destination->contents() + 32), Bytes(32, std::byte{0xEE}));
}
