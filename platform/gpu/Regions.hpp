#pragma once

#include "platform/gpu/Types.hpp"

namespace gpu {

/// True for a region of at least one texel that lies inside an image of that size.
constexpr bool isInside(const Region& region, Extent size) {
    return region.size.width > 0 && region.size.height > 0 && region.origin.x <= size.width &&
           region.origin.y <= size.height && region.size.width <= size.width - region.origin.x &&
           region.size.height <= size.height - region.origin.y;
}

/// Bytes that `rows` rows take when the last one needs no padding.
constexpr std::size_t bytesNeeded(std::size_t rows, std::size_t bytesPerRow, std::size_t rowBytes) {
    return rows == 0 ? 0 : (rows - 1) * bytesPerRow + rowBytes;
}

}  // namespace gpu
