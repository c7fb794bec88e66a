#pragma once

#include "platform/gpu/CommandEncoder.hpp"

#include <cstddef>
#include <memory>
#include <string_view>

namespace gpu::vulkan {

class VulkanCommandBuffer;

/// Copies. Each brings its images from rest and back, and sees what those before it wrote.
class VulkanBlitEncoder final : public BlitCommandEncoder {
public:
    explicit VulkanBlitEncoder(VulkanCommandBuffer& commandBuffer);

private:
    void encodeLabel(std::string_view label) override;
    void encodeEnd() override;
    void encodeTextureToTexture(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                                const std::shared_ptr<Texture>& destination, Origin destinationOrigin) override;
    void encodeTextureToBuffer(const std::shared_ptr<Texture>& source, const Region& sourceRegion,
                               const std::shared_ptr<Buffer>& destination, std::size_t destinationOffset,
                               std::size_t destinationBytesPerRow) override;

    VulkanCommandBuffer& _buffer;
};

}  // namespace gpu::vulkan
