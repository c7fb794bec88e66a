#pragma once

#include "tests/platform/gpu/VulkanBackendUnderTest.hpp"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

/// Position in clip space, y up; position in the texture.
using Corner = std::array<float, 4>;
using Quad = std::array<Corner, 4>;

/// Over the whole target, with these texture positions at its edges.
Quad wholeTarget(float left, float top, float right, float bottom);
/// Over a part of clip space, with texture positions from 0 to 1.
Quad partOfTarget(float left, float bottom, float right, float top);

std::vector<std::byte> bytesOf(std::initializer_list<unsigned> values);
/// How many steps lie between two values.
int distance(std::byte left, std::byte right);

/// Draws with the small library of shaders that is built beside these tests.
class VulkanDrawing : public Conformance {
protected:
    void SetUp() override;
    void TearDown() override;

    std::shared_ptr<gpu::RenderPipelineState> makePipeline(const std::string& fragment,
                                                           const std::vector<gpu::PixelFormat>& formats = {
                                                               gpu::PixelFormat::RGBA8Unorm});
    std::shared_ptr<gpu::Texture> makeTarget(gpu::Extent size, gpu::PixelFormat format = gpu::PixelFormat::RGBA8Unorm);
    static void setQuad(gpu::RenderCommandEncoder& encoder, const Quad& quad);

    /// One quad with one texture, or none, into a fresh target, read back.
    Bytes drawTexture(const std::string& fragment, const std::shared_ptr<gpu::Texture>& texture, gpu::Extent size,
                      const Quad& quad);
    static Bytes redsOf(const Bytes& pixels);

    std::shared_ptr<gpu::Library> library;
};
