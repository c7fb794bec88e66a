#include "renderhost/QZLTexture.hpp"

#include "platform/StringFormat.hpp"
#include "renderhost/QZLConversion.hpp"
#include "renderhost/QZLObjectArray.hpp"
#include "renderhost/QZLRenderHostError.hpp"

#include <algorithm>
#include <cmath>

namespace {

std::shared_ptr<gpu::Texture> createTexture(gpu::Device& device, const gpu::TextureDescriptor& descriptor,
                                            platform::ErrorPlace error, std::uint64_t subCode) {
    auto texture = device.newTexture(descriptor);
    if (texture == nullptr) {
        QZLReportError(error, QZLErrorTexture, subCode);
    }
    return texture;
}

/// Fills the array with textures labelled with the format and their index.
template <typename Create>
bool createLabelledTextures(const char* labelFormat, std::shared_ptr<gpu::Texture>* array, std::size_t count,
                            Create create) {
    return QZLFillObjectArray(array, count, [&](std::size_t index) {
        std::shared_ptr<gpu::Texture> texture = create();
        if (texture != nullptr) {
            texture->setLabel(platform::formatted(labelFormat, index));
        }
        return texture;
    });
}

/// The factor by which both sides are too long for an image of `ideal` pixels.
double scaleToIdeal(std::uint64_t ideal, std::uint64_t width, std::uint64_t height) {
    return std::sqrt(static_cast<double>(height) * static_cast<double>(width) / static_cast<double>(ideal));
}

}  // namespace

std::shared_ptr<gpu::Texture> QZLCreateReadableTexture(gpu::Device& device, std::size_t width, std::size_t height,
                                                       gpu::PixelFormat format, platform::ErrorPlace error,
                                                       std::uint64_t subCode) {
    return createTexture(device, {format, width, height, gpu::TextureUsage::ShaderRead, gpu::StorageMode::Managed},
                         error, subCode);
}

std::shared_ptr<gpu::Texture> QZLCreateWritableTexture(gpu::Device& device, std::size_t width, std::size_t height,
                                                       platform::ErrorPlace error, std::uint64_t subCode) {
    return createTexture(
        device,
        {gpu::PixelFormat::BGRA8Unorm, width, height, gpu::TextureUsage::ShaderReadWrite, gpu::StorageMode::Private},
        error, subCode);
}

std::shared_ptr<gpu::Texture> QZLCreateRenderTargetTexture(gpu::Device& device, std::size_t width, std::size_t height,
                                                           gpu::PixelFormat format, platform::ErrorPlace error,
                                                           std::uint64_t subCode) {
    return createTexture(device,
                         {format, width, height, gpu::TextureUsage::ShaderReadRenderTarget, gpu::StorageMode::Private},
                         error, subCode);
}

bool QZLCreateWritableTextureMultiple(gpu::Device& device, std::size_t width, std::size_t height,
                                      std::shared_ptr<gpu::Texture>* array, std::size_t count,
                                      platform::ErrorPlace error, std::uint64_t subCode) {
    return createLabelledTextures("ShaderTarget%d", array, count,
                                  [&] { return QZLCreateWritableTexture(device, width, height, error, subCode); });
}

bool QZLCreateRenderTargetTextureMultiple(gpu::Device& device, std::size_t width, std::size_t height,
                                          gpu::PixelFormat format, std::shared_ptr<gpu::Texture>* array,
                                          std::size_t count, platform::ErrorPlace error, std::uint64_t subCode) {
    return createLabelledTextures("RenderTarget%d", array, count, [&] {
        return QZLCreateRenderTargetTexture(device, width, height, format, error, subCode);
    });
}

void QZLReleaseTextureMultiple(std::shared_ptr<gpu::Texture>* array, std::size_t count) {
    QZLReleaseObjectArray(array, count);
}

std::uint64_t QZLTextureScaleEvenlyToIdeal(std::uint64_t ideal, std::uint64_t minimumScale, std::uint64_t maximumScale,
                                           std::uint64_t& width, std::uint64_t& height) {
    const auto nearest = QZLTruncated<std::uint64_t>(std::floor(scaleToIdeal(ideal, width, height) + 0.5));
    const std::uint64_t scale = nearest < minimumScale ? minimumScale : std::min(nearest, maximumScale);
    width /= scale;
    height /= scale;
    return scale;
}

double QZLTextureScaleExactlyToIdeal(std::uint64_t ideal, std::uint64_t& width, std::uint64_t& height,
                                     double minimumScale, double maximumScale) {
    double scale = scaleToIdeal(ideal, width, height);
    if (scale < minimumScale) {
        scale = minimumScale;
    } else if (maximumScale < scale) {
        scale = maximumScale;
    }
    width = QZLTruncated<std::uint64_t>(static_cast<double>(width) / scale + 0.5);
    height = QZLTruncated<std::uint64_t>(static_cast<double>(height) / scale + 0.5);
    return scale;
}
