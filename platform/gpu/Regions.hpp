#pragma once

#include "platform/gpu/Types.hpp"

#include <cstddef>

namespace gpu {

/// True for a region of at least one texel that lies inside an image of that size.
constexpr bool isInside(const Region& region, Extent size) {
    return region.size.width > 0 && region.size.height > 0 && region.origin.x <= size.width &&
           region.origin.y <= size.height && region.size.width <= size.width - region.origin.x &&
           region.size.height <= size.height - region.origin.y;
}

/// No row in memory may be longer, so that sums of rows and devices' row lengths never overflow.
inline constexpr std::size_t maximumBytesPerRow = std::size_t{1} << 30;

/// True when that many bytes hold `rows` rows of `rowBytes`, each `bytesPerRow` after the one before it. The last one
/// needs no padding.
constexpr bool holdsRows(std::size_t bytes, std::size_t rows, std::size_t bytesPerRow, std::size_t rowBytes) {
    return rows > 0 && rowBytes > 0 && rowBytes <= bytesPerRow && bytesPerRow <= maximumBytesPerRow &&
           rowBytes <= bytes && rows - 1 <= (bytes - rowBytes) / bytesPerRow;
}

}  // namespace gpu
