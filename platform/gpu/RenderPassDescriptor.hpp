#pragma once

#include "platform/gpu/Resources.hpp"

#include <array>
#include <cstddef>
#include <memory>

namespace gpu {

struct ColorAttachment {
    std::shared_ptr<Texture> texture;
    LoadAction loadAction = LoadAction::DontCare;
    StoreAction storeAction = StoreAction::Store;
    ClearColor clearColor;
};

/// The targets of a render pass. A plain value; the passes copy what they need when an encoder is made. An attachment
/// without a texture is unused. Attachments in use must be the first ones, without a gap.
struct RenderPassDescriptor {
    static constexpr std::size_t maximumColorAttachments = 4;
    std::array<ColorAttachment, maximumColorAttachments> colorAttachments;
};

}  // namespace gpu
