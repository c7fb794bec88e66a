#include "tests/platform/gpu/VulkanDrawing.hpp"

#include <algorithm>
#include <cstdlib>
#include <iterator>

Quad wholeTarget(float left, float top, float right, float bottom) {
    return {{{-1, -1, left, bottom}, {1, -1, right, bottom}, {-1, 1, left, top}, {1, 1, right, top}}};
}

Quad partOfTarget(float left, float bottom, float right, float top) {
    return {{{left, bottom, 0, 1}, {right, bottom, 1, 1}, {left, top, 0, 0}, {right, top, 1, 0}}};
}

std::vector<std::byte> bytesOf(std::initializer_list<unsigned> values) {
    std::vector<std::byte> bytes;
    std::transform(values.begin(), values.end(), std::back_inserter(bytes),
                   [](unsigned value) { return static_cast<std::byte>(value); });
    return bytes;
}

int distance(std::byte left, std::byte right) {
    return std::abs(std::to_integer<int>(left) - std::to_integer<int>(right));
}

void VulkanDrawing::SetUp() {
    Conformance::SetUp();
    ASSERT_NE(device, nullptr);
    library = device->newLibrary(TEST_SHADER_LIBRARY);
    ASSERT_NE(library, nullptr);
}

void VulkanDrawing::TearDown() {
    library.reset();
    Conformance::TearDown();
}

std::shared_ptr<gpu::RenderPipelineState> VulkanDrawing::makePipeline(const std::string& fragment,
                                                                      const std::vector<gpu::PixelFormat>& formats) {
    return device->newRenderPipelineState({library->newFunction("QuadVertex", gpu::FunctionType::Vertex),
                                           library->newFunction(fragment, gpu::FunctionType::Fragment), formats});
}

std::shared_ptr<gpu::Texture> VulkanDrawing::makeTarget(gpu::Extent size, gpu::PixelFormat format) {
    return makeTexture(format, size, gpu::TextureUsage::ShaderReadRenderTarget);
}

void VulkanDrawing::setQuad(gpu::RenderCommandEncoder& encoder, const Quad& quad) {
    encoder.setVertexBytes(std::as_bytes(std::span(quad)), 0);
}

Conformance::Bytes VulkanDrawing::drawTexture(const std::string& fragment, const std::shared_ptr<gpu::Texture>& texture,
                                              gpu::Extent size, const Quad& quad) {
    const auto target = makeTarget(size);
    const auto buffer = queue->commandBuffer();
    auto* const encoder = buffer->renderCommandEncoder(passInto(target, gpu::LoadAction::DontCare));
    encoder->setRenderPipelineState(makePipeline(fragment));
    setQuad(*encoder, quad);
    if (texture != nullptr) {
        encoder->setFragmentTexture(texture, 0);
    }
    encoder->drawPrimitives(gpu::PrimitiveType::TriangleStrip, 0, 4);
    encoder->endEncoding();
    commit(buffer);
    return readBack(target);
}

Conformance::Bytes VulkanDrawing::redsOf(const Bytes& pixels) {
    Bytes reds;
    for (std::size_t index = 0; index < pixels.size(); index += 4) {
        reds.push_back(pixels[index]);
    }
    return reds;
}
