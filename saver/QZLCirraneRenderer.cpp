#include "saver/QZLCirraneRenderer.hpp"

#include "foundation/QZLBundle.hpp"
#include "foundation/QZLEnvironment.hpp"
#include "foundation/QZLError.hpp"
#include "platform/Clock.hpp"
#include "platform/Random.hpp"
#include "renderhost/QZLBuffer.hpp"
#include "renderhost/QZLConversion.hpp"
#include "renderhost/QZLPipelineState.hpp"
#include "renderhost/QZLRenderHostError.hpp"
#include "renderhost/QZLRenderPassDescriptor.hpp"
#include "renderhost/QZLTexture.hpp"
#include "settings/QZLDefaultsManager.hpp"

#include <new>
#include <numbers>

namespace {

constexpr double twoPi = 2.0 * std::numbers::pi;
constexpr double fadeInSeconds = 1.0;

constexpr std::uint64_t idealPixels = 400000;
constexpr double minimumScale = 1.0;
constexpr double maximumScale = 3.0;

constexpr gpu::PixelFormat colorFormat = gpu::PixelFormat::RGB10A2Unorm;
constexpr gpu::PixelFormat heightFormat = gpu::PixelFormat::R16Unorm;
constexpr gpu::PixelFormat noiseFormat = gpu::PixelFormat::R8Snorm;
constexpr std::size_t noiseSide = 256;

/// Which resource failed, as the sub-code of its error.
enum ResourceSubCode : std::uint64_t {
    colorPipelineSubCode = 1000,
    lightPipelineSubCode = 1001,
    colorStyleSubCode = 1002,
    lightStyleSubCode = 1003,
    noiseTextureSubCode = 1004,
    colorTextureSubCode = 1005,
    heightTextureSubCode = 1006,
    colorPassSubCode = 1007,
};

/// 0 to 1, both included.
double randomUnit() {
    return static_cast<double>(platform::random()) / 2147483647.0;
}

/// The quad over the whole screen that reads the intermediate images up to the start of their last texels. A size of 0
/// wraps and gives infinity.
std::array<QZLLightVertex, 4> lightQuad(std::uint64_t width, std::uint64_t height) {
    const auto u = static_cast<float>(static_cast<double>(width - 1) / static_cast<double>(width));
    const auto v = static_cast<float>(static_cast<double>(height - 1) / static_cast<double>(height));
    return {{
        {{-1.0F, -1.0F}, {0.0F, v}},
        {{1.0F, -1.0F}, {u, v}},
        {{-1.0F, 1.0F}, {0.0F, 0.0F}},
        {{1.0F, 1.0F}, {u, 0.0F}},
    }};
}

}  // namespace

platform::Error QZLCirraneMemoryError(std::int64_t subCode) {
    return QZLCreateError(QZLLocalizedSaverString("QZL_ERROR_MEMORY"), QZLCirraneMemoryErrorCode, subCode);
}

QZLCirraneRenderer::QZLCirraneRenderer() : _seed(static_cast<std::uint32_t>(platform::clock().calendarSeconds())) {
    platform::seedRandom(_seed);
    setShouldClearFrame(false);
    setFadeInTime(fadeInSeconds);
    updateStyle();

    // In this order, so that the seed alone decides where a run starts.
    _motionAngle = randomUnit() * twoPi;
    _wobblePhase = randomUnit() * twoPi;
    _fBmAngle = randomUnit() * 0.6283185307179586 - 0.3141592653589793;
    _baseHue = randomUnit();

    _screenshotInterval = QZLDefaultsManager::sharedInstance().screenshotInterval();
    _lastScreenshot = platform::clock().secondsSinceReferenceDate();
}

std::optional<platform::Error> QZLCirraneRenderer::attachToView(const std::shared_ptr<platform::HostView>& view,
                                                                bool isPreview, std::int64_t screenIndex,
                                                                std::shared_ptr<QZLStatistics> statistics) {
    note("Seed: 0x%08x.", _seed);
    if (!isPreview && screenIndex == 0 && _screenshotInterval != 0) {
        setScreenshotsEnabled(true);  // before the base attaches, which makes the layer readable
    }
    if (auto error = QZLMetalRenderer::attachToView(view, isPreview, screenIndex, std::move(statistics))) {
        return error;
    }

    std::optional<platform::Error> error;
    if (QZLValidateMacOsVersion(10, 13, 0, &error)) {
        QZLValidateMetalFeatureSet(*layer()->device(), gpu::FeatureSet::MacOsGpuFamily1V3, 0, &error);
    }
    sizeIntermediateImages();  // on a failure too: the journal shall tell the sizes
    if (!error) {
        createResources(&error);
    }
    return error;
}

void QZLCirraneRenderer::sizeIntermediateImages() {
    _intermediateWidth = 0;
    _intermediateHeight = 0;
    if (const auto hostView = view()) {
        const platform::Rect backing = hostView->convertRectToBacking(hostView->bounds());
        _intermediateWidth = QZLWholePixels(backing.width);
        _intermediateHeight = QZLWholePixels(backing.height);
    }
    note("View size: %d x %d.", _intermediateWidth, _intermediateHeight);
    QZLTextureScaleExactlyToIdeal(idealPixels, _intermediateWidth, _intermediateHeight, minimumScale, maximumScale);
    note("Intermediate size: %d x %d.", _intermediateWidth, _intermediateHeight);
    _lightVertices = lightQuad(_intermediateWidth, _intermediateHeight);
}

bool QZLCirraneRenderer::createResources(platform::ErrorPlace error) {
    QZLDispatchSemaphoreCreateMultiple(1, _frameSemaphore.data(), _frameSemaphore.size());
    return createPipelineStates(error) && createStyleBuffers(error) &&
           (_noiseTexture = createNoiseTextureWithError(error)) != nullptr && createIntermediateTextures(error) &&
           createColorRenderPassDescriptors(error);
}

bool QZLCirraneRenderer::createPipelineStates(platform::ErrorPlace error) {
    constexpr std::array formats{colorFormat, heightFormat};
    const auto rows = static_cast<std::uint32_t>(_intermediateHeight);  // they decide how fine the clouds are drawn
    _colorRenderPipelineState =
        QZLCreateCustomRenderPipelineState(*layer(), formats.data(), formats.size(), "QZLColorVertexShader",
                                           "QZLColorFragmentShader", error, colorPipelineSubCode, {rows});
    if (_colorRenderPipelineState == nullptr) {
        return false;
    }
    _lightRenderPipelineState = QZLCreateRenderPipelineState(*layer(), "QZLLightVertexShader", "QZLLightFragmentShader",
                                                             error, lightPipelineSubCode);
    return _lightRenderPipelineState != nullptr;
}

bool QZLCirraneRenderer::createStyleBuffers(platform::ErrorPlace error) {
    return QZLCreateSharedBufferMultiple(*layer(), "colorStyleBuffer", sizeof(QZLCirraneColorStyle),
                                         _colorStyleBuffer.data(), _colorStyleBuffer.size(), error,
                                         colorStyleSubCode) &&
           QZLCreateSharedBufferMultiple(*layer(), "lightStyleBuffer", sizeof(QZLCirraneLightStyle),
                                         _lightStyleBuffer.data(), _lightStyleBuffer.size(), error, lightStyleSubCode);
}

bool QZLCirraneRenderer::createIntermediateTextures(platform::ErrorPlace error) {
    gpu::Device& device = *layer()->device();
    return QZLCreateRenderTargetTextureMultiple(device, _intermediateWidth, _intermediateHeight, colorFormat,
                                                _colorTexture.data(), _colorTexture.size(), error,
                                                colorTextureSubCode) &&
           QZLCreateRenderTargetTextureMultiple(device, _intermediateWidth, _intermediateHeight, heightFormat,
                                                _heightTexture.data(), _heightTexture.size(), error,
                                                heightTextureSubCode);
}

bool QZLCirraneRenderer::createColorRenderPassDescriptors(platform::ErrorPlace error) {
    if (!QZLCreateRenderPassDescriptorMultiple(_colorRenderPassDescriptor.data(), _colorRenderPassDescriptor.size(),
                                               error, colorPassSubCode)) {
        return false;
    }
    for (const auto& descriptor : _colorRenderPassDescriptor) {
        for (const std::size_t attachment : {0, 1}) {
            descriptor->colorAttachments[attachment].loadAction = gpu::LoadAction::DontCare;
            descriptor->colorAttachments[attachment].storeAction = gpu::StoreAction::Store;
        }
    }
    return true;
}

std::shared_ptr<gpu::Texture> QZLCirraneRenderer::createNoiseTextureWithError(platform::ErrorPlace error) {
    auto texture =
        QZLCreateReadableTexture(*layer()->device(), noiseSide, noiseSide, noiseFormat, error, noiseTextureSubCode);
    if (texture == nullptr) {
        return nullptr;
    }
    constexpr std::size_t length = noiseSide * noiseSide;
    const auto bytes = allocateNoiseBytes(length);
    if (bytes == nullptr) {
        *error = QZLCirraneMemoryError(0);
        return nullptr;
    }
    for (std::size_t index = 0; index < length; ++index) {
        bytes[index] = static_cast<std::byte>(platform::random() & 0xFF);
    }
    if (!texture->replaceRegion({{0, 0}, {noiseSide, noiseSide}}, {bytes.get(), length}, noiseSide)) {
        QZLReportError(error, QZLErrorTexture, noiseTextureSubCode);  // without noise there would be no clouds
        return nullptr;
    }
    return texture;
}

std::unique_ptr<std::byte[]> QZLCirraneRenderer::allocateNoiseBytes(std::size_t length) {
    return std::unique_ptr<std::byte[]>(new (std::nothrow) std::byte[length]);
}

void QZLCirraneRenderer::detachFromView() {
    stopDisplayLink();  // so that no frame uses what is released below
    if (!isAbandoned()) {
        releaseResources();
    }
    QZLMetalRenderer::detachFromView();
}

void QZLCirraneRenderer::releaseResources() {
    _colorRenderPipelineState.reset();
    _lightRenderPipelineState.reset();
    QZLReleaseBufferMultiple(_colorStyleBuffer.data(), _colorStyleBuffer.size());
    QZLReleaseBufferMultiple(_lightStyleBuffer.data(), _lightStyleBuffer.size());
    _noiseTexture.reset();
    QZLReleaseTextureMultiple(_colorTexture.data(), _colorTexture.size());
    QZLReleaseTextureMultiple(_heightTexture.data(), _heightTexture.size());
    QZLReleaseRenderPassDescriptorMultiple(_colorRenderPassDescriptor.data(), _colorRenderPassDescriptor.size());
}
