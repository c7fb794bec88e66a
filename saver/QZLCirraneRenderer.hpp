#pragma once

#include "renderhost/QZLMetalRenderer.hpp"
#include "saver/QZLCirraneRecords.hpp"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

/// The code of the error that tells of a lack of memory.
inline constexpr std::int64_t QZLCirraneMemoryErrorCode = 1008;
platform::Error QZLCirraneMemoryError(std::int64_t subCode);

/// Draws the cloudscape: a colour pass from a small noise texture into a colour and a height image at a reduced size,
/// and a light pass that shades the drawable from the two. Threads and ownership as its base. Made with
/// `QZLMakeRenderer`.
class QZLCirraneRenderer : public QZLMetalRenderer {
public:
    QZLCirraneRenderer();

    std::optional<platform::Error> attachToView(const std::shared_ptr<platform::HostView>& view, bool isPreview,
                                                std::int64_t screenIndex,
                                                std::shared_ptr<QZLStatistics> statistics) override;
    void detachFromView() override;
    void drawFrame(QZLDrawContext& context) override;
    void configurationChanged() override;
    bool shouldSaveScreenshot() override;

    /// Maps the stored settings to the style and the animation rates.
    void updateStyle();

    /// The animation's state: where the next frame continues from. For tests, which set distant moments.
    struct AnimationState {
        double motionAngle = 0.0;  ///< radians, in [0, 2 pi]
        double wobblePhase = 0.0;  ///< radians, in [0, 2 pi]
        double fBmAngle = 0.0;     ///< radians
        double baseHue = 0.0;      ///< turns, in [0, 1)
    };
    AnimationState animationState() const;
    /// Only while stopped.
    void setAnimationState(const AnimationState& state);

    std::uint32_t seed() const { return _seed; }
    QZLCirraneStyle style() const;
    std::uint64_t intermediateWidth() const { return _intermediateWidth; }
    std::uint64_t intermediateHeight() const { return _intermediateHeight; }
    /// Radians per second.
    double motionRadiansPerSecond() const { return _motionRadiansPerSecond.load(std::memory_order_relaxed); }
    double wobbleRadiansPerSecond() const { return _wobbleRadiansPerSecond.load(std::memory_order_relaxed); }
    double fBmRadiansPerSecond() const { return _fBmRadiansPerSecond.load(std::memory_order_relaxed); }
    const std::array<QZLLightVertex, 4>& lightVertices() const { return _lightVertices; }

protected:
    /// Memory for the noise before it goes to the GPU; null when there is none. A seam for tests.
    virtual std::unique_ptr<std::byte[]> allocateNoiseBytes(std::size_t length);

private:
    template <typename T>
    using PerSlot = std::array<T, inFlightSlots>;

    void sizeIntermediateImages();
    bool createResources(platform::ErrorPlace error);
    bool createPipelineStates(platform::ErrorPlace error);
    bool createStyleBuffers(platform::ErrorPlace error);
    std::shared_ptr<gpu::Texture> createNoiseTextureWithError(platform::ErrorPlace error);
    bool createIntermediateTextures(platform::ErrorPlace error);
    bool createColorRenderPassDescriptors(platform::ErrorPlace error);
    void releaseResources();

    static std::size_t slotOf(const QZLDrawContext& context);
    void advanceAnimation(double seconds);
    std::array<QZLLightVertex, 4> colorQuad() const;
    void writeColorStyle(std::size_t slot);
    void writeLightStyle(std::size_t slot, float fade);
    void encodeColorPass(QZLDrawContext& context, const std::array<QZLLightVertex, 4>& quad);
    void encodeLightPass(QZLDrawContext& context);

    // Relaxed atomics: a frame may read a mix of an old and a new style, which is accepted.
    std::atomic<float> _styleColors{0.0F};
    std::atomic<float> _styleBrightness{0.0F};
    std::atomic<double> _styleImageHeight{0.0};
    std::atomic<double> _styleSpeedMultipler{1.0};
    PerSlot<std::shared_ptr<QZLSemaphore>> _frameSemaphore;
    std::shared_ptr<gpu::RenderPipelineState> _colorRenderPipelineState;
    std::shared_ptr<gpu::RenderPipelineState> _lightRenderPipelineState;
    PerSlot<std::shared_ptr<gpu::Buffer>> _colorStyleBuffer;
    PerSlot<std::shared_ptr<gpu::Buffer>> _lightStyleBuffer;
    std::shared_ptr<gpu::Texture> _noiseTexture;
    std::uint64_t _intermediateWidth = 0;
    std::uint64_t _intermediateHeight = 0;
    std::array<QZLLightVertex, 4> _lightVertices{};
    PerSlot<std::shared_ptr<gpu::Texture>> _colorTexture;
    PerSlot<std::shared_ptr<gpu::Texture>> _heightTexture;
    PerSlot<std::shared_ptr<gpu::RenderPassDescriptor>> _colorRenderPassDescriptor;
    std::uint32_t _seed = 0;
    std::atomic<double> _motionRadiansPerSecond{0.0};
    double _motionAngle = 0.0;
    std::atomic<double> _wobbleRadiansPerSecond{0.0};
    double _wobblePhase = 0.0;
    std::atomic<double> _fBmRadiansPerSecond{0.0};
    double _fBmAngle = 0.0;
    double _baseHue = 0.0;
    std::atomic<std::int64_t> _screenshotInterval{0};
    double _lastScreenshot = 0.0;  // seconds since the reference date
};
