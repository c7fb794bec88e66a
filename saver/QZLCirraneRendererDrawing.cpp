// The part of the renderer that runs for every frame, on the display link's thread.
#include "foundation/QZLNumeric.hpp"
#include "saver/QZLCirraneRenderer.hpp"

#include <cmath>
#include <cstring>
#include <numbers>
#include <span>

namespace {

constexpr double twoPi = 2.0 * std::numbers::pi;
constexpr double octaveScale = 1.97;
constexpr float octaves = 4.0F;
constexpr std::size_t quadCorners = 4;

/// Takes a slot, and gives it back when the frame is not encoded to the end.
class SlotUse {
public:
    explicit SlotUse(QZLSemaphore& slotIsFree) : _slotIsFree(&slotIsFree) { _slotIsFree->acquire(); }
    ~SlotUse() {
        if (_slotIsFree != nullptr) {
            _slotIsFree->release();
        }
    }
    SlotUse(const SlotUse&) = delete;
    SlotUse& operator=(const SlotUse&) = delete;

    /// From now on somebody else gives the slot back.
    void handOver() { _slotIsFree = nullptr; }

private:
    QZLSemaphore* _slotIsFree;
};

}  // namespace

void QZLCirraneRenderer::drawFrame(QZLDrawContext& context) {
    // A fixed step: a late or skipped frame slows the clouds down instead of making them jump.
    advanceAnimation(1.0 / selectedFrameRate());
    const std::array<QZLLightVertex, 4> quad = colorQuad();

    // The handler holds the semaphore, not the renderer, which may be gone by then.
    const std::shared_ptr<QZLSemaphore> slotIsFree = _frameSemaphore[slotOf(context)];
    SlotUse slotUse(*slotIsFree);
    writeColorStyle(slotOf(context));
    encodeColorPass(context, quad);
    writeLightStyle(slotOf(context), context.brightness());
    encodeLightPass(context);
    context.commandBuffer().addCompletedHandler([slotIsFree](gpu::CommandBuffer&) { slotIsFree->release(); });
    slotUse.handOver();
}

std::size_t QZLCirraneRenderer::slotOf(const QZLDrawContext& context) {
    return static_cast<std::size_t>(context.bufferIndex());
}

void QZLCirraneRenderer::advanceAnimation(double seconds) {
    _motionAngle = QZLWrap(_motionAngle + motionRadiansPerSecond() * seconds, twoPi);
    _wobblePhase = QZLWrap(_wobblePhase + wobbleRadiansPerSecond() * seconds, twoPi);
    _fBmAngle = QZLWrap(_fBmAngle + fBmRadiansPerSecond() * seconds, twoPi);

    // 0.0105 turns per second at any speed setting.
    const double hue = _baseHue + seconds * 0.005 * 2.1;
    _baseHue = hue - std::floor(hue);
}

std::array<QZLLightVertex, 4> QZLCirraneRenderer::colorQuad() const {
    const double height = style().imageHeight;
    const double aspect = static_cast<double>(_intermediateWidth) / static_cast<double>(_intermediateHeight);
    const double width = aspect * height;

    // The region circles the origin of the noise plane, on a circle that breathes a little.
    const double radius = (std::sin(_wobblePhase) * 0.05 + 1.0) * 1.5;
    const double centerX = QZLSmoothCos(_motionAngle, motionRadiansPerSecond()) * radius;
    const double centerY = QZLSmoothSin(_motionAngle, motionRadiansPerSecond()) * radius;

    const auto left = static_cast<float>(centerX - width * 0.5);
    const auto right = static_cast<float>(centerX + width * 0.5);
    const auto bottom = static_cast<float>(centerY - 0.5 * height);
    const auto top = static_cast<float>(centerY + 0.5 * height);
    return {{
        {{-1.0F, -1.0F}, {left, bottom}},
        {{1.0F, -1.0F}, {right, bottom}},
        {{-1.0F, 1.0F}, {left, top}},
        {{1.0F, 1.0F}, {right, top}},
    }};
}

void QZLCirraneRenderer::writeColorStyle(std::size_t slot) {
    const auto cosine = static_cast<float>(octaveScale * QZLSmoothCos(_fBmAngle, fBmRadiansPerSecond()));
    const auto sine = static_cast<float>(octaveScale * QZLSmoothSin(_fBmAngle, fBmRadiansPerSecond()));
    const QZLCirraneStyle style = this->style();

    QZLCirraneColorStyle record;
    record.octaveTransform[0] = cosine;
    record.octaveTransform[1] = -sine;
    record.octaveTransform[2] = sine;
    record.octaveTransform[3] = cosine;
    record.octaves = octaves;
    record.hueOffset = static_cast<float>(_baseHue);
    record.saturation = style.colors * 2.5F + 0.5F;
    record.darkening = (1.0F - style.brightness) * 0.8F;
    record.fullColor = 1.0F - record.darkening;
    std::memcpy(_colorStyleBuffer[slot]->contents(), &record, offsetof(QZLCirraneColorStyle, unused));
}

void QZLCirraneRenderer::writeLightStyle(std::size_t slot, float fade) {
    QZLCirraneLightStyle record;
    record.texelWidth = static_cast<float>(1.0 / static_cast<double>(_intermediateWidth));
    record.texelHeight = static_cast<float>(1.0 / static_cast<double>(_intermediateHeight));
    record.relief = static_cast<float>(static_cast<double>(record.texelHeight) * 0.04);
    record.fade = fade;
    std::memcpy(_lightStyleBuffer[slot]->contents(), &record, sizeof(record));
}

void QZLCirraneRenderer::encodeColorPass(QZLDrawContext& context, const std::array<QZLLightVertex, 4>& quad) {
    const std::size_t slot = slotOf(context);
    gpu::RenderPassDescriptor& descriptor = *_colorRenderPassDescriptor[slot];
    descriptor.colorAttachments[0].texture = _colorTexture[slot];
    descriptor.colorAttachments[1].texture = _heightTexture[slot];

    gpu::RenderCommandEncoder* encoder = context.commandBuffer().renderCommandEncoder(descriptor);
    if (encoder == nullptr) {
        return;
    }
    encoder->setLabel("ColorShader");
    encoder->setRenderPipelineState(_colorRenderPipelineState);
    encoder->setVertexBytes(std::as_bytes(std::span(quad)), 0);
    encoder->setFragmentBuffer(_colorStyleBuffer[slot], 0, 0);
    encoder->setFragmentTexture(_noiseTexture, 0);
    encoder->drawPrimitives(gpu::PrimitiveType::TriangleStrip, 0, quadCorners);
    encoder->endEncoding();
}

void QZLCirraneRenderer::encodeLightPass(QZLDrawContext& context) {
    const std::size_t slot = slotOf(context);
    gpu::RenderCommandEncoder* encoder = context.renderCommandEncoderWithState(_lightRenderPipelineState);
    if (encoder == nullptr) {
        return;
    }
    encoder->setLabel("LightShader");
    encoder->setVertexBytes(std::as_bytes(std::span(_lightVertices)), 0);
    encoder->setFragmentBuffer(_lightStyleBuffer[slot], 0, 0);
    encoder->setFragmentTexture(_colorTexture[slot], 0);
    encoder->setFragmentTexture(_heightTexture[slot], 1);
    encoder->drawPrimitives(gpu::PrimitiveType::TriangleStrip, 0, quadCorners);
    encoder->endEncoding();
}

QZLCirraneRenderer::AnimationState QZLCirraneRenderer::animationState() const {
    return {_motionAngle, _wobblePhase, _fBmAngle, _baseHue};
}

void QZLCirraneRenderer::setAnimationState(const AnimationState& state) {
    _motionAngle = state.motionAngle;
    _wobblePhase = state.wobblePhase;
    _fBmAngle = state.fBmAngle;
    _baseHue = state.baseHue;
}
