#include "renderhost/QZLScreenshot.hpp"

#include "platform/gpu/Backend.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QImage>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <vector>

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

using Bytes = std::vector<unsigned char>;

class QZLScreenshot : public testing::Test {
protected:
    fake::TemporaryDirectory directory;
    fake::ScopedGpu gpu;
    std::shared_ptr<gpu::Device> device = gpu::createSystemDefaultDevice();
    std::string path = (directory.path() / "image.bmp").string();

    std::shared_ptr<gpu::Texture> texture(std::size_t width, std::size_t height, gpu::PixelFormat format,
                                          const Bytes& pixels) const {
        auto result =
            device->newTexture({format, width, height, gpu::TextureUsage::ShaderRead, gpu::StorageMode::Managed});
        EXPECT_TRUE(result->replaceRegion({{0, 0}, {width, height}}, std::as_bytes(std::span(pixels)), width * 4));
        return result;
    }

    /// A different value for every byte of the picture.
    static Bytes pattern(std::size_t width, std::size_t height) {
        Bytes pixels(width * height * 4);
        for (std::size_t index = 0; index < pixels.size(); ++index) {
            pixels[index] = static_cast<unsigned char>(index * 7 + 3);
        }
        return pixels;
    }

    Bytes file() const {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    Bytes rows() const {
        const Bytes all = file();
        return {all.begin() + 54, all.end()};
    }
    bool directoryIsEmpty() const { return std::filesystem::is_empty(directory.path()); }
};

/// Larger than any memory; nothing can be done with it.
class EndlessTexture final : public gpu::Texture {
public:
    EndlessTexture(std::shared_ptr<gpu::Device> owner, std::size_t width, std::size_t height)
        : gpu::Texture(std::move(owner), {gpu::PixelFormat::BGRA8Unorm, width, height}) {}

private:
    bool writeRegion(const gpu::Region&, std::span<const std::byte>, std::size_t) override { return false; }
};

class QZLScreenshotFormat : public QZLScreenshot, public testing::WithParamInterface<gpu::PixelFormat> {
protected:
    static bool blueFirst() {
        return GetParam() == gpu::PixelFormat::BGRA8Unorm || GetParam() == gpu::PixelFormat::BGRA8UnormSrgb;
    }
};

}  // namespace

TEST_F(QZLScreenshot, ATwoByTwoPictureIsWrittenByteForByte) {
    const Bytes pixels{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    EXPECT_TRUE(QZLSaveScreenshot(path, texture(2, 2, gpu::PixelFormat::BGRA8Unorm, pixels)));
    EXPECT_THAT(file(), ElementsAreArray(Bytes{'B', 'M',                        //
                                               70,  0,   0,  0,                 // file size
                                               0,   0,   0,  0,                 // reserved
                                               54,  0,   0,  0,                 // offset of the rows
                                               40,  0,   0,  0,                 // size of the header
                                               2,   0,   0,  0,  2,  0,  0, 0,  // width and height
                                               1,   0,   24, 0,                 // planes, bits per pixel
                                               0,   0,   0,  0,                 // compression
                                               16,  0,   0,  0,                 // size of the rows
                                               0,   0,   0,  0,  0,  0,  0, 0,  // resolution
                                               0,   0,   0,  0,  0,  0,  0, 0,  // colours
                                               9,   10,  11, 13, 14, 15, 0, 0,  // the lower row first
                                               1,   2,   3,  5,  6,  7,  0, 0}));
}

TEST_F(QZLScreenshot, RgbaIsTurnedIntoBlueGreenRed) {
    const Bytes pixels{1, 2, 3, 4};
    EXPECT_TRUE(QZLSaveScreenshot(path, texture(1, 1, gpu::PixelFormat::RGBA8Unorm, pixels)));
    EXPECT_THAT(rows(), ElementsAre(3, 2, 1, 0));
}

TEST_F(QZLScreenshot, SizesOfSeveralBytesAreLittleEndian) {
    EXPECT_TRUE(QZLSaveScreenshot(path, texture(300, 260, gpu::PixelFormat::BGRA8Unorm, pattern(300, 260))));
    const Bytes header = file();
    const std::uint32_t size = 900 * 260 + 54;
    ASSERT_EQ(header.size(), size);
    EXPECT_THAT(Bytes(header.begin() + 2, header.begin() + 6),
                ElementsAre(size & 0xFF, (size >> 8) & 0xFF, (size >> 16) & 0xFF, size >> 24));
    EXPECT_THAT(Bytes(header.begin() + 18, header.begin() + 26), ElementsAre(300 & 0xFF, 1, 0, 0, 260 & 0xFF, 1, 0, 0));
}

TEST_P(QZLScreenshotFormat, RowsArePaddedToFourBytesAtEveryWidth) {
    for (std::size_t width = 1; width <= 9; ++width) {
        SCOPED_TRACE(width);
        const Bytes pixels = pattern(width, 3);
        ASSERT_TRUE(QZLSaveScreenshot(path, texture(width, 3, GetParam(), pixels)));
        Bytes expected;
        for (std::size_t row = 3; row-- > 0;) {
            for (std::size_t column = 0; column < width; ++column) {
                const auto* const pixel = &pixels[(row * width + column) * 4];
                for (const std::size_t channel : {0, 1, 2}) {
                    expected.push_back(pixel[blueFirst() ? channel : 2 - channel]);
                }
            }
            while (expected.size() % 4 != 0) {
                expected.push_back(0);
            }
        }
        EXPECT_EQ(rows(), expected);
    }
}

TEST_P(QZLScreenshotFormat, AnotherReaderSeesThePictureUpright) {
    for (std::size_t width = 1; width <= 9; ++width) {
        SCOPED_TRACE(width);
        const Bytes pixels = pattern(width, 4);
        ASSERT_TRUE(QZLSaveScreenshot(path, texture(width, 4, GetParam(), pixels)));
        const QImage image(QString::fromStdString(path), "BMP");
        ASSERT_EQ(image.width(), static_cast<int>(width));
        ASSERT_EQ(image.height(), 4);
        for (std::size_t row = 0; row < 4; ++row) {
            for (std::size_t column = 0; column < width; ++column) {
                const auto* const pixel = &pixels[(row * width + column) * 4];
                const QRgb expected =
                    blueFirst() ? qRgb(pixel[2], pixel[1], pixel[0]) : qRgb(pixel[0], pixel[1], pixel[2]);
                EXPECT_EQ(image.pixel(static_cast<int>(column), static_cast<int>(row)), expected);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, QZLScreenshotFormat,
                         testing::Values(gpu::PixelFormat::RGBA8Unorm, gpu::PixelFormat::RGBA8UnormSrgb,
                                         gpu::PixelFormat::RGBA8Uint, gpu::PixelFormat::BGRA8Unorm,
                                         gpu::PixelFormat::BGRA8UnormSrgb));

TEST_F(QZLScreenshot, OtherFormatsAreRefused) {
    for (const auto format : {gpu::PixelFormat::RGBA16Float, gpu::PixelFormat::RGB10A2Unorm, gpu::PixelFormat::R8Unorm,
                              gpu::PixelFormat::R8Snorm, gpu::PixelFormat::R16Unorm}) {
        const auto other = device->newTexture({format, 2, 2, gpu::TextureUsage::ShaderRead});
        EXPECT_FALSE(QZLSaveScreenshot(path, other));
    }
    EXPECT_TRUE(directoryIsEmpty());
}

TEST_F(QZLScreenshot, AFramebufferOnlyDrawableIsRefused) {
    const auto layer = gpu::createLayer();
    layer->setDevice(device);
    layer->setDrawableSize({2, 2});
    EXPECT_FALSE(QZLSaveScreenshot(path, layer->nextDrawable()->texture()));
    EXPECT_TRUE(directoryIsEmpty());
    layer->setFramebufferOnly(false);
    EXPECT_TRUE(QZLSaveScreenshot(path, layer->nextDrawable()->texture()));
}

TEST_F(QZLScreenshot, NoTextureIsRefused) {
    EXPECT_FALSE(QZLSaveScreenshot(path, nullptr));
    EXPECT_TRUE(directoryIsEmpty());
}

TEST_F(QZLScreenshot, AReadBackThatFailsAnywhereLeavesNoFileAndNothingElse) {
    const auto source = texture(2, 2, gpu::PixelFormat::BGRA8Unorm, pattern(2, 2));
    const std::size_t before = gpu->liveObjects();
    const std::vector<std::string> steps{"newBuffer 16", "newCommandQueue", "commandBuffer", "blit"};
    std::uint64_t call = 3;  // after the device, the texture and its upload
    for (std::size_t failing = 0; failing < steps.size(); ++failing) {
        SCOPED_TRACE(steps[failing]);
        gpu->plan().failingCalls = {call + failing};
        call += failing + 1;
        EXPECT_FALSE(QZLSaveScreenshot(path, source));
        EXPECT_EQ(gpu->calls().back(), steps[failing] + " failed");
        EXPECT_EQ(gpu->liveObjects(), before);
        EXPECT_TRUE(directoryIsEmpty());
    }
    EXPECT_TRUE(QZLSaveScreenshot(path, source));
}

TEST_F(QZLScreenshot, WithoutAQueueOrAnEncoderThereIsNone) {
    const auto source = texture(2, 2, gpu::PixelFormat::BGRA8Unorm, pattern(2, 2));
    gpu->plan().failingEncoders = {0};
    EXPECT_FALSE(QZLSaveScreenshot(path, source));
    EXPECT_EQ(gpu->calls().back(), "blit failed");
    gpu->plan().noCommandQueue = true;
    EXPECT_FALSE(QZLSaveScreenshot(path, source));
    EXPECT_TRUE(directoryIsEmpty());
}

TEST_F(QZLScreenshot, OfALostDeviceThereIsNone) {
    const auto source = texture(2, 2, gpu::PixelFormat::BGRA8Unorm, pattern(2, 2));
    gpu->plan().lostAfterCommits = 0;
    device->newCommandQueue()->commandBuffer()->commit();
    EXPECT_FALSE(QZLSaveScreenshot(path, source));
    EXPECT_TRUE(directoryIsEmpty());
}

TEST_F(QZLScreenshot, AnImageTooLargeForTheFormatIsNotEvenReadBack) {
    struct Side {
        std::size_t width;
        std::size_t height;
        bool fits;
    };
    // 32 bits hold 54 bytes of header and the rows, and 31 bits the length of a row of texels.
    for (const Side& side :
         {Side{3, 357913936, true}, Side{3, 357913937, false}, Side{1073741812, 1, false}, Side{536870911, 1, true},
          Side{536870912, 1, false}, Side{1, 536870911, true}, Side{1, 536870912, false}, Side{37836, 37836, true},
          Side{37837, 37837, false}, Side{4294967297, 4294967297, false}}) {
        SCOPED_TRACE(side.width);
        gpu->clearCalls();
        EXPECT_FALSE(QZLSaveScreenshot(path, std::make_shared<EndlessTexture>(device, side.width, side.height)));
        EXPECT_EQ(gpu->calls().size(), side.fits ? 1U : 0U) << "the buffer that the device has no memory for";
    }
    EXPECT_TRUE(directoryIsEmpty());
}

TEST_F(QZLScreenshot, AFormerFileIsReplaced) {
    std::ofstream(path) << std::string(1000, 'x');
    EXPECT_TRUE(QZLSaveScreenshot(path, texture(1, 1, gpu::PixelFormat::BGRA8Unorm, {1, 2, 3, 4})));
    EXPECT_EQ(file().size(), 58U);
}

TEST_F(QZLScreenshot, AFileThatCannotBeOpenedIsAFailure) {
    const auto source = texture(1, 1, gpu::PixelFormat::BGRA8Unorm, {1, 2, 3, 4});
    EXPECT_FALSE(QZLSaveScreenshot((directory.path() / "missing" / "image.bmp").string(), source));
    EXPECT_FALSE(QZLSaveScreenshot(directory.path().string(), source));
    EXPECT_TRUE(std::filesystem::is_directory(directory.path()));
}

TEST_F(QZLScreenshot, AFullDiskLeavesNothingHalfMade) {
    for (const std::size_t side : {1, 200}) {  // small ones fail when the file is closed, large ones before
        std::filesystem::create_symlink("/dev/full", path);
        EXPECT_FALSE(QZLSaveScreenshot(path, texture(side, side, gpu::PixelFormat::BGRA8Unorm, pattern(side, side))));
        EXPECT_TRUE(directoryIsEmpty());
        std::filesystem::remove(path);
    }
}

TEST_F(QZLScreenshot, TheReadBackIsTheWholeTextureInItsOwnByteOrder) {
    const Bytes pixels = pattern(5, 3);
    const auto former = device->newBuffer(std::size_t{1});
    std::shared_ptr<gpu::Buffer> buffer = former;
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    EXPECT_TRUE(QZLCopyTextureToBuffer(texture(5, 3, gpu::PixelFormat::RGBA8Unorm, pixels), buffer, width, height));
    EXPECT_EQ(width, 5U);
    EXPECT_EQ(height, 3U);
    ASSERT_NE(buffer, nullptr);
    EXPECT_NE(buffer, former);
    ASSERT_EQ(buffer->length(), pixels.size());
    EXPECT_EQ(std::memcmp(buffer->contents(), pixels.data(), pixels.size()), 0);
}

TEST_F(QZLScreenshot, TheReadBackUsesAQueueOfItsOwn) {
    const auto source = texture(2, 2, gpu::PixelFormat::BGRA8Unorm, pattern(2, 2));
    source->setLabel("source");
    gpu->clearCalls();
    std::shared_ptr<gpu::Buffer> buffer;
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    QZLCopyTextureToBuffer(source, buffer, width, height);
    EXPECT_THAT(gpu->calls(), ElementsAre("newBuffer 16", "newCommandQueue", "commandBuffer", "blit",
                                          "copy source 0,0 2x2 to 16 bytes+0 8", "end", "commit"));
}
