#pragma once

#include "platform/gpu/Types.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace fake {

/// One pixel of that format and colour: `bytesPerPixel` bytes as they lie in memory.
std::vector<std::byte> encodedPixel(gpu::PixelFormat format, const gpu::ClearColor& color);

std::string nameOf(gpu::PixelFormat format);

}  // namespace fake
