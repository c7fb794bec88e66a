#include "renderhost/QZLBuffer.hpp"

#include "platform/StringFormat.hpp"
#include "platform/gpu/Device.hpp"
#include "renderhost/QZLObjectArray.hpp"
#include "renderhost/QZLRenderHostError.hpp"

#include <span>

namespace {

std::shared_ptr<gpu::Buffer> labelled(std::shared_ptr<gpu::Buffer> buffer, const std::string& label,
                                      platform::ErrorPlace error, std::uint64_t subCode) {
    if (buffer == nullptr) {
        QZLReportError(error, QZLErrorBuffer, subCode);
        return nullptr;
    }
    buffer->setLabel(label);
    return buffer;
}

}  // namespace

std::shared_ptr<gpu::Buffer> QZLCreateSharedBuffer(const gpu::Layer& layer, const std::string& label,
                                                   std::size_t length, platform::ErrorPlace error,
                                                   std::uint64_t subCode) {
    const auto device = layer.device();
    return labelled(device != nullptr ? device->newBuffer(length) : nullptr, label, error, subCode);
}

std::shared_ptr<gpu::Buffer> QZLCreateSharedBufferWithBytes(const gpu::Layer& layer, const std::string& label,
                                                            std::size_t length, const void* bytes,
                                                            platform::ErrorPlace error, std::uint64_t subCode) {
    const auto device = layer.device();
    const std::span content(static_cast<const std::byte*>(bytes), length);
    return labelled(device != nullptr ? device->newBuffer(content) : nullptr, label, error, subCode);
}

bool QZLCreateSharedBufferMultiple(const gpu::Layer& layer, const std::string& baseLabel, std::size_t length,
                                   std::shared_ptr<gpu::Buffer>* array, std::size_t count, platform::ErrorPlace error,
                                   std::uint64_t subCode) {
    return QZLFillObjectArray(array, count, [&](std::size_t index) {
        return QZLCreateSharedBuffer(layer, platform::formatted("%@%d", baseLabel, index), length, error, subCode);
    });
}

void QZLReleaseBufferMultiple(std::shared_ptr<gpu::Buffer>* array, std::size_t count) {
    QZLReleaseObjectArray(array, count);
}
