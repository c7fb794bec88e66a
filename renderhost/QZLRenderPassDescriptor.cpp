#include "renderhost/QZLRenderPassDescriptor.hpp"

#include "platform/gpu/Backend.hpp"
#include "renderhost/QZLObjectArray.hpp"
#include "renderhost/QZLRenderHostError.hpp"

bool QZLCreateRenderPassDescriptorMultiple(std::shared_ptr<gpu::RenderPassDescriptor>* array, std::size_t count,
                                           platform::ErrorPlace error, std::uint64_t subCode) {
    return QZLFillObjectArray(array, count, [&](std::size_t) {
        auto descriptor = gpu::createRenderPassDescriptor();
        if (descriptor == nullptr) {
            QZLReportError(error, QZLErrorRenderPassDescriptor, subCode);
        }
        return descriptor;
    });
}

void QZLReleaseRenderPassDescriptorMultiple(std::shared_ptr<gpu::RenderPassDescriptor>* array, std::size_t count) {
    QZLReleaseObjectArray(array, count);
}
