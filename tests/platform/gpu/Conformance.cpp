#include "tests/platform/gpu/Conformance.hpp"

#include "platform/SystemLog.hpp"
#include "tests/support/KeptLibraries.hpp"

#include <utility>

Conformance::Conformance() {
    platform::setSystemLogSink([](std::string_view) {});
}

Conformance::~Conformance() {
    platform::setSystemLogSink({});
}

void Conformance::SetUp() {
    backend = GetParam().make([this](std::string complaint) {
        const std::lock_guard lock(_mutex);
        _complaints.push_back(std::move(complaint));
    });
    ASSERT_NE(backend, nullptr);
    device = backend->systemDefaultDevice();
    ASSERT_NE(device, nullptr) << "these tests need a device of this backend";
    fake::keepLoadedLibraries();
    queue = device->newCommandQueue();
    ASSERT_NE(queue, nullptr);
}

void Conformance::TearDown() {
    if (backend != nullptr && queue != nullptr) {
        finish();
    }
    queue.reset();
    device.reset();
    backend.reset();
    for (const std::string& complaint : _complaints) {
        ADD_FAILURE() << complaint;
    }
}

void Conformance::commit(const std::shared_ptr<gpu::CommandBuffer>& buffer) {
    ASSERT_NE(buffer, nullptr);
    {
        const std::lock_guard lock(_mutex);
        ++_committed;
    }
    buffer->addCompletedHandler([this](gpu::CommandBuffer&) {
        const std::lock_guard lock(_mutex);
        ++_completed;
        _changed.notify_all();
    });
    buffer->commit();
}

void Conformance::finish() {
    GetParam().step(*backend);
    std::unique_lock lock(_mutex);
    EXPECT_TRUE(_changed.wait_for(lock, fake::deadline, [this] { return _completed == _committed; }))
        << _completed << " of " << _committed << " command buffers completed";
}

std::shared_ptr<gpu::Texture> Conformance::makeTexture(gpu::PixelFormat format, gpu::Extent size,
                                                       gpu::TextureUsage usage, gpu::StorageMode storageMode) {
    return device->newTexture({format, size.width, size.height, usage, storageMode});
}

std::shared_ptr<gpu::Texture> Conformance::makeFilledTexture(gpu::PixelFormat format, gpu::Extent size,
                                                             const Bytes& bytes) {
    auto texture = makeTexture(format, size, gpu::TextureUsage::ShaderRead, gpu::StorageMode::Managed);
    if (texture != nullptr) {
        EXPECT_TRUE(texture->replaceRegion(wholeOf(*texture), bytes, size.width * bytesPerPixel(format)));
    }
    return texture;
}

std::shared_ptr<gpu::Layer> Conformance::makeLayer(gpu::Extent size) {
    auto layer = backend->newLayer();
    layer->setDevice(device);
    layer->setDrawableSize(size);
    return layer;
}

void Conformance::clear(const std::shared_ptr<gpu::Texture>& texture, const gpu::ClearColor& color) {
    const auto buffer = queue->commandBuffer();
    gpu::RenderCommandEncoder* const encoder =
        buffer->renderCommandEncoder(passInto(texture, gpu::LoadAction::Clear, color));
    ASSERT_NE(encoder, nullptr);
    encoder->endEncoding();
    commit(buffer);
}

std::shared_ptr<gpu::Drawable> Conformance::drawFrame(gpu::Layer& layer, const gpu::ClearColor& color) {
    auto drawable = layer.nextDrawable();
    if (drawable != nullptr) {
        const auto buffer = queue->commandBuffer();
        buffer->renderCommandEncoder(passInto(drawable->texture(), gpu::LoadAction::Clear, color))->endEncoding();
        buffer->presentDrawable(drawable);
        commit(buffer);
    }
    return drawable;
}

Conformance::Bytes Conformance::readBack(const std::shared_ptr<gpu::Texture>& texture) {
    const std::size_t rowBytes = texture->width() * bytesPerPixel(texture->pixelFormat());
    const auto destination = device->newBuffer(rowBytes * texture->height());
    const auto buffer = queue->commandBuffer();
    gpu::BlitCommandEncoder* const encoder = buffer->blitCommandEncoder();
    encoder->copyTextureToBuffer(texture, wholeOf(*texture), destination, 0, rowBytes);
    encoder->endEncoding();
    commit(buffer);
    buffer->waitUntilCompleted();
    return {destination->contents(), destination->contents() + destination->length()};
}

std::vector<std::byte> countingBytes(std::size_t count, unsigned seed) {
    std::vector<std::byte> bytes(count);
    for (std::size_t index = 0; index < count; ++index) {
        bytes[index] = static_cast<std::byte>((index + seed) * 37 % 251);
    }
    return bytes;
}

gpu::Region wholeOf(const gpu::Texture& texture) {
    return {{0, 0}, texture.size()};
}

gpu::RenderPassDescriptor passInto(std::shared_ptr<gpu::Texture> texture, gpu::LoadAction loadAction,
                                   const gpu::ClearColor& color) {
    gpu::RenderPassDescriptor descriptor;
    descriptor.colorAttachments[0] = {std::move(texture), loadAction, gpu::StoreAction::Store, color};
    return descriptor;
}
