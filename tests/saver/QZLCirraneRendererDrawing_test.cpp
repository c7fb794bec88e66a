#include "foundation/QZLNumeric.hpp"
#include "tests/saver/DrawingTest.hpp"
#include "tests/support/Waiting.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;

constexpr double twoPi = 6.283185307179586;

template <typename Value>
Value valueAt(const std::byte* bytes, std::size_t offset) {
    Value value;
    std::memcpy(&value, bytes + offset, sizeof(value));
    return value;
}

class QZLCirraneRendererDrawing : public DrawingTest {};

TEST_F(QZLCirraneRendererDrawing, FrameEncodesTheColorPassAndThenTheLightPass) {
    const auto commands = drawFrame(1);
    EXPECT_THAT(
        commands->calls,
        ElementsAre("pass [RenderTarget1 of format 90 load 0 store 1] [RenderTarget1 of format 20 load 0 store 1]",
                    "label ColorShader", "pipeline", "64 vertex bytes at 0", "colorStyleBuffer1 from 0 at 0",
                    "texture  of format 12 at 0", "draw type 4 from 0 count 4", "end",
                    "pass [Screen of format 80 load 0 store 1]", "pipeline", "label LightShader",
                    "64 vertex bytes at 0", "lightStyleBuffer1 from 0 at 0", "texture RenderTarget1 of format 90 at 0",
                    "texture RenderTarget1 of format 20 at 1", "draw type 4 from 0 count 4", "end",
                    "addCompletedHandler"));
    ASSERT_EQ(commands->draws.size(), 2U);
    EXPECT_EQ(commands->draws[0].targets[0], commands->draws[1].textures.at(0)) << "the light pass reads the colours";
    EXPECT_EQ(commands->draws[0].targets[1], commands->draws[1].textures.at(1)) << "and the heights";
}

TEST_F(QZLCirraneRendererDrawing, ResourcesAreTheSlotsOwn) {
    const auto first = drawFrame(0);
    const auto second = drawFrame(2);
    EXPECT_EQ(first->draws[0].buffers.at(0)->label(), "colorStyleBuffer0");
    EXPECT_EQ(second->draws[0].buffers.at(0)->label(), "colorStyleBuffer2");
    EXPECT_EQ(first->draws[0].targets[0]->label(), "RenderTarget0");
    EXPECT_EQ(second->draws[0].targets[0]->label(), "RenderTarget2");
    EXPECT_NE(first->draws[0].targets[1], second->draws[0].targets[1]);
    EXPECT_EQ(first->draws[0].textures.at(0), second->draws[0].textures.at(0)) << "there is one noise texture";
}

TEST_F(QZLCirraneRendererDrawing, IntermediateImagesHaveTheIntermediateSize) {
    const auto commands = drawFrame();
    for (const auto& target : commands->draws[0].targets) {
        EXPECT_EQ(target->size(), (gpu::Extent{640, 480}));
        EXPECT_EQ(target->usage(), gpu::TextureUsage::ShaderReadRenderTarget);
    }
    EXPECT_EQ(commands->draws[0].buffers.at(0)->length(), 40U);
    EXPECT_EQ(commands->draws[1].buffers.at(0)->length(), 16U);
}

TEST_F(QZLCirraneRendererDrawing, NoiseIsTheLowByteOfEachRandomNumberInOrder) {
    std::vector<std::int64_t> sequence;
    for (std::int64_t number = 0; number < 65536; ++number) {
        sequence.push_back(number * 7919 + 0x100);
    }
    renderer = makeRenderer();
    RecordedRandom random(sequence);
    EXPECT_FALSE(attach(*renderer));
    const auto noise = drawFrame()->draws[0].textures.at(0);
    EXPECT_EQ(noise->size(), (gpu::Extent{256, 256}));
    EXPECT_EQ(noise->usage(), gpu::TextureUsage::ShaderRead);
    const std::vector<std::byte> pixels = fake::Gpu::pixels(*noise);
    ASSERT_EQ(pixels.size(), 65536U);
    for (const std::size_t index : {0U, 1U, 2U, 255U, 256U, 65535U}) {
        EXPECT_EQ(pixels[index], static_cast<std::byte>(sequence[index] & 0xFF)) << index;
    }
}

TEST_F(QZLCirraneRendererDrawing, SameSeedGivesTheSameNoise) {
    const auto first = fake::Gpu::pixels(*drawFrame()->draws[0].textures.at(0));
    attachRenderer();
    EXPECT_EQ(fake::Gpu::pixels(*drawFrame()->draws[0].textures.at(0)), first);
}

TEST_F(QZLCirraneRendererDrawing, ColorStyleHasItsBytes) {
    defaults().setColors(0.25F);
    defaults().setBrightness(0.75F);
    renderer->configurationChanged();
    const auto commands = drawFrame();
    const std::byte* record = commands->draws[0].buffers.at(0)->contents();

    const auto state = renderer->animationState();
    const double rate = renderer->fBmRadiansPerSecond();
    const auto cosine = static_cast<float>(1.97 * QZLSmoothCos(state.fBmAngle, rate));
    const auto sine = static_cast<float>(1.97 * QZLSmoothSin(state.fBmAngle, rate));
    EXPECT_EQ(valueAt<float>(record, 0), cosine);
    EXPECT_EQ(valueAt<float>(record, 4), -sine);
    EXPECT_EQ(valueAt<float>(record, 8), sine);
    EXPECT_EQ(valueAt<float>(record, 12), cosine);
    EXPECT_EQ(valueAt<std::uint32_t>(record, 16), 0x40800000U) << "4.0, little-endian";
    EXPECT_EQ(valueAt<float>(record, 20), static_cast<float>(state.baseHue));
    EXPECT_EQ(valueAt<float>(record, 24), 0.25F * 2.5F + 0.5F);
    EXPECT_EQ(valueAt<float>(record, 28), 1.0F - 0.25F * 0.8F);
    EXPECT_EQ(valueAt<float>(record, 32), 0.25F * 0.8F);
}

TEST_F(QZLCirraneRendererDrawing, ColorStylesLastFourBytesAreNeverWritten) {
    const auto buffer = drawFrame()->draws[0].buffers.at(0);
    std::fill_n(buffer->contents(), buffer->length(), std::byte{0xAB});
    drawFrame();
    const std::vector<std::byte> padding(buffer->contents() + 36, buffer->contents() + 40);
    EXPECT_THAT(padding, Each(std::byte{0xAB}));
    EXPECT_NE(valueAt<std::uint32_t>(buffer->contents(), 32), 0xABABABABU);
}

TEST_F(QZLCirraneRendererDrawing, LightStyleHasItsBytes) {
    view->viewBounds = {0, 0, 1920, 1080};
    attachRenderer();
    const auto commands = drawFrame(0, 0.625F);
    const std::byte* record = commands->draws[1].buffers.at(0)->contents();
    const auto texelHeight = static_cast<float>(1.0 / 474.0);
    EXPECT_EQ(valueAt<float>(record, 0), static_cast<float>(1.0 / 843.0));
    EXPECT_EQ(valueAt<float>(record, 4), texelHeight);
    EXPECT_EQ(valueAt<float>(record, 8), static_cast<float>(static_cast<double>(texelHeight) * 0.04))
        << "from the height's reciprocal";
    EXPECT_EQ(valueAt<float>(record, 12), 0.625F);
}

TEST_F(QZLCirraneRendererDrawing, LightPassGetsTheLightQuad) {
    const auto bytes = drawFrame()->draws[1].vertexBytes;
    EXPECT_EQ(std::memcmp(bytes.data(), renderer->lightVertices().data(), 64), 0);
}

TEST_F(QZLCirraneRendererDrawing, ColorQuadIsTheRegionAroundTheDriftingCentre) {
    renderer->setAnimationState({1.25, 0.5, 0.1, 0.25});
    const auto bytes = drawFrame()->draws[0].vertexBytes;

    const double rate = renderer->motionRadiansPerSecond();
    const auto state = renderer->animationState();
    const double radius = (std::sin(state.wobblePhase) * 0.05 + 1.0) * 1.5;
    const double x = QZLSmoothCos(state.motionAngle, rate) * radius;
    const double y = QZLSmoothSin(state.motionAngle, rate) * radius;
    const double height = renderer->style().imageHeight;
    const double width = (640.0 / 480.0) * height;
    const auto left = static_cast<float>(x - width * 0.5);
    const auto right = static_cast<float>(x + width * 0.5);
    const auto bottom = static_cast<float>(y - 0.5 * height);
    const auto top = static_cast<float>(y + 0.5 * height);

    std::array<float, 16> values;
    std::memcpy(values.data(), bytes.data(), sizeof(values));
    EXPECT_THAT(values, ElementsAreArray({-1.0F, -1.0F, left, bottom, 1.0F, -1.0F, right, bottom,  //
                                          -1.0F, 1.0F, left, top, 1.0F, 1.0F, right, top}));
}

TEST_F(QZLCirraneRendererDrawing, DriftRadiusBreathesBetweenItsBounds) {
    for (const auto& [phase, radius] : {std::pair{0.0, 1.5}, {twoPi / 4.0, 1.575}, {twoPi * 0.75, 1.425}}) {
        renderer->setAnimationState({0.0, phase, 0.0, 0.0});
        const auto bytes = drawFrame()->draws[0].vertexBytes;
        const double centre = (static_cast<double>(valueAt<float>(bytes.data(), 8)) +
                               static_cast<double>(valueAt<float>(bytes.data(), 24))) /
                              2.0;
        EXPECT_NEAR(centre, radius, 0.001) << phase;
    }
}

TEST_F(QZLCirraneRendererDrawing, SlotIsNotWrittenBeforeItsFormerFrameHasCompleted) {
    const auto first = std::make_shared<RecordingCommandBuffer>();
    QZLDrawContext firstContext = contextOf(first, 1);
    renderer->drawFrame(firstContext);
    const auto buffer = first->draws[1].buffers.at(0);

    const auto second = std::make_shared<RecordingCommandBuffer>();
    fake::StartedCall drawing([&] {
        QZLDrawContext secondContext = contextOf(second, 1);
        secondContext.setBrightness(0.5F);
        renderer->drawFrame(secondContext);
    });
    ASSERT_TRUE(drawing.waits());
    EXPECT_EQ(valueAt<float>(buffer->contents(), 12), 1.0F);

    first->complete();
    drawing.finish();
    EXPECT_EQ(valueAt<float>(buffer->contents(), 12), 0.5F);
}

TEST_F(QZLCirraneRendererDrawing, OtherSlotsDoNotWait) {
    std::vector<std::shared_ptr<RecordingCommandBuffer>> inFlight;
    for (int slot = 0; slot < 3; ++slot) {
        inFlight.push_back(std::make_shared<RecordingCommandBuffer>());
        QZLDrawContext context = contextOf(inFlight.back(), slot);
        renderer->drawFrame(context);
    }
    EXPECT_EQ(inFlight[2]->draws.size(), 2U);
}

TEST_F(QZLCirraneRendererDrawing, FrameWithoutEncodersStillGivesItsSlotBack) {
    for (int frame = 0; frame < 3; ++frame) {
        const auto commands = std::make_shared<RecordingCommandBuffer>();
        commands->refuseEncoders();
        QZLDrawContext context = contextOf(commands, 0);
        renderer->drawFrame(context);
        EXPECT_TRUE(commands->draws.empty());
        commands->complete();
    }
    EXPECT_EQ(drawFrame(0)->draws.size(), 2U);
}

TEST_F(QZLCirraneRendererDrawing, FrameWhoseEncodingThrowsGivesItsSlotBack) {
    for (const int encoders : {0, 1}) {
        const auto commands = std::make_shared<RecordingCommandBuffer>();
        commands->throwAfterEncoders(encoders);
        QZLDrawContext context = contextOf(commands, 0);
        EXPECT_THROW(renderer->drawFrame(context), std::bad_alloc);
        EXPECT_THAT(commands->calls, Not(Contains("addCompletedHandler")));
    }
    EXPECT_EQ(drawFrame(0)->draws.size(), 2U);
}

TEST_F(QZLCirraneRendererDrawing, FrameMayCompleteAfterTheRendererHasGone) {
    const auto commands = std::make_shared<RecordingCommandBuffer>();
    {
        QZLDrawContext context = contextOf(commands, 0);
        renderer->drawFrame(context);
    }
    renderer.reset();
    commands->complete();
}

TEST_F(QZLCirraneRendererDrawing, NonsenseSettingsAreDrawnAllTheSame) {
    defaults().setZoom(-1.0F);
    defaults().setSpeed(1e30F);
    defaults().setColors(-4.0F);
    defaults().setBrightness(40.0F);
    renderer->configurationChanged();
    EXPECT_EQ(drawFrame()->draws.size(), 2U);
}

}  // namespace
