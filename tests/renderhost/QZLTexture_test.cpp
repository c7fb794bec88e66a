#include "renderhost/QZLTexture.hpp"

#include "foundation/QZLError.hpp"
#include "platform/gpu/Backend.hpp"
#include "tests/support/FakeGpu.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

using testing::ElementsAre;

namespace {

class QZLTexture : public testing::Test {
protected:
    fake::ScopedGpu gpu;
    std::shared_ptr<gpu::Device> device = gpu::createSystemDefaultDevice();
    std::optional<platform::Error> error;
    std::array<std::shared_ptr<gpu::Texture>, 3> array;

    void expectError(std::int64_t code, std::int64_t subCode) const {
        ASSERT_TRUE(error);
        EXPECT_EQ(error->code(), code);
        EXPECT_EQ(QZLGetErrorSubCode(*error), subCode);
    }

    std::vector<std::string> labels() const {
        std::vector<std::string> result;
        for (const auto& texture : array) {
            result.push_back(texture != nullptr ? texture->label() : "(null)");
        }
        return result;
    }
};

}  // namespace

TEST_F(QZLTexture, AReadableTextureIsForDataFromTheCpu) {
    const auto texture = QZLCreateReadableTexture(*device, 7, 5, gpu::PixelFormat::R8Snorm, &error, 1);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->size(), (gpu::Extent{7, 5}));
    EXPECT_EQ(texture->pixelFormat(), gpu::PixelFormat::R8Snorm);
    EXPECT_EQ(texture->usage(), gpu::TextureUsage::ShaderRead);
    EXPECT_EQ(texture->storageMode(), gpu::StorageMode::Managed);
    EXPECT_FALSE(error);
}

TEST_F(QZLTexture, AWritableTextureIsForComputeFunctions) {
    const auto texture = QZLCreateWritableTexture(*device, 7, 5, &error, 1);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->size(), (gpu::Extent{7, 5}));
    EXPECT_EQ(texture->pixelFormat(), gpu::PixelFormat::BGRA8Unorm);
    EXPECT_EQ(texture->usage(), gpu::TextureUsage::ShaderReadWrite);
    EXPECT_EQ(texture->storageMode(), gpu::StorageMode::Private);
    EXPECT_FALSE(error);
}

TEST_F(QZLTexture, ARenderTargetTextureIsForPasses) {
    const auto texture = QZLCreateRenderTargetTexture(*device, 7, 5, gpu::PixelFormat::RGB10A2Unorm, &error, 1);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->size(), (gpu::Extent{7, 5}));
    EXPECT_EQ(texture->pixelFormat(), gpu::PixelFormat::RGB10A2Unorm);
    EXPECT_EQ(texture->usage(), gpu::TextureUsage::ShaderReadRenderTarget);
    EXPECT_EQ(texture->storageMode(), gpu::StorageMode::Private);
    EXPECT_FALSE(error);
}

TEST_F(QZLTexture, AFailureIsReportedWithTheCallersSubCode) {
    gpu->plan().failingTextures = {0, 1, 2};
    EXPECT_EQ(QZLCreateReadableTexture(*device, 7, 5, gpu::PixelFormat::R8Snorm, &error, 1004), nullptr);
    expectError(107, 1004);
    EXPECT_EQ(QZLCreateWritableTexture(*device, 7, 5, &error, 2), nullptr);
    expectError(107, 2);
    EXPECT_EQ(QZLCreateRenderTargetTexture(*device, 7, 5, gpu::PixelFormat::R16Unorm, &error, 0), nullptr);
    expectError(107, 0);
}

TEST_F(QZLTexture, AFailureNeedsNoPlaceForItsError) {
    gpu->plan().failingTextures = {0};
    EXPECT_EQ(QZLCreateWritableTexture(*device, 7, 5, nullptr, 2), nullptr);
}

TEST_F(QZLTexture, ATextureWithoutSizeCannotBeMade) {
    EXPECT_EQ(QZLCreateRenderTargetTexture(*device, 0, 5, gpu::PixelFormat::R16Unorm, &error, 6), nullptr);
    expectError(107, 6);
}

TEST_F(QZLTexture, MultipleWritableTexturesAreLabelledInArrayOrder) {
    EXPECT_TRUE(QZLCreateWritableTextureMultiple(*device, 7, 5, array.data(), 3, &error, 1));
    EXPECT_THAT(labels(), ElementsAre("ShaderTarget0", "ShaderTarget1", "ShaderTarget2"));
    EXPECT_EQ(array[2]->usage(), gpu::TextureUsage::ShaderReadWrite);
    EXPECT_FALSE(error);
}

TEST_F(QZLTexture, MultipleRenderTargetsAreLabelledInArrayOrder) {
    EXPECT_TRUE(
        QZLCreateRenderTargetTextureMultiple(*device, 7, 5, gpu::PixelFormat::R16Unorm, array.data(), 3, &error, 1));
    EXPECT_THAT(labels(), ElementsAre("RenderTarget0", "RenderTarget1", "RenderTarget2"));
    EXPECT_EQ(array[2]->usage(), gpu::TextureUsage::ShaderReadRenderTarget);
    EXPECT_EQ(array[2]->pixelFormat(), gpu::PixelFormat::R16Unorm);
}

TEST_F(QZLTexture, MultipleOfNoneSucceedsAndTouchesNothing) {
    array[0] = QZLCreateWritableTexture(*device, 7, 5, nullptr, 0);
    const auto before = array;
    EXPECT_TRUE(QZLCreateWritableTextureMultiple(*device, 7, 5, array.data(), 0, &error, 1));
    EXPECT_TRUE(
        QZLCreateRenderTargetTextureMultiple(*device, 7, 5, gpu::PixelFormat::R16Unorm, array.data(), 0, &error, 1));
    EXPECT_EQ(array, before);
    EXPECT_FALSE(error);
}

TEST_F(QZLTexture, MultipleStopsAtTheFirstFailureAndKeepsWhatItMade) {
    for (std::uint64_t failing = 0; failing < 3; ++failing) {
        SCOPED_TRACE(failing);
        const fake::ScopedGpu failingGpu;
        failingGpu->plan().failingTextures = {3 + failing};
        const auto other = gpu::createSystemDefaultDevice();
        ASSERT_TRUE(QZLCreateWritableTextureMultiple(*other, 1, 1, array.data(), 3, nullptr, 0));
        const auto former = array;
        error.reset();

        EXPECT_FALSE(QZLCreateRenderTargetTextureMultiple(*other, 7, 5, gpu::PixelFormat::R16Unorm, array.data(), 3,
                                                          &error, 1005));
        expectError(107, 1005);
        for (std::size_t index = 0; index < 3; ++index) {
            if (index < failing) {
                EXPECT_EQ(array[index]->label(), "RenderTarget" + std::to_string(index));
            } else {
                EXPECT_EQ(array[index], index == failing ? nullptr : former[index]);
            }
        }
    }
}

TEST_F(QZLTexture, SuccessLeavesAFormerErrorInItsPlace) {
    constexpr auto format = gpu::PixelFormat::R16Unorm;
    error = QZLCreateError("former", 42, 7);
    EXPECT_NE(QZLCreateReadableTexture(*device, 7, 5, format, &error, 1), nullptr);
    EXPECT_NE(QZLCreateWritableTexture(*device, 7, 5, &error, 1), nullptr);
    EXPECT_NE(QZLCreateRenderTargetTexture(*device, 7, 5, format, &error, 1), nullptr);
    EXPECT_TRUE(QZLCreateWritableTextureMultiple(*device, 7, 5, array.data(), 3, &error, 1));
    EXPECT_TRUE(QZLCreateRenderTargetTextureMultiple(*device, 7, 5, format, array.data(), 3, &error, 1));
    expectError(42, 7);
}

TEST_F(QZLTexture, MultipleReplacesAndReleasesWhatTheArrayHeld) {
    ASSERT_TRUE(QZLCreateWritableTextureMultiple(*device, 7, 5, array.data(), 3, nullptr, 0));
    const std::weak_ptr<gpu::Texture> former = array[1];
    ASSERT_TRUE(QZLCreateWritableTextureMultiple(*device, 7, 5, array.data(), 3, nullptr, 0));
    EXPECT_TRUE(former.expired());
}

TEST_F(QZLTexture, ReleaseNullsAsManyElementsAsToldTo) {
    ASSERT_TRUE(QZLCreateWritableTextureMultiple(*device, 7, 5, array.data(), 3, nullptr, 0));
    const std::weak_ptr<gpu::Texture> first = array[0];
    QZLReleaseTextureMultiple(array.data(), 2);
    EXPECT_TRUE(first.expired());
    EXPECT_THAT(labels(), ElementsAre("(null)", "(null)", "ShaderTarget2"));
    QZLReleaseTextureMultiple(array.data(), 3);
    EXPECT_THAT(array, testing::Each(nullptr));
}
